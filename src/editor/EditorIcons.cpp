#include "editor/EditorIcons.h"

#include <cmath>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace {

// All pictures are drawn on a field of 16 by 16 units.
constexpr double kUnits = 16;
constexpr QRgb kArchive = 0xFF2F7DC4;
constexpr QRgb kCurve = 0xFF3FA34D;
constexpr QRgb kNew = 0xFFE8A33D;
constexpr QRgb kDelete = 0xFFD0453A;

QPen Line(const QColor& color, double width = 1.4) {
    return {color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void DrawArchive(QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgb(kArchive));
    painter.drawRoundedRect(QRectF(1, 2, 11, 3), 0.8, 0.8);
    painter.drawRoundedRect(QRectF(1.8, 5.6, 9.4, 7.4), 0.8, 0.8);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(Line(Qt::white, 1.1));
    painter.drawPolyline(QPolygonF{{3.2, 10.8}, {5, 8.2}, {7, 10.2}, {9.6, 7.6}});
}

void DrawTrend(QPainter& painter, const QColor& ink) {
    painter.setPen(Line(ink, 1.1));
    painter.drawPolyline(QPolygonF{{1.5, 2}, {1.5, 13}, {12.5, 13}});
    painter.setPen(Line(QColor::fromRgb(kCurve), 1.6));
    painter.drawPolyline(QPolygonF{{2.8, 10.5}, {5.4, 5.5}, {8, 8.8}, {11.6, 3}});
}

// The signs of what is done stand in the lower right corner.
void DrawPlus(QPainter& painter) {
    painter.setPen(Line(QColor::fromRgb(kNew), 2.4));
    painter.drawLine(QPointF(12, 9.2), QPointF(12, 14.8));
    painter.drawLine(QPointF(9.2, 12), QPointF(14.8, 12));
}

void DrawCross(QPainter& painter) {
    painter.setPen(Line(QColor::fromRgb(kDelete), 2.2));
    painter.drawLine(QPointF(9.8, 9.8), QPointF(14.4, 14.4));
    painter.drawLine(QPointF(14.4, 9.8), QPointF(9.8, 14.4));
}

void DrawPencil(QPainter& painter, const QColor& ink) {
    painter.setPen(Line(ink, 0.8));
    painter.setBrush(QColor::fromRgb(kNew));
    painter.drawPolygon(QPolygonF{{13.2, 6.6}, {15.2, 8.6}, {10, 13.8}, {7.4, 14.4}, {8, 11.8}});
    painter.setBrush(Qt::NoBrush);
}

void DrawSheet(QPainter& painter, const QRectF& sheet, const QColor& ink, const QColor& paper) {
    painter.setPen(Line(ink, 1.1));
    painter.setBrush(paper);
    painter.drawRoundedRect(sheet, 1, 1);
    painter.setBrush(Qt::NoBrush);
}

void DrawLines(QPainter& painter, const QRectF& sheet, int count, const QColor& ink) {
    painter.setPen(Line(ink, 0.9));
    for (int i = 1; i <= count; ++i) {
        const double y = sheet.top() + sheet.height() * i / (count + 1);
        painter.drawLine(QPointF(sheet.left() + 1.6, y), QPointF(sheet.right() - 1.6, y));
    }
}

void DrawCopy(QPainter& painter, const QColor& ink, const QColor& paper) {
    DrawSheet(painter, QRectF(2, 1.5, 8, 10), ink, paper);
    const QRectF front(5.5, 4.5, 8, 10);
    DrawSheet(painter, front, ink, paper);
    DrawLines(painter, front, 3, ink);
}

void DrawPaste(QPainter& painter, const QColor& ink, const QColor& paper) {
    DrawSheet(painter, QRectF(2, 2.5, 10, 12), ink, QColor::fromRgb(kNew));
    painter.fillRect(QRectF(4.5, 1.2, 5, 2.6), ink);
    const QRectF front(6, 6, 8, 8.5);
    DrawSheet(painter, front, ink, paper);
    DrawLines(painter, front, 2, ink);
}

void DrawDuplicate(QPainter& painter, const QColor& ink) {
    painter.save();
    painter.scale(0.72, 0.72);
    DrawTrend(painter, ink);
    painter.translate(7, 7);
    DrawTrend(painter, ink);
    painter.restore();
}

void DrawRefresh(QPainter& painter, const QColor& ink) {
    painter.setPen(Line(ink, 1.6));
    const QRectF circle(2.5, 2.5, 11, 11);
    painter.drawArc(circle, 40 * 16, 250 * 16);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawPolygon(QPolygonF{{13.9, 1.6}, {13.9, 6.6}, {9.2, 5.4}});
    painter.setBrush(Qt::NoBrush);
}

void DrawReport(QPainter& painter, const QColor& ink, const QColor& paper) {
    DrawSheet(painter, QRectF(2.5, 1.5, 11, 13), ink, paper);
    DrawLines(painter, QRectF(2.5, 1.5, 11, 6), 2, ink);
    painter.setPen(Line(QColor::fromRgb(kCurve), 1.5));
    painter.drawPolyline(QPolygonF{{4.2, 12.6}, {6.6, 9.4}, {8.6, 11.4}, {11.8, 8.2}});
}

void DrawOptions(QPainter& painter, const QColor& ink, const QColor& paper) {
    constexpr double kKnobs[] = {10.5, 5, 8.5};
    for (int i = 0; i < 3; ++i) {
        const double y = 3.5 + 4.5 * i;
        painter.setPen(Line(ink, 1.3));
        painter.drawLine(QPointF(1.5, y), QPointF(14.5, y));
        painter.setBrush(paper);
        painter.drawEllipse(QPointF(kKnobs[i], y), 1.8, 1.8);
    }
    painter.setBrush(Qt::NoBrush);
}

void DrawFind(QPainter& painter, const QColor& ink) {
    painter.setPen(Line(ink, 1.6));
    painter.drawEllipse(QPointF(6.5, 6.5), 4.6, 4.6);
    painter.setPen(Line(ink, 2.4));
    painter.drawLine(QPointF(10.2, 10.2), QPointF(14.2, 14.2));
}

void DrawHelp(QPainter& painter, const QColor& ink) {
    painter.setPen(Line(QColor::fromRgb(kArchive), 1.3));
    painter.drawEllipse(QPointF(8, 8), 6.6, 6.6);
    QPainterPath mark(QPointF(5.9, 6.2));
    mark.cubicTo({6, 3.4}, {10.2, 3.4}, {10.1, 6.2});
    mark.cubicTo({10, 7.9}, {8, 7.7}, {8, 9.6});
    painter.setPen(Line(ink, 1.5));
    painter.drawPath(mark);
    painter.drawPoint(QPointF(8, 12));
}

void Draw(QPainter& painter, EditorIcon icon, const QColor& ink, const QColor& paper) {
    switch (icon) {
        case EditorIcon::NewArchive:
            DrawArchive(painter);
            return DrawPlus(painter);
        case EditorIcon::EditArchive:
            DrawArchive(painter);
            return DrawPencil(painter, ink);
        case EditorIcon::DeleteArchive:
            DrawArchive(painter);
            return DrawCross(painter);
        case EditorIcon::NewTrend:
            DrawTrend(painter, ink);
            return DrawPlus(painter);
        case EditorIcon::EditTrend:
            DrawTrend(painter, ink);
            return DrawPencil(painter, ink);
        case EditorIcon::DeleteTrend:
            DrawTrend(painter, ink);
            return DrawCross(painter);
        case EditorIcon::Duplicate:
            return DrawDuplicate(painter, ink);
        case EditorIcon::Copy:
            return DrawCopy(painter, ink, paper);
        case EditorIcon::Paste:
            return DrawPaste(painter, ink, paper);
        case EditorIcon::Refresh:
            return DrawRefresh(painter, ink);
        case EditorIcon::Report:
            return DrawReport(painter, ink, paper);
        case EditorIcon::Options:
            return DrawOptions(painter, ink, paper);
        case EditorIcon::Find:
            return DrawFind(painter, ink);
        case EditorIcon::Help:
            return DrawHelp(painter, ink);
    }
}

class Engine final : public QIconEngine {
public:
    explicit Engine(EditorIcon icon) : icon_(icon) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QPalette palette = QGuiApplication::palette();
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (mode == QIcon::Disabled) painter->setOpacity(0.35);
        const double side = std::min(rect.width(), rect.height());
        painter->translate(rect.center() + QPointF(1 - side, 1 - side) / 2);
        painter->scale(side / kUnits, side / kUnits);
        Draw(*painter, icon_, palette.color(group, QPalette::WindowText),
             palette.color(group, QPalette::Base));
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new Engine(icon_); }

private:
    EditorIcon icon_;
};

}  // namespace

QIcon MakeIcon(EditorIcon icon) {
    return QIcon(new Engine(icon));  // which takes the engine over
}
