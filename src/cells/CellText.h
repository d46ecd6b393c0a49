#pragma once

#include <QLocale>
#include <QString>

#include "ado/Value.h"
#include "texts/MResources.h"

/// A field's value as the grid shows it: see project::ValueText; dates as `locale` writes them,
/// Booleans by their words, binaries by their size.
[[nodiscard]] QString CellText(const ado::Value& value, const QLocale& locale,
                               const MResources::TextTable& texts);

/// The same whatever the locale, numbers with every digit that they have: for reading it back.
[[nodiscard]] QString WholeText(const ado::Value& value, const MResources::TextTable& texts);
