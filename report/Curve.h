#pragma once

#include <cstdint>
#include <optional>
#include <QColor>
#include <QImage>
#include <QPointF>
#include <QString>

class QPainter;
class QXmlStreamWriter;

namespace report {

/// How a curve is drawn in the plant's trend pictures, as far as it can be shown without values.
struct Curve {
    std::uint32_t colour = 0;  // 0x00BBGGRR, as it is stored
    int width = 1;             // pixels; shown up to kMaximumWidth
    int style = 0;             // 0 line, 1 dashed, 2 dotted; others are drawn as a line

    static constexpr int kMaximumWidth = 9;
    static constexpr int kSampleWidth = 46;  // pixels of the drawn sample
    static constexpr int kSampleHeight = 14;

    [[nodiscard]] QColor Colour() const;
    /// White, or a dark grey behind a curve that could not be seen on white.
    [[nodiscard]] QColor Ground() const;
    /// "#rrggbb"
    [[nodiscard]] QString ColourName() const { return Colour().name(); }

    /// Names the sample as a picture of a page, and back; nothing for another name.
    [[nodiscard]] QString PictureName() const;
    [[nodiscard]] static std::optional<Curve> FromPictureName(const QString& name);

    /// Draws the sample with its upper left corner there; the ground is taken for white.
    void Draw(QPainter& painter, QPointF at) const;
    /// The sample at `scale` picture points a pixel.
    [[nodiscard]] QImage Picture(qreal scale) const;
    /// The sample as an SVG element of a page.
    void WriteSvg(QXmlStreamWriter& page) const;
};

}  // namespace report
