#include "addin/ArchiveIcon.h"

#include <algorithm>
#include <cmath>
#include <QPainter>
#include <QPixmap>

namespace {

constexpr int kSizes[] = {16, 20, 24, 32, 48, 64};
constexpr QRgb kLid = 0xFFE8A33D;
constexpr QRgb kFront = 0xFF2F7DC4;
constexpr QRgb kEdge = 0xFF1C5A94;
constexpr QRgb kCurve = 0xFFFFFFFF;

/// The curve as parts of the front's width and height.
constexpr QPointF kPoints[] = {
    {0.12, 0.70}, {0.32, 0.34}, {0.52, 0.62}, {0.70, 0.24}, {0.88, 0.40}};

QPixmap Draw(int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const double unit = size / 16.0;
    // Edges on whole pixels; only the curve needs smoothing.
    const auto snap = [unit](double units) { return std::round(units * unit); };

    const QRectF lid(snap(1), snap(2), size - 2 * snap(1), snap(4) - 1);
    const QRectF front(snap(2), lid.bottom(), size - 2 * snap(2), size - snap(2) - lid.bottom());
    painter.fillRect(lid, QColor::fromRgb(kLid));
    painter.fillRect(front, QColor::fromRgb(kFront));
    const double edge = std::max(1.0, std::floor(unit));
    painter.fillRect(QRectF(front.left(), front.top(), front.width(), edge),
                     QColor::fromRgb(kEdge));

    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor::fromRgb(kCurve), std::max(1.25, 1.2 * unit), Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    QPolygonF curve;
    for (const QPointF& point : kPoints) {
        curve << QPointF(front.left() + point.x() * front.width(),
                         front.top() + edge + point.y() * (front.height() - edge));
    }
    painter.drawPolyline(curve);
    return pixmap;
}

}  // namespace

QIcon ArchiveIcon() {
    QIcon icon;
    for (const int size : kSizes) {
        const QPixmap picture = Draw(size);
        icon.addPixmap(picture);
        icon.addPixmap(picture, QIcon::Selected);  // or a selected row would tint it
    }
    return icon;
}
