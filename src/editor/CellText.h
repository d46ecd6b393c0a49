#pragma once

#include <QLocale>
#include <QString>
#include <string>

#include "ado/Value.h"
#include "texts/MResources.h"

/// A field's value as the grid shows it: numbers and dates as `locale` writes them (no digit
/// grouping), Booleans by their words, binaries by their size. Null is nothing.
[[nodiscard]] QString CellText(const ado::Value& value, const QLocale& locale,
                               const MResources::TextTable& texts);

/// A text as the grid holds it. The one character U+0000 stands for an empty text where a column
/// forbids those.
[[nodiscard]] QString ShownText(const std::u16string& text);
