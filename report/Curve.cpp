#include "report/Curve.h"

#include <algorithm>
#include <QPainter>
#include <QStringList>
#include <QVector>
#include <QXmlStreamWriter>

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

void Curve::Draw(QPainter& painter, QPointF at) const {
    if (Ground() != QColor(Qt::white)) {
        painter.fillRect(QRectF(at, QSizeF(kSampleWidth, kSampleHeight)), Ground());
    }
    const int shown = ShownWidth(*this);
    QPen pen(Colour(), shown, Qt::SolidLine, Qt::FlatCap);
    QVector<qreal> dashes = Dashes(*this, shown);
    for (qreal& length : dashes) length /= shown;  // a pen counts in its own width
    if (!dashes.isEmpty()) pen.setDashPattern(dashes);
    painter.setPen(pen);
    const qreal middle = Middle(shown);
    painter.drawLine(at + QPointF(kMargin, middle), at + QPointF(kSampleWidth - kMargin, middle));
    painter.setPen(QPen(QColor(0x90, 0x90, 0x90), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(
        QRectF(at, QSizeF(kSampleWidth, kSampleHeight)).adjusted(0.5, 0.5, -0.5, -0.5));
}

QImage Curve::Picture(qreal scale) const {
    QImage image(QSize(kSampleWidth, kSampleHeight) * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Ground());
    QPainter painter(&image);
    painter.scale(scale, scale);
    Draw(painter, {});
    return image;
}

void Curve::WriteSvg(QXmlStreamWriter& page) const {
    const auto write = [&](const QString& name, qreal number) {
        page.writeAttribute(name, QString::number(number));
    };
    const int shown = ShownWidth(*this);
    page.writeStartElement(u"svg"_s);
    page.writeAttribute(u"xmlns"_s, u"http://www.w3.org/2000/svg"_s);
    page.writeAttribute(u"class"_s, u"curve"_s);
    write(u"width"_s, kSampleWidth);
    write(u"height"_s, kSampleHeight);
    page.writeEmptyElement(u"rect"_s);
    write(u"x"_s, 0.5);
    write(u"y"_s, 0.5);
    write(u"width"_s, kSampleWidth - 1);
    write(u"height"_s, kSampleHeight - 1);
    page.writeAttribute(u"fill"_s, Ground().name());
    page.writeAttribute(u"stroke"_s, u"#909090"_s);
    page.writeEmptyElement(u"line"_s);
    write(u"x1"_s, kMargin);
    write(u"y1"_s, Middle(shown));
    write(u"x2"_s, kSampleWidth - kMargin);
    write(u"y2"_s, Middle(shown));
    page.writeAttribute(u"stroke"_s, ColourName());
    write(u"stroke-width"_s, shown);
    QStringList lengths;
    for (const qreal length : Dashes(*this, shown)) lengths += QString::number(length);
    if (!lengths.isEmpty()) page.writeAttribute(u"stroke-dasharray"_s, lengths.join(u' '));
    page.writeEndElement();
}

}  // namespace report
