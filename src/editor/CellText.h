#pragma once

#include <QLocale>
#include <QString>

#include "ado/Value.h"
#include "languages/MResources.h"

/// A field's value as the grid shows it: numbers and dates as `locale` writes them (no digit
/// grouping), Booleans by their words, binaries by their size. Null is nothing.
[[nodiscard]] QString CellText(const ado::Value& value, const QLocale& locale,
                               const MResources::TextTable& texts);

/// Numbers stand at the right edge of their cell.
[[nodiscard]] bool IsNumber(ado::DataType type);
