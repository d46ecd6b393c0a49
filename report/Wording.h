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
};
using Lines = QList<Line>;

/// A setting by its name.
struct Fact {
    QString name;
    Lines lines;
};

/// A column of the trend table and its share of the width in percent.
struct TrendColumnHead {
    Text name;
    int width;
};
inline constexpr std::array kTrendHeadings = {
    TrendColumnHead{Text::ColumnName, 15},      TrendColumnHead{Text::ColumnVariable, 14},
    TrendColumnHead{Text::ColumnRange, 11},     TrendColumnHead{Text::ColumnSubstitution, 9},
    TrendColumnHead{Text::ColumnHysteresis, 9}, TrendColumnHead{Text::ColumnFilter, 7},
    TrendColumnHead{Text::ColumnDisplay, 14},   TrendColumnHead{Text::ColumnCurve, 8},
    TrendColumnHead{Text::ColumnTolerance, 13}};
using TrendCells = std::array<Lines, kTrendHeadings.size()>;

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
