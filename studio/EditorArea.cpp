#include "studio/EditorArea.h"

#include <algorithm>
#include <QChildEvent>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>

#include "studio/StudioTexts.h"

namespace studio {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A button that looks like a link and, unlike one in a text, is a control of its own.
class Link final : public QPushButton {
public:
    Link() {
        setFlat(true);
        setAutoDefault(true);  // Enter goes there
        setCursor(Qt::PointingHandCursor);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        QFont underlined = font();
        underlined.setUnderline(true);
        setFont(underlined);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setPen(QPen(palette().color(QPalette::Link), kRing));
        painter.drawText(rect().adjusted(kMargin, 0, 0, 0),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, text());
        if (hasFocus()) painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }

private:
    static constexpr int kRing = 2;    // pixels, around the one with the keyboard
    static constexpr int kMargin = 5;  // pixels
};

QPushButton* MakeLink(const QString& name) {
    auto* link = new Link;
    link->setObjectName(name);
    return link;
}

}  // namespace

EditorContainer::EditorContainer(QWidget* parent) : QWidget(parent) {
    setObjectName(u"fraEditor"_s);
}

void EditorContainer::childEvent(QChildEvent* event) {
    if (event->removed()) {
        Leave(event->child());
        return;
    }
    // At ChildAdded a window that was made with this parent is not constructed yet, hence queued.
    if (!event->added() || !event->child()->isWidgetType()) return;
    QMetaObject::invokeMethod(
        this,
        [this, child = QPointer<QObject>(event->child())] {
            auto* editor = qobject_cast<QWidget*>(child.data());
            if (editor != nullptr && editor->parentWidget() == this) TakeIn(*editor);
        },
        Qt::QueuedConnection);
    event->child()->installEventFilter(this);
}

void EditorContainer::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (current_ != nullptr) current_->setGeometry(rect());
}

bool EditorContainer::eventFilter(QObject* watched, QEvent* event) {
    auto* editor = qobject_cast<QWidget*>(watched);
    if (editor == nullptr || editor->parentWidget() != this || editor->isWindow()) return false;
    if (event->type() == QEvent::ShowToParent) SetCurrent(editor);
    if (event->type() == QEvent::HideToParent) Leave(editor);
    if (event->type() == QEvent::WindowTitleChange && editor == current_) emit TitleChanged();
    // An editor behind another one is not hidden: its add-in's show() does nothing, raise() does.
    if (event->type() == QEvent::ZOrderChange && !arranging_) ShowTopmost();
    return false;
}

void EditorContainer::TakeIn(QWidget& editor) {
    const bool hiddenExpressly = editor.testAttribute(Qt::WA_WState_ExplicitShowHide) &&
                                 editor.testAttribute(Qt::WA_WState_Hidden);
    if (editor.isWindow() || hiddenExpressly) return;
    editor.show();
    SetCurrent(&editor);
}

void EditorContainer::SetCurrent(QWidget* editor) {
    std::erase(editors_, editor);
    editors_.push_back(editor);
    if (editor == current_) return;
    QWidget* previous = current_;
    current_ = editor;
    editor->setGeometry(rect());
    {
        const QScopedValueRollback arranging(arranging_, true);
        if (previous != nullptr) previous->lower();
        editor->raise();
    }
    emit CurrentChanged();
}

void EditorContainer::ShowTopmost() {
    const QObjectList& order = children();  // widgets in the order of the screen, topmost last
    for (auto child = order.rbegin(); child != order.rend(); ++child) {
        const auto known = std::find(editors_.begin(), editors_.end(), *child);
        if (known == editors_.end()) continue;
        SetCurrent(*known);
        return;
    }
}

void EditorContainer::Leave(QObject* editor) {
    std::erase_if(editors_, [editor](QWidget* known) { return known == editor; });
    if (editor != current_) return;
    current_ = editors_.empty() ? nullptr : editors_.back();
    if (current_ != nullptr) {
        current_->setGeometry(rect());
        current_->raise();
    }
    emit CurrentChanged();
}

