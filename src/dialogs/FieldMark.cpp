#include "dialogs/FieldMark.h"

#include <QEvent>
#include <QLineEdit>

#include "messages/PlainTexts.h"

namespace {

constexpr int kGap = 4;  // pixels around the remark

}  // namespace

FieldMark& FieldMark::Of(QLineEdit& field) {
    auto* mark = field.findChild<FieldMark*>(QString(), Qt::FindDirectChildrenOnly);
    return mark != nullptr ? *mark : *new FieldMark(field);
}

FieldMark::FieldMark(QLineEdit& field) : QLabel(&field), field_(field) {
    setObjectName(field.objectName() + QStringLiteral("Mark"));
    setTextFormat(Qt::PlainText);
    setAutoFillBackground(true);
    setCursor(Qt::ArrowCursor);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(0xB0, 0x20, 0x20));
    colours.setColor(QPalette::WindowText, Qt::white);
    setPalette(colours);
    setContentsMargins(kGap, 0, kGap, 0);
    field.installEventFilter(this);
    hide();
}

void FieldMark::Show(const QString& remark, const QString& why) {
    setText(remark);
    setToolTip(messages::TipLines(why));
    field_.setAccessibleDescription(why);
    Place();
    show();
}

void FieldMark::Clear() {
    hide();
    setText({});
    field_.setAccessibleDescription({});
    field_.setTextMargins(0, 0, 0, 0);
}

void FieldMark::Place() {
    const int width = sizeHint().width();
    setGeometry(field_.width() - width, 0, width, field_.height());
    field_.setTextMargins(0, 0, width, 0);
}

bool FieldMark::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &field_ && event->type() == QEvent::Resize && !text().isEmpty()) Place();
    return QLabel::eventFilter(watched, event);
}
