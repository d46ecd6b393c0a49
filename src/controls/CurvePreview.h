#pragma once

#include <optional>
#include <QColor>
#include <QList>
#include <QWidget>

/// How a curve is drawn, as far as it can be seen. Codes are those that trends store.
struct CurveLook {
    enum class Style { Line = 0, Dashed = 1, Dotted = 2 };
    enum class Mode { Lines = 0, Stairs = 1 };
    enum class Tolerance {
        CurveColor = 0,  // the curve takes the band's colours where it lies outside
        BandLines = 1,   // the band's limits are lines
        Both = 2,
    };

    QColor line;
    QList<QColor> others{};  // further curves beside it, a colour each; the first ones are drawn
    int width = 1;           // pixels
    Style style = Style::Line;
    Mode mode = Mode::Lines;
    std::optional<double> displayMaximum, displayMinimum;
    // A limit that is not given does not exist: nothing lies outside it.
    std::optional<double> upper, lower;
    QColor upperColor, lowerColor;
    Tolerance tolerance = Tolerance::CurveColor;

    [[nodiscard]] bool operator==(const CurveLook&) const = default;
};

/// A picture of a sample curve, always the same one, that runs through the whole display range and
/// out of the tolerance band on both sides where there is one; further colours are drawn as the
/// same curve in steps below it. Only a picture: it takes no focus and no input. Draws when it is
/// visible and something has changed, and does nothing otherwise.
class CurvePreview final : public QWidget {
    Q_OBJECT
public:
    explicit CurvePreview(QWidget* parent = nullptr);

    void SetLook(const CurveLook& look);
    [[nodiscard]] const CurveLook& Look() const noexcept { return look_; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    CurveLook look_;
};
