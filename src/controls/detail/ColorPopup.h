#pragma once

#include <QColor>
#include <QFrame>
#include <QList>
#include <vector>

class KVColorSelect;
class QGridLayout;
class QToolButton;

namespace controls {

inline constexpr int kPaletteColumns = 8;
inline constexpr int kPaletteRows = 4;
/// Row by row: light, full, dark, very dark; the first column goes from white to black, the
/// others in the order of ColorTexts::hues.
[[nodiscard]] QColor PaletteColor(int row, int column);

/// The palette of a colour selector: its colours, those that were picked last, and a button for
/// all others. Closes with every choice.
class ColorPopup final : public QFrame {
    Q_OBJECT
public:
    ColorPopup(const KVColorSelect& selector, const QList<QColor>& recent, QWidget* parent);

    /// Puts the focus on the field that has the colour, else on the first one.
    void FocusColor(const QColor& color);

signals:
    void Picked(const QColor& color);
    void MoreWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void AddField(QGridLayout& grid, const KVColorSelect& selector, const QColor& color, int row,
                  int column);
    void Step(int from, int key);

    struct Field {
        QToolButton* button;
        QColor color;
        int row;
        int column;
    };
    std::vector<Field> fields_;
};

}  // namespace controls
