#include "settings/detail/StandardProperties.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <QFontInfo>
#include <span>

#include "platform/Fold.h"
#include "settings/detail/LateBound.h"

namespace LateBound {
namespace {

constexpr double kTwipsPerPixel = 15;  // at 96 dpi, which is what the settings are made for
constexpr int kLargestFont = 2048;     // points
constexpr int kLargestWeight = 1000;

enum class Standard { None, Left, Top, Width, Height, Visible, WindowState };
enum class FontPart { None, Name, Size, Bold, Italic, Underline, Strikethrough, Weight, Charset };

template <typename Code>
struct Named {
    QStringView name;
    Code code;
};

constexpr std::array<Named<Standard>, 6> kStandard = {{{u"Left", Standard::Left},
                                                       {u"Top", Standard::Top},
                                                       {u"Width", Standard::Width},
                                                       {u"Height", Standard::Height},
                                                       {u"Visible", Standard::Visible},
                                                       {u"WindowState", Standard::WindowState}}};

constexpr std::array<Named<FontPart>, 8> kFontParts = {{{u"Name", FontPart::Name},
                                                        {u"Size", FontPart::Size},
                                                        {u"Bold", FontPart::Bold},
                                                        {u"Italic", FontPart::Italic},
                                                        {u"Underline", FontPart::Underline},
                                                        {u"Strikethrough", FontPart::Strikethrough},
                                                        {u"Weight", FontPart::Weight},
                                                        {u"Charset", FontPart::Charset}}};

template <typename Code>
Code CodeOf(std::span<const Named<Code>> names, QStringView name) {
    for (const Named<Code>& entry : names) {
        if (platform::SameName(entry.name, name)) return entry.code;
    }
    return Code::None;
}

/// What a text or a put number says, where the property takes a number; NaN when it says none.
double NumberOf(const InitValue& value) {
    return value.IsText() ? value.AsNumber(std::nan("")) : PutNumber(value);
}

int PixelsOf(double twips) {
    // A text may hold any number; no screen is as wide as this.
    return static_cast<int>(std::lround(std::clamp(twips, -32768.0, 32767.0) / kTwipsPerPixel));
}

void PutWindowState(QWidget& widget, int code) {
    const Qt::WindowStates other =
        widget.windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen);
    const std::array<Qt::WindowState, 3> states = {Qt::WindowNoState, Qt::WindowMinimized,
                                                   Qt::WindowMaximized};
    widget.setWindowState(other | states[static_cast<std::size_t>(code)]);
}

}  // namespace

bool IsStandard(QStringView name) {
    return CodeOf<Standard>(kStandard, name) != Standard::None;
}

bool PutStandard(QWidget& widget, QStringView name, const InitValue& value) {
    const Standard property = CodeOf<Standard>(kStandard, name);
    if (property == Standard::Visible) {
        widget.setVisible(value.AsBoolean(!widget.isHidden()));
        return true;
    }
    const double number = NumberOf(value);
    if (std::isnan(number)) return false;
    if (property == Standard::WindowState) {
        if (number != 0 && number != 1 && number != 2) return false;
        PutWindowState(widget, static_cast<int>(number));
        return true;
    }
    // A maximised window has the size of the screen, whatever it will be afterwards.
    if (widget.isWindow() && (widget.isMaximized() || widget.isMinimized())) return true;
    const int pixels = PixelsOf(number);
    switch (property) {
        case Standard::Left:
            widget.move(pixels, widget.y());
            break;
        case Standard::Top:
            widget.move(widget.x(), pixels);
            break;
        case Standard::Width:
            widget.resize(std::max(pixels, 0), widget.height());
            break;
        case Standard::Height:
            widget.resize(widget.width(), std::max(pixels, 0));
            break;
        default:
            return false;
    }
    return true;
}

std::optional<InitValue> GetStandard(const QWidget& widget, QStringView name) {
    const bool stretched = widget.isWindow() && (widget.isMaximized() || widget.isMinimized()) &&
                           widget.normalGeometry().isValid();
    const QRect place = stretched ? widget.normalGeometry() : widget.geometry();
    switch (CodeOf<Standard>(kStandard, name)) {
        case Standard::Left:
            return kTwipsPerPixel * (stretched ? place.x() : widget.x());
        case Standard::Top:
            return kTwipsPerPixel * (stretched ? place.y() : widget.y());
        case Standard::Width:
            return kTwipsPerPixel * place.width();
        case Standard::Height:
            return kTwipsPerPixel * place.height();
        case Standard::Visible:
            // Whether it is to be shown: its window may not be on the screen yet.
            return !widget.isHidden();
        case Standard::WindowState:
            return widget.isMinimized() ? 1 : widget.isMaximized() ? 2 : 0;
        case Standard::None:
            break;
    }
    return std::nullopt;
}

bool PutFont(QFont& font, QStringView name, const InitValue& value) {
    const FontPart part = CodeOf<FontPart>(kFontParts, name);
    if (part == FontPart::Name) {
        font.setFamily(value.AsText());
        return !value.AsText().isEmpty();
    }
    const double number = NumberOf(value);
    switch (part) {
        case FontPart::Size:
            if (!(number > 0) || number > kLargestFont) return false;
            font.setPointSizeF(number);
            return true;
        case FontPart::Weight:
            if (!(number >= 1) || number > kLargestWeight) return false;
            font.setWeight(static_cast<QFont::Weight>(static_cast<int>(number)));
            return true;
        case FontPart::Bold:
            font.setBold(value.AsBoolean(font.bold()));
            return true;
        case FontPart::Italic:
            font.setItalic(value.AsBoolean(font.italic()));
            return true;
        case FontPart::Underline:
            font.setUnderline(value.AsBoolean(font.underline()));
            return true;
        case FontPart::Strikethrough:
            font.setStrikeOut(value.AsBoolean(font.strikeOut()));
            return true;
        case FontPart::Charset:
            return true;
        case FontPart::Name:
        case FontPart::None:
            break;
    }
    return false;
}

std::optional<InitValue> GetFont(const QFont& font, QStringView name, const InitValue& present) {
    switch (CodeOf<FontPart>(kFontParts, name)) {
        case FontPart::Name:
            return font.family();
        case FontPart::Size:
            // A font may have been given a size in pixels.
            return font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
        case FontPart::Bold:
            return font.bold();
        case FontPart::Italic:
            return font.italic();
        case FontPart::Underline:
            return font.underline();
        case FontPart::Strikethrough:
            return font.strikeOut();
        case FontPart::Weight:
            return static_cast<int>(font.weight());
        case FontPart::Charset:
            return present;
        case FontPart::None:
            break;
    }
    return std::nullopt;
}

}  // namespace LateBound
