#include "messages/LabelEdges.h"

#include <algorithm>
#include <map>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QStackedWidget>
#include <vector>

namespace messages {
namespace {

constexpr int kGap = 12;  // pixels between a label and its field

/// Labels of the first column, which have no field below them.
std::vector<QLabel*> LabelsOf(const QGridLayout& grid) {
    std::vector<QLabel*> labels;
    for (int i = 0; i < grid.count(); ++i) {
        int row = 0;
        int column = 0;
        int rows = 0;
        int columns = 0;
        grid.getItemPosition(i, &row, &column, &rows, &columns);
        auto* label = qobject_cast<QLabel*>(grid.itemAt(i)->widget());
        if (label != nullptr && column == 0 && columns == 1 && label->buddy() != nullptr) {
            labels.push_back(label);
        }
    }
    return labels;
}

/// What is seen at one time.
const QWidget* PageOf(const QWidget* widget) {
    while (!widget->isWindow() && widget->parentWidget() != nullptr &&
           qobject_cast<QStackedWidget*>(widget->parentWidget()) == nullptr) {
        widget = widget->parentWidget();
    }
    return widget;
}

/// How far the grid begins to the right of what stands on the page itself.
int IndentOf(const QGridLayout& grid, const QWidget* page) {
    int indent = 0;
    for (const QWidget* at = grid.parentWidget(); at != page; at = at->parentWidget()) {
        indent += at->contentsMargins().left();
        if (at->layout() != nullptr) indent += at->layout()->contentsMargins().left();
    }
    return indent;
}

struct Column {
    QGridLayout* grid;
    int indent;
    int width;
};

}  // namespace

void AlignLabels(QWidget& window) {
    for (QFormLayout* form : window.findChildren<QFormLayout*>()) form->setHorizontalSpacing(kGap);
    std::map<const QWidget*, std::vector<Column>> pages;
    for (QGridLayout* grid : window.findChildren<QGridLayout*>()) {
        const std::vector<QLabel*> labels = LabelsOf(*grid);
        if (labels.empty()) continue;
        Column column{grid, 0, 0};
        for (QLabel* label : labels) {
            label->ensurePolished();
            QMargins margins = label->contentsMargins();
            margins.setRight(std::max(0, kGap - grid->horizontalSpacing()));
            label->setContentsMargins(margins);
            column.width = std::max(column.width, label->sizeHint().width());
        }
        const QWidget* page = PageOf(grid->parentWidget());
        column.indent = IndentOf(*grid, page);
        pages[page].push_back(column);
    }
    for (const auto& [page, columns] : pages) {
        int edge = 0;
        for (const Column& column : columns) edge = std::max(edge, column.indent + column.width);
        for (const Column& column : columns) {
            column.grid->setColumnMinimumWidth(0, edge - column.indent);
        }
    }
}

}  // namespace messages
