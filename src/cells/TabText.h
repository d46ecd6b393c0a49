#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Rows of cells as the text that spreadsheets give and take over the clipboard: cells separated by
/// tabs, rows by line ends. A cell that holds a tab, a line end or begins with a quote stands in
/// quotes, the quotes inside it doubled.
namespace TabText {

[[nodiscard]] QString Format(const QList<QStringList>& rows);

/// Takes line ends of all kinds; the one at the very end begins no further row. A quote that is
/// not closed ends with the text. Rows may have different lengths.
[[nodiscard]] QList<QStringList> Parse(QStringView text);

}  // namespace TabText
