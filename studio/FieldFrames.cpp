#include "studio/FieldFrames.h"

#include <QApplication>
#include <QStyleOption>

#include "colours/Contrast.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

// What the style does to the window's colour for frames, and to those again for boxes.
constexpr int kFrameShade = 140;
constexpr int kBoxShade = 110;

/// The style makes a box's frame lighter than a field's.
constexpr double kLeast = colours::kForMarks * kBoxShade / 100.0 + 0.5;

}  // namespace

FieldFrames::FieldFrames() : QProxyStyle(u"fusion"_s) {}

void FieldFrames::Install() {
    const QStyle* now = QApplication::style();
    if (qobject_cast<const FieldFrames*>(now) != nullptr || now->name() != u"fusion") return;
    QApplication::setStyle(new FieldFrames);
}

QPalette FieldFrames::Framed(const QPalette& palette) const {
    if (palette.cacheKey() == last_.cacheKey()) return framed_;
    last_ = palette;
    framed_ = palette;
    const QColor frame = colours::VisibleOn(palette.color(QPalette::Window).darker(kFrameShade),
                                            palette.color(QPalette::Base), kLeast);
    framed_.setColor(QPalette::Window, frame.lighter(kFrameShade));
    return framed_;
}

void FieldFrames::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const {
    const bool isEnabled = option->state.testFlag(State_Enabled);
    if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        frame != nullptr && element == PE_FrameLineEdit && isEnabled) {
        QStyleOptionFrame framed(*frame);
        framed.palette = Framed(option->palette);
        return QProxyStyle::drawPrimitive(element, &framed, painter, widget);
    }
    const bool isBox = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
    if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        button != nullptr && isBox && isEnabled) {
        QStyleOptionButton framed(*button);
        framed.palette = Framed(option->palette);
        return QProxyStyle::drawPrimitive(element, &framed, painter, widget);
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void FieldFrames::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
    const bool isEnabled = option->state.testFlag(State_Enabled);
    if (const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        box != nullptr && control == CC_ComboBox && isEnabled) {
        QStyleOptionComboBox framed(*box);
        framed.palette = Framed(option->palette);
        return QProxyStyle::drawComplexControl(control, &framed, painter, widget);
    }
    if (const auto* box = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
        box != nullptr && control == CC_SpinBox && isEnabled) {
        QStyleOptionSpinBox framed(*box);
        framed.palette = Framed(option->palette);
        return QProxyStyle::drawComplexControl(control, &framed, painter, widget);
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

}  // namespace studio
