#include "controls/KVColorSelect.h"

#include <algorithm>
#include <QApplication>
#include <QColorDialog>
#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>
#include <QScreen>

#include "controls/detail/ColorPopup.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr quint32 kSystemColor = 0x80000000;
constexpr QSize kSwatch(28, 14);  // device-independent pixels

// On the application object: host and add-in may both carry this code.
constexpr char kRecentProperty[] = "KVRecentColors";

QList<QColor> RecentColors() {
    QList<QColor> colors;
    for (const QVariant& number : qApp->property(kRecentProperty).toList()) {
        colors.append(KVColorSelect::Shown(number.toInt(), QPalette()));
    }
    return colors;
}

void Remember(int number) {
    QVariantList numbers = qApp->property(kRecentProperty).toList();
    numbers.removeAll(number);
    numbers.prepend(number);
    if (numbers.size() > KVColorSelect::kRecentColors) numbers.removeLast();
    qApp->setProperty(kRecentProperty, numbers);
}

/// Palette role of a colour of the system's scheme, by its index there.
QPalette::ColorRole SystemRole(quint32 index) {
    switch (index) {
        case 5:
            return QPalette::Base;  // window
        case 8:
            return QPalette::Text;
        case 13:
            return QPalette::Highlight;
        case 14:
            return QPalette::HighlightedText;
        case 16:
            return QPalette::Dark;
        case 18:
            return QPalette::ButtonText;
        case 20:
            return QPalette::Light;
        case 23:
            return QPalette::ToolTipText;
        case 24:
            return QPalette::ToolTipBase;
        default:
            return QPalette::Button;
    }
}

}  // namespace

KVColorSelect::KVColorSelect(QWidget* parent) : QPushButton(parent) {
    setIconSize(kSwatch);
    setAutoDefault(false);  // Enter opens the palette instead of closing the dialog
    connect(this, &QPushButton::clicked, this, &KVColorSelect::OpenPalette);
    ShowColor();
}

KVColorSelect::~KVColorSelect() {
    // A palette that is still open goes down behind this part of the object.
    for (QObject* child : children()) child->disconnect(this);
}

void KVColorSelect::SetTexts(ColorTexts texts) {
    texts_ = std::move(texts);
    ShowColor();
}

void KVColorSelect::SetColor(int color) {
    if (hasColor_ && color == color_) return;
    hasColor_ = true;
    color_ = color;
    ShowColor();
    emit ColorChanged(color_);
}

void KVColorSelect::ClearColor() {
    if (!hasColor_) return;
    hasColor_ = false;
    color_ = 0;
    ShowColor();
    emit ColorChanged(color_);
}

QColor KVColorSelect::ShownColor() const {
    return Shown(color_, palette());
}

QColor KVColorSelect::Shown(int color, const QPalette& palette) {
    const auto bits = static_cast<quint32>(color);
    if ((bits & kSystemColor) != 0) return palette.color(QPalette::Active, SystemRole(bits & 0xff));
    return QColor(qBlue(bits), qGreen(bits), qRed(bits));  // stored the other way round
}

int KVColorSelect::ToNumber(const QColor& color) {
    return static_cast<int>(qRgba(color.blue(), color.green(), color.red(), 0));
}

QString KVColorSelect::NameOf(const QColor& color) const {
    QString parts = texts_.parts;
    parts.replace(u"<r>"_s, QString::number(color.red()))
        .replace(u"<g>"_s, QString::number(color.green()))
        .replace(u"<b>"_s, QString::number(color.blue()));
    for (int row = 0; row < controls::kPaletteRows; ++row) {
        for (int column = 0; column < controls::kPaletteColumns; ++column) {
            if (controls::PaletteColor(row, column).rgb() != color.rgb()) continue;
            const auto line = static_cast<std::size_t>(row);
            if (column == 0) return texts_.greys[line] + u", "_s + parts;
            QString name = texts_.hues[static_cast<std::size_t>(column) - 1];
            // The second row holds the full colours, which have no tint.
            if (line != 1) {
                QString tint = texts_.tints[line == 0 ? 0 : line - 1];
                name = tint.replace(u"<hue>"_s, name);
            }
            return name + u", "_s + parts;
        }
    }
    return parts;
}

void KVColorSelect::OpenPalette() {
    const QList<QColor> recent = RecentColors();
    auto* popup = new controls::ColorPopup(*this, recent, this);
    popup->setAttribute(Qt::WA_DeleteOnClose);
    connect(popup, &controls::ColorPopup::Picked, this, &KVColorSelect::Pick);
    connect(popup, &controls::ColorPopup::MoreWanted, this, &KVColorSelect::OpenDialog,
            Qt::QueuedConnection);
    connect(popup, &controls::ColorPopup::MoreWanted, this, [this] { dialogWanted_ = true; });
    connect(popup, &QObject::destroyed, this, [this] {
        if (!dialogWanted_) emit ChoiceEnded();
    });
    const QSize size = popup->sizeHint();
    QPoint place = mapToGlobal(QPoint(0, height()));
    const QRect free = screen()->availableGeometry();
    if (place.y() + size.height() > free.bottom()) {
        place.setY(mapToGlobal(QPoint()).y() - size.height());
    }
    place.setX(std::max(free.left(), std::min(place.x(), free.right() - size.width())));
    popup->move(place);
    popup->show();
    popup->FocusColor(hasColor_ ? ShownColor() : QColor(Qt::white));
}

void KVColorSelect::OpenDialog() {
    QColorDialog dialog(hasColor_ ? ShownColor() : QColor(Qt::white), this);
    dialog.setObjectName(u"dlgColor"_s);
    dialog.setWindowTitle(texts_.choose);
    if (dialog.exec() == QDialog::Accepted) Pick(dialog.selectedColor());
    dialogWanted_ = false;
    emit ChoiceEnded();
}

void KVColorSelect::Pick(const QColor& color) {
    const int number = ToNumber(color);
    Remember(number);
    SetColor(number);
}

void KVColorSelect::ShowColor() {
    QPixmap swatch(kSwatch * devicePixelRatioF());
    swatch.setDevicePixelRatio(devicePixelRatioF());
    swatch.fill(hasColor_ ? ShownColor() : palette().color(QPalette::Base));
    QPainter painter(&swatch);
    const QRect frame(QPoint(), kSwatch - QSize(1, 1));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(frame);
    if (!hasColor_) painter.drawLine(frame.bottomLeft(), frame.topRight());
    painter.end();
    setIcon(swatch);

    const bool system = (static_cast<quint32>(color_) & kSystemColor) != 0;
    const QString name = !hasColor_ ? texts_.none : system ? texts_.system : NameOf(ShownColor());
    // The name is for the ear and the tool tip; the eye has the swatch.
    setText(!hasColor_ || system ? name : ShownColor().name().toUpper());
    setAccessibleDescription(name);
    setToolTip(texts_.choose + u"\n"_s + name);
}

void KVColorSelect::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Down:
        case Qt::Key_F4:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (event->key() == Qt::Key_F4 && event->modifiers() != Qt::NoModifier) break;
            OpenPalette();
            return;
        default:
            break;
    }
    QPushButton::keyPressEvent(event);
}

void KVColorSelect::changeEvent(QEvent* event) {
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) ShowColor();
}
