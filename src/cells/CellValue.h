#pragma once

#include <QVariant>

#include "ado/Recordset.h"
#include "controls/GridSource.h"

/// Values of fields as a grid has them.

/// As GridRole::kStored: what stands for nothing is an empty text.
[[nodiscard]] QVariant StoredValue(const ado::Value& value);
/// As GridRole::kExact: texts as they are, so that written again they are the same.
[[nodiscard]] QVariant ExactValue(const ado::Value& value);
/// What a grid's value is for a field, which takes what fits into it and refuses the rest.
[[nodiscard]] ado::Value FieldValue(const QVariant& value);

/// The kind of cells that a field of the table of trends, or of its texts, has.
[[nodiscard]] GridKind KindOf(const ado::Field& field);
