#pragma once

#include <QPalette>
#include <QProxyStyle>

namespace studio {

/// The style of the desktops without one of their own, with frames around fields and boxes that
/// those who see little can see too: it draws them a shade darker than the window, whatever that
/// comes to beside the field.
class FieldFrames final : public QProxyStyle {
    Q_OBJECT
public:
    /// In place of the program's style, where that is the one meant; again changes nothing.
    static void Install();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;

private:
    FieldFrames();
    [[nodiscard]] QPalette Framed(const QPalette& palette) const;

    // The style keeps pictures by palette: the same one gives the same one.
    mutable QPalette last_;
    mutable QPalette framed_;
};

}  // namespace studio