EditorArea::EditorArea(QWidget* parent) : QStackedWidget(parent) {
    setObjectName(u"fraEditors"_s);
    container_ = new EditorContainer;
    emptyPage_ = new QWidget;
    emptyPage_->setObjectName(u"fraEmpty"_s);
    lblTitle_ = new QLabel;
    lblTitle_->setObjectName(u"lblEmptyTitle"_s);
    QFont large = lblTitle_->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    lblTitle_->setFont(large);
    lblHint_ = new QLabel;
    lblHint_->setObjectName(u"lblEmptyHint"_s);
    lblHint_->setWordWrap(true);
    cmdNew_ = MakeLink(u"cmdNew"_s);
    cmdOpen_ = MakeLink(u"cmdOpen"_s);
    cmdDemo_ = MakeLink(u"cmdDemo"_s);
    lblRecent_ = new QLabel;
    lblRecent_->setObjectName(u"lblRecent"_s);
    QFont bold = lblRecent_->font();
    bold.setBold(true);
    lblRecent_->setFont(bold);
    recent_ = new QVBoxLayout;
    recent_->setSpacing(2);
    fraStart_ = new QWidget;
    auto* start = new QVBoxLayout(fraStart_);
    start->setContentsMargins(0, 0, 0, 0);
    start->setSpacing(2);
    for (QPushButton* link : {cmdNew_, cmdOpen_, cmdDemo_}) start->addWidget(link);
    start->addSpacing(16);
    start->addWidget(lblRecent_);
    start->addLayout(recent_);
    auto* layout = new QVBoxLayout(emptyPage_);
    layout->setContentsMargins(40, 40, 40, 40);
    layout->setSpacing(12);
    layout->addWidget(lblTitle_);
    layout->addWidget(lblHint_);
    layout->addWidget(fraStart_);
    layout->addStretch();
    addWidget(emptyPage_);
    addWidget(container_);
    connect(container_, &EditorContainer::CurrentChanged, this, &EditorArea::ShowCurrent);
    connect(cmdOpen_, &QPushButton::clicked, this, &EditorArea::OpenRequested);
    connect(cmdNew_, &QPushButton::clicked, this, &EditorArea::NewRequested);
    connect(cmdDemo_, &QPushButton::clicked, this, &EditorArea::DemoRequested);
}

void EditorArea::SetState(State state, const StudioTexts& texts) {
    struct Row {
        Text title;
        Text hint;
    };
    constexpr Row kRows[] = {{Text::EmptyTitle, Text::EmptyHint},
                             {Text::NothingOpenTitle, Text::NothingOpenHint},
                             {Text::NothingOpenTitle, Text::NoAddInsHint}};
    const Row& row = kRows[static_cast<int>(state)];
    lblTitle_->setText(texts(row.title));
    lblHint_->setText(texts(row.hint));
    cmdNew_->setText(texts(Text::FileNew));
    cmdOpen_->setText(texts(Text::EmptyOpen));
    cmdDemo_->setText(texts(Text::EmptyDemo));
    fraStart_->setVisible(state == State::NoProject);
    setAccessibleName(texts(Text::EditorAreaName));
    container_->setAccessibleName(texts(Text::EditorAreaName));
}

void EditorArea::SetRecent(const QList<std::pair<QString, QString>>& projects,
                           const StudioTexts& texts) {
    while (QLayoutItem* item = recent_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    lblRecent_->setText(texts(Text::EmptyRecent));
    lblRecent_->setVisible(!projects.isEmpty());
    for (const auto& [project, shown] : projects) {
        QPushButton* link = MakeLink(u"cmdRecent(%1)"_s.arg(recent_->count()));
        link->setText(QString(shown).replace(u'&', u"&&"_s));
        link->setToolTip(project);
        connect(
            link, &QPushButton::clicked, this,
            [this, project = project] {
                // Opening replaces the list, this button with it.
                emit RecentRequested(project);
            },
            Qt::QueuedConnection);
        recent_->addWidget(link);
    }
}

void EditorArea::SetDemo(bool isThere) {
    cmdDemo_->setVisible(isThere);
}

void EditorArea::ShowCurrent() {
    setCurrentWidget(container_->Current() != nullptr ? static_cast<QWidget*>(container_)
                                                      : emptyPage_);
}

}  // namespace studio
