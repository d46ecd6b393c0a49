#pragma once

#include <array>
#include <QPushButton>
#include <QString>

/// The words of the colour selector in the interface language; whoever makes one hands them in.
struct ColorTexts {
    QString choose;                // tool tip of the button, title of the dialog
    QString recent;                // heading of the recent colours
    QString more;                  // opens the dialog with all colours
    QString none;                  // nothing stored
    QString system;                // a colour of the system's scheme
    QString parts;                 // "red <r>, green <g>, blue <b>"
    std::array<QString, 7> hues;   // red, orange, yellow, green, cyan, blue, violet
    std::array<QString, 3> tints;  // light, dark, very dark; "<hue>" is replaced
    std::array<QString, 4> greys;  // white, light grey, dark grey, black
};

/// Colour selector: a button with the colour and its name; it opens a palette with the recent
/// colours and the way to all others.
///
/// Colours are numbers as they are stored: 0x00BBGGRR. A number with bit 31 set is a colour of the
/// system's scheme by its index (0x80000005: window). Whatever number was set comes back as it is
/// until the user picks a colour; what he picks is 0x00BBGGRR.
///
/// Space, Enter, Down and F4 open the palette; there the arrow keys go from colour to colour, Tab
/// goes on to the dialog with all colours, Enter takes and Esc closes.
class KVColorSelect final : public QPushButton {
    Q_OBJECT
    Q_PROPERTY(int Color READ Color WRITE SetColor NOTIFY ColorChanged USER true)
public:
    /// Colours that were picked last, newest first; shared by all selectors of the process.
    static constexpr int kRecentColors = 8;

    explicit KVColorSelect(QWidget* parent = nullptr);
    ~KVColorSelect() override;

    void SetTexts(ColorTexts texts);
    [[nodiscard]] const ColorTexts& Texts() const noexcept { return texts_; }

    /// 0 while there is none.
    [[nodiscard]] int Color() const noexcept { return color_; }
    void SetColor(int color);
    /// Nothing is stored: the selector shows an empty field until the user picks a colour.
    void ClearColor();
    [[nodiscard]] bool HasColor() const noexcept { return hasColor_; }

    /// The stored number on the screen. REQUIRES: HasColor().
    [[nodiscard]] QColor ShownColor() const;
    [[nodiscard]] static QColor Shown(int color, const QPalette& palette);
    [[nodiscard]] static int ToNumber(const QColor& color);
    /// What the colour is called: its name where it has one, and its parts.
    [[nodiscard]] QString NameOf(const QColor& color) const;

    /// Opens the palette below the button.
    void OpenPalette();

signals:
    /// The number has changed, whoever changed it.
    void ColorChanged(int color);
    /// The palette, and the dialog that it may have led to, have been closed.
    void ChoiceEnded();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Pick(const QColor& color);
    void OpenDialog();
    void ShowColor();

    ColorTexts texts_;
    int color_ = 0;
    bool hasColor_ = true;
    bool dialogWanted_ = false;  // the palette closes, but the choice goes on
};
