#include "controls/CurvePreview.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <QAccessibleWidget>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QPaintEvent>

#include "colours/Contrast.h"

namespace {

constexpr qsizetype kMostOthers = 11;  // curves that can be told apart
constexpr int kSamples = 36;
constexpr int kGridLines = 4;
constexpr QRgb kGround = 0xfff4f4f4;  // the same on every desktop: the colours are the plant's
constexpr QRgb kGrid = 0xffd0d0d0;
constexpr int kMaxWidth = 40;  // pixels; a wider line would hide the picture

/// The sample curve at 0..1; runs through 0.04 to 0.96.
double SampleAt(double x) {
    const double turn = 2 * std::numbers::pi * x;
    const double y = 0.5 + 0.36 * std::sin(1.5 * turn - 0.4) + 0.1 * std::sin(5 * turn + 1.1);
    return std::clamp(y, 0.04, 0.96);
}

/// From values to the screen. Without usable limits values run from 0 to 100.
struct Scale {
    double minimum = 0;
    double maximum = 100;
    QRectF area;

    [[nodiscard]] double ToY(double value) const {
        const double part = (value - minimum) / (maximum - minimum);
        // Far outside is outside: huge coordinates make the painter slow.
        return area.bottom() - std::clamp(part, -1.0, 2.0) * area.height();
    }
};

QPainterPath SampleCurve(const QRectF& area, CurveLook::Mode mode) {
    QPainterPath path;
    for (int i = 0; i <= kSamples; ++i) {
        const double x = static_cast<double>(i) / kSamples;
        const QPointF point(area.left() + x * area.width(),
                            area.bottom() - SampleAt(x) * area.height());
        if (i == 0) {
            path.moveTo(point);
            continue;
        }
        // A stair keeps the old value until the new one comes.
        if (mode == CurveLook::Mode::Stairs) path.lineTo(point.x(), path.currentPosition().y());
        path.lineTo(point);
    }
    return path;
}

Qt::PenStyle PenStyleOf(CurveLook::Style style) {
    switch (style) {
        case CurveLook::Style::Dashed:
            return Qt::DashLine;
        case CurveLook::Style::Dotted:
            return Qt::DotLine;
        case CurveLook::Style::Line:
            break;
    }
    return Qt::SolidLine;
}

/// The area with its grid, and the display limits beside it.
Scale DrawGround(QPainter& painter, const QWidget& widget, const CurveLook& look) {
    Scale scale;
    QString top;
    QString bottom;
    if (look.displayMaximum && look.displayMinimum && *look.displayMaximum > *look.displayMinimum &&
        std::isfinite(*look.displayMaximum - *look.displayMinimum)) {
        scale.maximum = *look.displayMaximum;
        scale.minimum = *look.displayMinimum;
        QLocale locale;
        locale.setNumberOptions(QLocale::OmitGroupSeparator);
        top = locale.toString(scale.maximum, 'g', 6);
        bottom = locale.toString(scale.minimum, 'g', 6);
    }
    const QFontMetrics metrics(widget.font());
    const int labels = std::max(metrics.horizontalAdvance(top), metrics.horizontalAdvance(bottom));
    scale.area = QRectF(widget.rect()).adjusted(labels + (labels > 0 ? 6.5 : 0.5), 4.5, -4.5, -4.5);

    const QPalette& colors = widget.palette();
    painter.fillRect(scale.area, QColor(kGround));
    painter.setPen(QColor(kGrid));
    for (int i = 1; i < kGridLines; ++i) {
        const double part = static_cast<double>(i) / kGridLines;
        const double x = scale.area.left() + part * scale.area.width();
        const double y = scale.area.top() + part * scale.area.height();
        painter.drawLine(QPointF(x, scale.area.top()), QPointF(x, scale.area.bottom()));
        painter.drawLine(QPointF(scale.area.left(), y), QPointF(scale.area.right(), y));
    }
    painter.setPen(colors.color(QPalette::WindowText));
    const QRectF beside(0, scale.area.top() - 3, labels + 2, scale.area.height() + 6);
    painter.drawText(beside, Qt::AlignRight | Qt::AlignTop, top);
    painter.drawText(beside, Qt::AlignRight | Qt::AlignBottom, bottom);
    return scale;
}

/// A line in its colour; one that is hard to see on the ground gets an edge that is not.
void Stroke(QPainter& painter, const QPainterPath& path, QPen pen) {
    const QColor edge = colours::VisibleOn(pen.color(), QColor(kGround), colours::kForMarks);
    if (edge.rgb() != pen.color().rgb()) {
        QPen around(pen);
        around.setColor(edge);
        around.setWidthF(pen.widthF() + 2);
        painter.strokePath(path, around);
    }
    painter.strokePath(path, pen);
}

/// The tolerance band's limits and the curve. The painter is clipped to the area.
void DrawCurve(QPainter& painter, const Scale& scale, const CurveLook& look) {
    const QRectF& area = scale.area;
    const double above = area.top() - 1;
    const double below = area.bottom() + 1;
    const double upper = look.upper ? scale.ToY(*look.upper) : above;
    const double lower = look.lower ? scale.ToY(*look.lower) : below;
    const auto drawLimit = [&](bool given, const QColor& color, double y) {
        if (!given) return;
        painter.setRenderHint(QPainter::Antialiasing, false);  // a line of one pixel stays sharp
        QPainterPath line(QPointF(area.left(), y));
        line.lineTo(area.right(), y);
        Stroke(painter, line, QPen(color, 1));
    };
    if (look.tolerance != CurveLook::Tolerance::CurveColor) {
        drawLimit(look.upper.has_value(), look.upperColor, upper);
        drawLimit(look.lower.has_value(), look.lowerColor, lower);
    }
    painter.setRenderHint(QPainter::Antialiasing);

    const QPainterPath curve = SampleCurve(area, look.mode);
    const auto drawBetween = [&](const QColor& color, double from, double to) {
        if (to <= from) return;
        painter.save();
        painter.setClipRect(QRectF(QPointF(area.left(), from), QPointF(area.right(), to)),
                            Qt::IntersectClip);
        QPen pen(color, std::clamp(look.width, 1, kMaxWidth), PenStyleOf(look.style));
        pen.setCapStyle(Qt::FlatCap);
        pen.setJoinStyle(Qt::RoundJoin);
        Stroke(painter, curve, pen);
        painter.restore();
    };
    if (look.tolerance == CurveLook::Tolerance::BandLines) {
        drawBetween(look.line, above, below);
        return;
    }
    drawBetween(look.upperColor, above, upper);
    drawBetween(look.line, std::max(above, upper), std::min(below, lower));
    drawBetween(look.lowerColor, std::max(lower, upper), below);
}

/// Further curves, behind the first one, each a step lower.
void DrawOthers(QPainter& painter, const Scale& scale, const CurveLook& look) {
    painter.setRenderHint(QPainter::Antialiasing);
    const qsizetype count = std::min(look.others.size(), kMostOthers);
    const double step = scale.area.height() / static_cast<double>(2 * (kMostOthers + 1));
    QPainterPath curve = SampleCurve(scale.area, look.mode);
    for (qsizetype i = 0; i < count; ++i) {
        curve.translate(0, step);
        Stroke(painter, curve,
               QPen(look.others[i], std::clamp(look.width, 1, kMaxWidth), PenStyleOf(look.style)));
    }
}

/// A picture, for those who do not see it.
QAccessibleInterface* SpokenPicture(const QString& className, QObject* object) {
    auto* preview = qobject_cast<CurvePreview*>(object);
    if (preview == nullptr || className != QLatin1StringView("CurvePreview")) return nullptr;
    return new QAccessibleWidget(preview, QAccessible::Graphic);
}

}  // namespace

CurvePreview::CurvePreview(QWidget* parent) : QWidget(parent) {
    // Once for this copy of the code: a library's goes with it, and none of its pictures outlives
    // it.
    [[maybe_unused]] static const bool isKnown = [] {
        QAccessible::installFactory(SpokenPicture);
        return true;
    }();
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void CurvePreview::SetLook(const CurveLook& look) {
    if (look == look_) return;
    look_ = look;
    update();
}

QSize CurvePreview::sizeHint() const {
    return {320, 120};
}

QSize CurvePreview::minimumSizeHint() const {
    return {120, 60};
}

void CurvePreview::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const Scale scale = DrawGround(painter, *this, look_);
    painter.setClipRect(scale.area);
    DrawOthers(painter, scale, look_);
    DrawCurve(painter, scale, look_);
    painter.setClipping(false);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(scale.area);
}
