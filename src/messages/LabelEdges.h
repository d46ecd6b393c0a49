#pragma once

class QWidget;

namespace messages {

/// Labels of the window stand 12 pixels from their fields, and the fields of a page, those in its
/// groups too, have one left edge. For windows that are whole, with their texts; columns of labels
/// are the first ones of grids, and forms.
void AlignLabels(QWidget& window);

}  // namespace messages
