#include "report/Curve.h"

#include <algorithm>
#include <QPainter>
#include <QStringList>
#include <QVector>

#include "project/Colour.h"

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto kPicturePrefix = "curve:"_L1;
constexpr int kMargin = 4;

/// Lengths of dashes and gaps in pixels; empty for a line.
QVector<qreal> Dashes(const Curve& curve, int width) {
    if (curve.style == 1) return {8.0, 5.0};
    if (curve.style == 2) return {1.0 * std::max(width, 2), 2.0 * std::max(width, 2)};
    return {};
}

int ShownWidth(const Curve& curve) {
    return std::clamp(curve.width, 1, Curve::kMaximumWidth);
}

/// The middle of a line so wide: one of an odd width lies on whole pixels when it runs between
/// them.
qreal Middle(int width) {
    constexpr int kRow = Curve::kSampleHeight / 2;
    return kRow + (width % 2) / 2.0;
}

}  // namespace

QColor Curve::Colour() const {
    const project::ColourParts parts = project::PartsOf(static_cast<std::int32_t>(colour));
    return QColor(parts.red, parts.green, parts.blue);
}

QColor Curve::Ground() const {
    return qGray(Colour().rgb()) > 215 ? QColor(0x40, 0x40, 0x40) : QColor(Qt::white);
}

QString Curve::PictureName() const {
    return kPicturePrefix + QString::number(colour & 0xFFFFFF, 16) + u'-' + QString::number(width) +
           u'-' + QString::number(style);
}

std::optional<Curve> Curve::FromPictureName(const QString& name) {
    if (!name.startsWith(kPicturePrefix)) return std::nullopt;
    const QStringList parts = name.mid(kPicturePrefix.size()).split(u'-');
    if (parts.size() < 3) return std::nullopt;
    return Curve{parts[0].toUInt(nullptr, 16), parts[1].toInt(), parts[2].toInt()};
}

QImage Curve::Picture(qreal scale) const {
    QImage image(QSize(kSampleWidth, kSampleHeight) * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Ground());
    QPainter painter(&image);
    painter.scale(scale, scale);
    const int shown = ShownWidth(*this);
    QPen pen(Colour(), shown, Qt::SolidLine, Qt::FlatCap);
    QVector<qreal> dashes = Dashes(*this, shown);
    for (qreal& length : dashes) length /= shown;  // a pen counts in its own width
    if (!dashes.isEmpty()) pen.setDashPattern(dashes);
    painter.setPen(pen);
    const qreal middle = Middle(shown);
    painter.drawLine(QPointF(kMargin, middle), QPointF(kSampleWidth - kMargin, middle));
    painter.setPen(QPen(QColor(0x90, 0x90, 0x90), 1));
    painter.drawRect(QRectF(0.5, 0.5, kSampleWidth - 1, kSampleHeight - 1));
    return image;
}

QString Curve::Svg() const {
    const int shown = ShownWidth(*this);
    QStringList lengths;
    for (const qreal length : Dashes(*this, shown)) lengths += QString::number(length);
    return uR"(<svg xmlns="http://www.w3.org/2000/svg" class="curve" width="%1" height="%2">)"
           uR"(<rect x="0.5" y="0.5" width="%3" height="%4" fill="%5" stroke="#909090"/>)"
           uR"(<line x1="%6" y1="%7" x2="%8" y2="%7" stroke="%9")"_s.arg(kSampleWidth)
               .arg(kSampleHeight)
               .arg(kSampleWidth - 1)
               .arg(kSampleHeight - 1)
               .arg(Ground().name())
               .arg(kMargin)
               .arg(Middle(shown))
               .arg(kSampleWidth - kMargin)
               .arg(ColourName()) +
           u" stroke-width=\"%1\""_s.arg(shown) +
           (lengths.isEmpty() ? QString() : u" stroke-dasharray=\"%1\""_s.arg(lengths.join(u' '))) +
           u"/></svg>"_s;
}

}  // namespace report
