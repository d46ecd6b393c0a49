#include "icons/Icons.h"

#include <algorithm>
#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <utility>

// Outside of any namespace, as Qt wants it: a static library's resources are not found by
// themselves.
static void InitResources() {
    Q_INIT_RESOURCE(icons);
}

namespace icons {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr float kFaint = 0.35F;  // opacity of what is disabled
constexpr int kSizes[] = {16, 20, 24, 32, 48, 64, 128};

/// The file with the two colours that stand for those of the palette replaced by them.
QByteArray InColours(const QString& name, QPalette::ColorGroup group) {
    QFile file(u":/icons/%1.svg"_s.arg(name));
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QPalette palette = QGuiApplication::palette();
    const QByteArray ink = palette.color(group, QPalette::WindowText).name().toLatin1();
    const QByteArray paper = palette.color(group, QPalette::Base).name().toLatin1();
    const QByteArray drawn = file.readAll();
    QByteArray coloured;
    for (qsizetype at = 0; at < drawn.size();) {
        const QByteArrayView rest = QByteArrayView(drawn).sliced(at);
        const bool isInk = rest.startsWith("#000000");
        if (isInk || rest.startsWith("#ffffff")) {
            coloured += isInk ? ink : paper;
            at += ink.size();
        } else {
            coloured += drawn[at++];
        }
    }
    return coloured;
}

class Engine final : public QIconEngine {
public:
    explicit Engine(QString name) : name_(std::move(name)) { InitResources(); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        const double scale = painter->device()->devicePixelRatioF();
        QPixmap picture = pixmap((QSizeF(rect.size()) * scale).toSize(), mode, state);
        picture.setDevicePixelRatio(scale);
        painter->drawPixmap(rect.topLeft(), picture);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        const bool disabled = mode == QIcon::Disabled;
        const QString key = u"korvala %1 %2x%3 %4 %5"_s.arg(name_)
                                .arg(size.width())
                                .arg(size.height())
                                .arg(disabled)
                                .arg(QGuiApplication::palette().cacheKey());
        QPixmap pixmap;
        if (!QPixmapCache::find(key, &pixmap)) {
            pixmap = Drawn(size, disabled);
            QPixmapCache::insert(key, pixmap);
        }
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new Engine(name_); }

private:
    [[nodiscard]] QPixmap Drawn(const QSize& size, bool disabled) const {
        QSvgRenderer picture(InColours(name_, disabled ? QPalette::Disabled : QPalette::Active));
        const int side = std::min(size.width(), size.height());
        const QRectF square((size.width() - side) / 2.0, (size.height() - side) / 2.0, side, side);
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        painter.setRenderHint(QPainter::Antialiasing);
        picture.render(&painter, square);
        if (disabled) {
            // As a whole, or parts that lie over others would be seen through.
            painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
            painter.fillRect(drawn.rect(), QColor::fromRgbF(0, 0, 0, kFaint));
        }
        return drawn;
    }

    QString name_;
};

}  // namespace

QIcon Icon(QStringView name) {
    return QIcon(new Engine(name.toString()));  // which takes the engine over
}

QIcon FixedIcon(QStringView name) {
    Engine engine(name.toString());
    QIcon icon;
    for (const int size : kSizes) {
        const QPixmap picture = engine.pixmap({size, size}, QIcon::Normal, QIcon::Off);
        icon.addPixmap(picture);
        icon.addPixmap(picture, QIcon::Selected);  // or a selected row would tint it
    }
    return icon;
}

}  // namespace icons
