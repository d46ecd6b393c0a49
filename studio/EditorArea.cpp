#include "studio/EditorArea.h"

#include <algorithm>
#include <QChildEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QUrl>
#include <QVBoxLayout>

#include "studio/StudioTexts.h"

namespace studio {

using namespace Qt::Literals::StringLiterals;

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
    cmdOpen_ = new QPushButton;
    cmdOpen_->setObjectName(u"cmdOpen"_s);
    cmdOpen_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    lblRecent_ = new QLabel;
    lblRecent_->setObjectName(u"lblRecent"_s);
    lblRecent_->setTextFormat(Qt::RichText);
    lblRecent_->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    auto* layout = new QVBoxLayout(emptyPage_);
    layout->setContentsMargins(40, 40, 40, 40);
    layout->setSpacing(12);
    layout->addWidget(lblTitle_);
    layout->addWidget(lblHint_);
    layout->addWidget(cmdOpen_);
    layout->addSpacing(12);
    layout->addWidget(lblRecent_);
    layout->addStretch();
    addWidget(emptyPage_);
    addWidget(container_);
    connect(container_, &EditorContainer::CurrentChanged, this, &EditorArea::ShowCurrent);
    connect(cmdOpen_, &QPushButton::clicked, this, &EditorArea::OpenRequested);
    connect(lblRecent_, &QLabel::linkActivated, this, [this](const QString& link) {
        emit RecentRequested(QUrl::fromPercentEncoding(link.toLatin1()));
    });
}

void EditorArea::SetState(State state, const StudioTexts& texts) {
    struct Row {
        Text title;
        Text hint;
    };
    constexpr Row kRows[] = {{Text::EmptyTitle, Text::EmptyHint},
                             {Text::NothingOpenTitle, Text::NothingOpenHint},
                             {Text::NothingOpenTitle, Text::NoAddInsHint}};
    state_ = state;
    const Row& row = kRows[static_cast<int>(state)];
    lblTitle_->setText(texts(row.title));
    lblHint_->setText(texts(row.hint));
    cmdOpen_->setText(texts(Text::EmptyOpen));
    cmdOpen_->setVisible(state == State::NoProject);
    lblRecent_->setVisible(state == State::NoProject && hasRecent_);
    setAccessibleName(texts(Text::EditorAreaName));
    container_->setAccessibleName(texts(Text::EditorAreaName));
}

void EditorArea::SetRecent(const QList<std::pair<QString, QString>>& projects,
                           const StudioTexts& texts) {
    QString html = u"<p><b>%1</b></p>"_s.arg(texts(Text::EmptyRecent).toHtmlEscaped());
    for (const auto& [project, shown] : projects) {
        html += u"<p><a href=\"%1\">%2</a></p>"_s.arg(
            QString::fromLatin1(QUrl::toPercentEncoding(project)), shown.toHtmlEscaped());
    }
    lblRecent_->setText(html);
    hasRecent_ = !projects.isEmpty();
    lblRecent_->setVisible(state_ == State::NoProject && hasRecent_);
}

void EditorArea::ShowCurrent() {
    setCurrentWidget(container_->Current() != nullptr ? static_cast<QWidget*>(container_)
                                                      : emptyPage_);
}

}  // namespace studio
