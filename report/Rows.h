#pragma once

#include <optional>
#include <QList>
#include <QString>
#include <span>
#include <string_view>
#include <vector>

#include "ado/Value.h"
#include "project/Schema.h"

namespace report {

/// A stored value, or that it cannot be read. A column that the project does not have is Null.
struct Cell {
    ado::Value value;
    bool damaged = false;
};

/// A text of a row in one language of the project.
struct LanguageText {
    int lcid = 0;
    QString text;
};

/// One row as the report needs it: a plain copy, independent of the file.
struct Row {
    explicit Row(std::span<const project::Column> known)
        : columns(known), cells(known.size() + 1) {}

    std::span<const project::Column> columns;
    std::vector<Cell> cells;  // the key, then one for each of `columns`
    /// Why the row could not be read; nothing else is then filled.
    QString failure;
    QList<LanguageText> texts;
    /// The row names an index text that does not exist.
    bool textMissing = false;

    /// REQUIRES: the name of one of `columns`, or the key's.
    [[nodiscard]] const Cell& operator[](std::string_view column) const;
    [[nodiscard]] Cell& operator[](std::string_view column);
};
struct ArchiveRow : Row {
    ArchiveRow() : Row(project::ArchiveColumns()) {}
};
struct TrendRow : Row {
    TrendRow() : Row(project::TrendColumns()) {}
};

/// The value as a whole number; nothing for Null, damage and what is no number.
[[nodiscard]] std::optional<int> Integer(const Cell& cell);
/// The value as text without the characters that neither a page nor XML can hold; empty for Null.
[[nodiscard]] QString PlainText(const Cell& cell);

}  // namespace report
