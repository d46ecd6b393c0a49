#pragma once

#include <optional>
#include <QLocale>
#include <QString>
#include <QVariant>

#include "controls/GridSource.h"

/// What a cell's stored value reads like and what a typed text means.
namespace cellvalue {

/// A number without digit grouping and with as many places as it has; anything else as its text.
[[nodiscard]] QString GeneralNumber(const QVariant& stored, const QLocale& locale);

/// "#RRGGBB"; a colour of the system's scheme as "&H" and its stored number.
[[nodiscard]] QString ColourText(int stored);

/// The characters that an editor of this kind lets through; empty: all.
[[nodiscard]] QString InputPattern(GridKind kind);

/// Whether an editor of this kind would let `typed` through.
[[nodiscard]] bool Accepts(const QString& typed, GridKind kind);

/// What `text` means in a cell: an invalid value when it is empty (cleared), nothing when it is no
/// value of the kind as a whole. Numbers have "," or "." before their fraction.
[[nodiscard]] std::optional<QVariant> Parse(const QString& text, GridKind kind);

/// The number that a text wholly is, with "," or "." before its fraction; nothing when it is none.
[[nodiscard]] std::optional<double> WholeNumber(const QString& text);

}  // namespace cellvalue
