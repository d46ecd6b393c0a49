#pragma once

#include <QString>
#include <QVariant>

class QWidget;

/// What the user sees or has chosen in a control: a text, the number of an entry or colour, whether
/// it is checked. Invalid for controls that hold nothing, and for a colour that is none.
[[nodiscard]] QVariant ContentOf(const QWidget& control);
/// The same as the user would read it out.
[[nodiscard]] QString ShownContentOf(const QWidget& control);
/// Gives the control what ContentOf has told, as if the user had done so.
void SetContent(QWidget& control, const QVariant& content);
