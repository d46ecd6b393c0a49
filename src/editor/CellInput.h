#pragma once

#include <optional>
#include <QLocale>
#include <QString>

#include "ado/Recordset.h"
#include "languages/MResources.h"

/// What a person has typed into a cell, or pasted, as the value for the field. Numbers and dates
/// as `locale` writes them, numbers with "," or "." alike as decimal separator; Booleans by their
/// words or as numbers. A text that is nothing but blanks is Null for every field but a text
/// field, for which only the empty text is. nullopt when the text is no value of the field's type
/// or the field is of a type that cannot be typed.
[[nodiscard]] std::optional<ado::Value> CellInput(const QString& text, const ado::Field& field,
                                                  const QLocale& locale,
                                                  const MResources::TextTable& texts);
