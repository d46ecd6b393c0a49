#include "controls/detail/ColorPopup.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>

#include "controls/KVColorSelect.h"

namespace controls {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kFieldSize = 18;  // device-independent pixels

constexpr std::array<std::array<QRgb, kPaletteColumns>, kPaletteRows> kPalette = {{
    {0xffffff, 0xff9999, 0xffd28c, 0xffff99, 0x99ee99, 0x99eeee, 0x99b3ff, 0xe699e6},
    {0xc0c0c0, 0xff0000, 0xffa500, 0xffff00, 0x00ff00, 0x00ffff, 0x0000ff, 0xff00ff},
    {0x606060, 0xc00000, 0xc86400, 0xa0a000, 0x00a000, 0x00a0a0, 0x0064cc, 0x800080},
    {0x000000, 0x800000, 0x804000, 0x606000, 0x006000, 0x006060, 0x000080, 0x500050},
}};

class FieldButton final : public QToolButton {
public:
    FieldButton(const QColor& color, QWidget* parent) : QToolButton(parent), color_(color) {
        setFixedSize(kFieldSize + 6, kFieldSize + 6);
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const QRect inside = rect().adjusted(3, 3, -4, -4);
        painter.fillRect(inside, color_);
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawRect(inside);
        if (hasFocus() || underMouse()) {
            painter.setPen(QPen(palette().color(QPalette::Highlight), hasFocus() ? 2 : 1));
            painter.drawRect(rect().adjusted(1, 1, -2, -2));
        }
    }

private:
    QColor color_;
};

}  // namespace

QColor PaletteColor(int row, int column) {
    return QColor::fromRgb(
        kPalette[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
}

ColorPopup::ColorPopup(const KVColorSelect& selector, const QList<QColor>& recent, QWidget* parent)
    : QFrame(parent, Qt::Popup) {
    setObjectName(u"frmColorPalette"_s);
    setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    setAccessibleName(selector.Texts().choose);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(1);
    for (int row = 0; row < kPaletteRows; ++row) {
        for (int column = 0; column < kPaletteColumns; ++column) {
            AddField(*layout, selector, PaletteColor(row, column), row, column);
        }
    }
    int row = kPaletteRows;
    if (!recent.isEmpty()) {
        layout->addWidget(new QLabel(selector.Texts().recent), row++, 0, 1, kPaletteColumns);
        int column = 0;
        for (const QColor& color : recent) AddField(*layout, selector, color, row, column++);
        ++row;
    }
    auto* cmdMore = new QPushButton(selector.Texts().more);
    cmdMore->setObjectName(u"cmdMoreColors"_s);
    cmdMore->setAutoDefault(true);  // Enter presses it, as it takes a colour of the palette
    layout->addWidget(cmdMore, row, 0, 1, kPaletteColumns);
    connect(cmdMore, &QPushButton::clicked, this, [this] {
        close();
        emit MoreWanted();
    });
    cmdMore->installEventFilter(this);
}

void ColorPopup::AddField(QGridLayout& grid, const KVColorSelect& selector, const QColor& color,
                          int row, int column) {
    auto* button = new FieldButton(color, this);
    button->setObjectName(u"cmdColor(%1)"_s.arg(fields_.size()));
    const QString name = selector.NameOf(color);
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->installEventFilter(this);
    connect(button, &QToolButton::clicked, this, [this, color] {
        close();
        emit Picked(color);
    });
    grid.addWidget(button, row, column);
    fields_.push_back({button, color, row, column});
}

void ColorPopup::FocusColor(const QColor& color) {
    const auto found = std::find_if(fields_.begin(), fields_.end(), [&](const Field& field) {
        return field.color.rgb() == color.rgb();
    });
    (found == fields_.end() ? fields_.front() : *found).button->setFocus(Qt::PopupFocusReason);
}

bool ColorPopup::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QFrame::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const auto field = std::find_if(fields_.begin(), fields_.end(),
                                    [&](const Field& each) { return each.button == watched; });
    switch (key) {
        case Qt::Key_Left:
        case Qt::Key_Right:
        case Qt::Key_Up:
        case Qt::Key_Down:
            if (field != fields_.end()) {
                Step(static_cast<int>(field - fields_.begin()), key);
            } else if (key == Qt::Key_Up) {
                fields_.back().button->setFocus(Qt::TabFocusReason);
            }
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (field == fields_.end()) break;
            field->button->click();
            return true;
        default:
            break;
    }
    return QFrame::eventFilter(watched, event);
}

void ColorPopup::Step(int from, int key) {
    const Field& here = fields_[static_cast<std::size_t>(from)];
    const int count = static_cast<int>(fields_.size());
    int target = from;
    if (key == Qt::Key_Left) target = std::max(0, from - 1);
    if (key == Qt::Key_Right) target = std::min(count - 1, from + 1);
    if (key == Qt::Key_Up || key == Qt::Key_Down) {
        // The nearest row in that direction; a row may be shorter, and a heading lies between.
        const int step = key == Qt::Key_Up ? -1 : 1;
        int row = -1;
        for (int i = from + step; i >= 0 && i < count; i += step) {
            const Field& field = fields_[static_cast<std::size_t>(i)];
            if (field.row == here.row || (row >= 0 && field.row != row)) continue;
            const Field& best = fields_[static_cast<std::size_t>(target)];
            if (row < 0 ||
                std::abs(field.column - here.column) < std::abs(best.column - here.column)) {
                target = i;
            }
            row = field.row;
        }
        if (row < 0 && step > 0) {
            findChild<QPushButton*>(u"cmdMoreColors"_s)->setFocus(Qt::TabFocusReason);
            return;
        }
    }
    fields_[static_cast<std::size_t>(target)].button->setFocus(Qt::TabFocusReason);
}

}  // namespace controls
