#pragma once

class QWidget;

namespace messages {

/// Makes labels and tool tips show text as it stands: in `window` and in all that belongs to it,
/// its dialogs and their tool tips included. Qt takes a text that looks like markup for markup,
/// and the names, units and paths of a project may look like anything. A label that means markup
/// says so itself, by Qt::RichText. For each window of the program's own, once, when it is made.
void KeepTextsPlain(QWidget& window);

}  // namespace messages
