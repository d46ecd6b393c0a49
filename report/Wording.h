#pragma once

#include <array>
#include <optional>
#include <QList>
#include <QString>

#include "report/Curve.h"
#include "report/ProjectReader.h"
#include "report/ReportTexts.h"

namespace report {

/// One line inside a cell, with the drawn curve in front of it if there is one.
struct Line {
    enum class Look { Plain, Strong, Muted, Warning };
    QString text;
    Look look = Look::Plain;
    std::optional<Curve> curve = std::nullopt;
    QString link = {};  // address of the row that it names; see RowAddress
};
using Lines = QList<Line>;

/// A setting by its name.
struct Fact {
    QString name;
    Lines lines;
};

/// What is told of a trend, by column of the table of trends.
using TrendCells = std::array<Lines, 9>;

/// Puts stored settings into words. A code that has no meaning, a missing text and a damaged value
/// are told as such. Borrows the texts.
class Wording {
public:
    explicit Wording(const ReportTexts& texts) : texts_(texts) {}

    [[nodiscard]] QList<Fact> Archive(const ArchiveRow& row) const;
    [[nodiscard]] TrendCells Trend(const TrendRow& row) const;
    /// Archive type and storage on one line.
    [[nodiscard]] QString TypeInShort(const ArchiveRow& row) const;
    [[nodiscard]] QString Place(const Problem& problem) const;
    [[nodiscard]] QString Finding(const Problem& problem) const;

private:
    [[nodiscard]] QString Value(const Cell& cell) const;
    [[nodiscard]] QString Named(const Cell& cell) const;
    [[nodiscard]] Line Code(const Cell& cell, std::initializer_list<Text> words) const;
    [[nodiscard]] Line Warning(Text text, const QString& filled) const;
    [[nodiscard]] Lines DisplayTexts(const QList<LanguageText>& texts) const;

    [[nodiscard]] Lines TypeWords(const ArchiveRow& row) const;
    [[nodiscard]] Lines StorageWords(const ArchiveRow& row) const;
    [[nodiscard]] Line RecordingWords(const ArchiveRow& row) const;
    [[nodiscard]] Line FileChangeWords(const ArchiveRow& row) const;
    [[nodiscard]] Lines LimitWords(const ArchiveRow& row) const;

    [[nodiscard]] Lines NameWords(const TrendRow& row) const;
    [[nodiscard]] Lines RangeWords(const TrendRow& row) const;
    [[nodiscard]] Lines SubstitutionWords(const TrendRow& row) const;
    [[nodiscard]] Lines HysteresisWords(const TrendRow& row) const;
    [[nodiscard]] Lines FilterWords(const TrendRow& row) const;
    [[nodiscard]] Lines DisplayWords(const TrendRow& row) const;
    [[nodiscard]] Lines CurveWords(const TrendRow& row) const;
    [[nodiscard]] Lines ToleranceWords(const TrendRow& row) const;

    const ReportTexts& texts_;
};

}  // namespace report
