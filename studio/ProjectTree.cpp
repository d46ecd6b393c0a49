#include "studio/ProjectTree.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>

#include "studio/ProjectTreeModel.h"
#include "studio/TreeEvents.h"

namespace studio {

using KV4AddIn::Node;

ProjectTree::ProjectTree(ProjectTreeModel& model, TreeEvents& events, QWidget* parent)
    : QTreeView(parent), model_(model), events_(events) {
    setObjectName(QStringLiteral("treProject"));
    setModel(&model_);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setSelectionMode(SingleSelection);
    setEditTriggers(EditKeyPressed);
    setMouseTracking(true);
    connect(this, &QTreeView::expanded, this, &ProjectTree::NoteExpanded);
}

bool ProjectTree::HostExpand(const QString& key) {
    const QModelIndex index = model_.IndexOf(key);
    if (!index.isValid()) return false;
    const QScopedValueRollback<bool> guard(hostChange_, true);
    for (QModelIndex up = index; up.isValid(); up = up.parent()) expand(up);
    hostExpanded_ = key;
    return true;
}

bool ProjectTree::HostSelect(const QString& key) {
    const QModelIndex index = model_.IndexOf(key);
    if (!index.isValid()) return false;
    const QScopedValueRollback<bool> guard(hostChange_, true);
    for (QModelIndex up = index.parent(); up.isValid(); up = up.parent()) expand(up);
    setCurrentIndex(index);
    selectedBeforePress_ = key;
    return true;
}

std::optional<Node> ProjectTree::SelectedNode() const {
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    return selected.isEmpty() ? std::nullopt : model_.NodeAt(selected.front());
}

bool ProjectTree::ClickAsUser(const QString& key) {
    const QModelIndex index = model_.IndexOf(key);
    if (!index.isValid()) return false;
    scrollTo(index);
    const QPointF place = QRect(visualRect(index)).center();
    const QPointF global = viewport()->mapToGlobal(place);
    QMouseEvent press(QEvent::MouseButtonPress, place, global, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(viewport(), &press);
    QMouseEvent release(QEvent::MouseButtonRelease, place, global, Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QApplication::sendEvent(viewport(), &release);
    return true;
}

bool ProjectTree::ExpandAsUser(const QString& key) {
    const QModelIndex index = model_.IndexOf(key);
    if (!index.isValid()) return false;
    if (isExpanded(index)) return true;
    if (SelectedKey() != key && !ClickAsUser(key)) return false;
    if (isExpanded(model_.IndexOf(key))) return true;  // by its add-in, upon the click
    QKeyEvent right(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
    QApplication::sendEvent(this, &right);
    return true;
}

QStringList ProjectTree::SelectedPath() const {
    QStringList path;
    for (QModelIndex at = model_.IndexOf(SelectedKey()); at.isValid(); at = at.parent()) {
        path.prepend(at.data(ProjectTreeModel::kKeyRole).toString());
    }
    return path;
}

void ProjectTree::OpenAsUser(const QStringList& path) {
    if (path.isEmpty() || SelectedKey() == path.back()) return;
    for (const QString& key : path.first(path.size() - 1)) {
        if (!ExpandAsUser(key)) return;
    }
    ClickAsUser(path.back());
}

bool ProjectTree::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (!IsReserved(*key)) {
            event->accept();
            return true;
        }
    }
    return QTreeView::event(event);
}

void ProjectTree::keyPressEvent(QKeyEvent* event) {
    if (const std::optional<Node> node = SelectedNode()) {
        if (events_.KeyDown(*node, *event) || events_.KeyPress(*node, *event)) {
            event->accept();
            return;
        }
    }
    const QString before = SelectedKey();
    {
        const QScopedValueRollback<int> guard(handling_, handling_ + 1);
        QTreeView::keyPressEvent(event);
    }
    RaiseExpansions();
    RaiseClickIfChangedFrom(before);
}

void ProjectTree::keyReleaseEvent(QKeyEvent* event) {
    // A key held down repeats its KeyDown; only letting go is a KeyUp.
    const std::optional<Node> node = SelectedNode();
    if (node && !event->isAutoRepeat() && events_.KeyUp(*node, *event)) {
        event->accept();
        return;
    }
    QTreeView::keyReleaseEvent(event);
}

void ProjectTree::mousePressEvent(QMouseEvent* event) {
    const QPoint position = event->position().toPoint();
    if (const std::optional<Node> node = model_.NodeAt(indexAt(position))) {
        events_.MouseDown(*node, ButtonsOf(event->button()), ShiftOf(event->modifiers()),
                          InView(position));
    }
    // The add-in may have changed the tree, so the node is looked up again.
    const std::optional<Node> pressed = model_.NodeAt(indexAt(position));
    const bool left = event->button() == Qt::LeftButton;
    pressedKey_ = left && pressed && OnItem(position) ? pressed->key : QString();
    selectedBeforePress_ = SelectedKey();
    pressing_ = true;
    {
        const QScopedValueRollback<int> guard(handling_, handling_ + 1);
        QTreeView::mousePressEvent(event);
    }
    RaiseExpansions();
}

void ProjectTree::mouseReleaseEvent(QMouseEvent* event) {
    const QPoint position = event->position().toPoint();
    {
        const QScopedValueRollback<int> guard(handling_, handling_ + 1);
        QTreeView::mouseReleaseEvent(event);
    }
    RaiseExpansions();
    if (pressing_) {
        pressing_ = false;
        const std::optional<Node> under = model_.NodeAt(indexAt(position));
        const QString selected = SelectedKey();
        if (under && under->key == pressedKey_ && selected == pressedKey_) {
            events_.Click(*under);
        } else {
            RaiseClickIfChangedFrom(selectedBeforePress_);
        }
    }
    if (const std::optional<Node> node = model_.NodeAt(indexAt(position))) {
        events_.MouseUp(*node, ButtonsOf(event->button()), ShiftOf(event->modifiers()),
                        InView(position));
    }
}

void ProjectTree::mouseDoubleClickEvent(QMouseEvent* event) {
    const QPoint position = event->position().toPoint();
    const std::optional<Node> node = model_.NodeAt(indexAt(position));
    // Two quick clicks on different nodes, or on an expander, are two clicks.
    if (!node || !OnItem(position) || node->key != pressedKey_) {
        mousePressEvent(event);
        return;
    }
    pressing_ = false;
    events_.DblClick(*node);
    {
        const QScopedValueRollback<int> guard(handling_, handling_ + 1);
        QTreeView::mouseDoubleClickEvent(event);
    }
    RaiseExpansions();
}

void ProjectTree::mouseMoveEvent(QMouseEvent* event) {
    const QPoint position = event->position().toPoint();
    if (const std::optional<Node> node = model_.NodeAt(indexAt(position))) {
        events_.MouseMove(*node, ButtonsOf(event->buttons()), ShiftOf(event->modifiers()),
                          InView(position));
    }
    QTreeView::mouseMoveEvent(event);
}

void ProjectTree::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    const std::optional<Node> node = SelectedNode();
    // The mouse raises its own events; the menu key stands for a right click on the node.
    if (event->reason() != QContextMenuEvent::Keyboard || !node) return;
    scrollTo(model_.IndexOf(node->key));
    const QPoint place = InView(visualRect(model_.IndexOf(node->key)).center());
    events_.MouseDown(*node, KV4AddIn::kRightButton, KV4AddIn::kShiftNone, place);
    events_.MouseUp(*node, KV4AddIn::kRightButton, KV4AddIn::kShiftNone, place);
}

QItemSelectionModel::SelectionFlags ProjectTree::selectionCommand(const QModelIndex& index,
                                                                  const QEvent* event) const {
    const bool release = event != nullptr && event->type() == QEvent::MouseButtonRelease;
    if (!index.isValid() || release) return QItemSelectionModel::NoUpdate;
    return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
}

// Where the keyboard is, is seen at a glance: elsewhere the selection is grey.
void ProjectTree::initViewItemOption(QStyleOptionViewItem* option) const {
    QTreeView::initViewItemOption(option);
    if (hasFocus()) return;
    const QColor base = palette().color(QPalette::Base);
    const QColor text = palette().color(QPalette::Text);
    const auto mix = [](int a, int b) { return (a * 7 + b * 3) / 10; };
    option->palette.setColor(QPalette::Highlight,
                             QColor(mix(base.red(), text.red()), mix(base.green(), text.green()),
                                    mix(base.blue(), text.blue())));
    option->palette.setColor(QPalette::HighlightedText, text);
}

void ProjectTree::NoteExpanded(const QModelIndex& index) {
    if (hostChange_) return;
    userExpanded_.append(index.data(ProjectTreeModel::kKeyRole).toString());
    if (handling_ == 0) RaiseExpansions();
}

QString ProjectTree::SelectedKey() const {
    const std::optional<Node> node = SelectedNode();
    return node ? node->key : QString();
}

bool ProjectTree::IsReserved(const QKeyEvent& event) const {
    // Alt with a character opens a menu.
    const bool character = event.key() < Qt::Key_Escape;
    if (event.modifiers().testFlag(Qt::AltModifier) && character) return true;
    return reservedKeys_.contains(QKeySequence(event.keyCombination()));
}

bool ProjectTree::OnItem(const QPoint& position) const {
    return position.x() >= visualRect(indexAt(position)).left();
}

QPoint ProjectTree::InView(const QPoint& position) const {
    return viewport()->mapTo(this, position);
}

void ProjectTree::RaiseClickIfChangedFrom(const QString& keyBefore) {
    const std::optional<Node> node = SelectedNode();
    if (node && node->key != keyBefore) events_.Click(*node);
}

void ProjectTree::RaiseExpansions() {
    while (!userExpanded_.isEmpty()) {
        const QString key = userExpanded_.takeFirst();
        const std::optional<Node> node = model_.NodeAt(model_.IndexOf(key));
        if (!node) continue;
        hostExpanded_.clear();
        events_.Expand(*node);
        // Still without children: closed again, so that expanding it tries once more.
        const QModelIndex index = model_.IndexOf(key);
        if (index.isValid() && model_.rowCount(index) == 0 && hostExpanded_ != key) {
            collapse(index);
        }
    }
}

}  // namespace studio
