#pragma once

#include <QString>

class QWidget;

namespace messages {

/// Makes labels and tool tips show text as it stands: in `window` and in all that belongs to it,
/// its dialogs and their tool tips included. Qt takes a text that looks like markup for markup,
/// and the names, units and paths of a project may look like anything. A label that means markup
/// says so itself, by Qt::RichText. For each window of the program's own, once, when it is made.
void KeepTextsPlain(QWidget& window);

/// A sentence as a tool tip, in lines of a length that is easily read: Qt breaks the lines of
/// markup only, and these tips are none.
[[nodiscard]] QString TipLines(const QString& text);

}  // namespace messages
