#pragma once

#include <QLocale>
#include <QString>

#include "ado/Recordset.h"
#include "project/FieldText.h"
#include "texts/MResources.h"

/// What a person has typed into a cell, or pasted, as the value for a field: texts, numbers, codes
/// and colours as project::ReadCell does, codes by the texts of the interface too; dates as
/// `locale` writes them, Booleans by their words or as numbers. `asStored`: the text has been made
/// of a stored value.
[[nodiscard]] project::Reading CellInput(const QString& text, const ado::Field& field,
                                         const QLocale& locale, const MResources::TextTable& texts,
                                         bool asStored = false);
