#pragma once

#include <array>
#include <memory>
#include <QColor>
#include <QFont>
#include <QLabel>
#include <QMainWindow>
#include <QStatusBar>
#include <stdexcept>
#include <vector>

/// A window with a grid of two splits, with the names and the kinds of members that the paths of
/// the settings address.

class SampleColumn : public QObject {
    Q_OBJECT
    Q_PROPERTY(float Width MEMBER width)
    Q_PROPERTY(bool AllowSizing MEMBER allowSizing)
    Q_PROPERTY(bool Visible MEMBER visible)
    Q_PROPERTY(int Order MEMBER order)
    Q_PROPERTY(QString Caption MEMBER caption)
    Q_PROPERTY(QColor Colour MEMBER colour)
    Q_PROPERTY(Qt::Alignment Alignment MEMBER alignment)
    Q_PROPERTY(QVariant Tag MEMBER tag)
    Q_PROPERTY(QSize Extent MEMBER extent)
    Q_PROPERTY(int Position MEMBER order CONSTANT)

public:
    float width = 0;
    bool allowSizing = false;
    bool visible = false;
    int order = 0;
    QString caption;
    QColor colour;
    Qt::Alignment alignment;
    QVariant tag;
    QSize extent;
};

class SampleSplit : public QObject {
    Q_OBJECT
public:
    explicit SampleSplit(const QStringList& names) {
        for (const QString& name : names) {
            columns.emplace_back(std::make_unique<SampleColumn>());
            columns.back()->setObjectName(name);
        }
    }
    Q_INVOKABLE SampleColumn* Columns(const QVariant& nameOrIndex) const {
        if (nameOrIndex.metaType().id() == QMetaType::Int) {
            const auto index = static_cast<std::size_t>(nameOrIndex.toInt());
            return index < columns.size() ? columns[index].get() : nullptr;
        }
        if (nameOrIndex.toString() == QStringLiteral("Trouble"))
            throw std::runtime_error("trouble");
        return (*this)[nameOrIndex.toString()];
    }
    SampleColumn* operator[](const QString& name) const {
        for (const auto& column : columns) {
            if (column->objectName() == name) return column.get();
        }
        return nullptr;
    }

    std::vector<std::unique_ptr<SampleColumn>> columns;
};

class SampleGrid : public QWidget {
    Q_OBJECT
public:
    SampleGrid(const QStringList& archiveColumns, const QStringList& trendColumns, QWidget* parent)
        : QWidget(parent), splits{SampleSplit(archiveColumns), SampleSplit(trendColumns)} {}
    Q_INVOKABLE QObject* Splits(int index) {
        return index == 0 || index == 1 ? &splits[static_cast<std::size_t>(index)] : nullptr;
    }

    std::array<SampleSplit, 2> splits;
};

class SampleForm : public QMainWindow {
    Q_OBJECT
    Q_PROPERTY(double PosLeft MEMBER posLeft)
    Q_PROPERTY(double PosTop MEMBER posTop)

public:
    SampleForm() {
        auto* inner = new QWidget(this);
        setCentralWidget(inner);
        tdbA = new SampleGrid({QStringLiteral("Name")}, TrendColumns(), inner);
        tdbA->setObjectName(QStringLiteral("tdbA"));
        sb = new QStatusBar(this);
        sb->setObjectName(QStringLiteral("sb"));
        setStatusBar(sb);
        for (std::size_t i = 0; i < labels.size(); ++i) {
            labels[i] = new QLabel(inner);
            labels[i]->setObjectName(QStringLiteral("lbl(%1)").arg(i));
        }
        setObjectName(QStringLiteral("frmSample"));
    }

    /// Those that the built-in default knows, and one that it does not.
    static QStringList TrendColumns() {
        return QStringLiteral(
                   "Name TrendVar Maximum Minimum SurrogateMax SurrogateMin ErrorValue Hysteresis "
                   "HysteresisMode Filter FilterDepth VMax VMin VUpper VLower VLineColor "
                   "VLineWidth VUpperColor VLowerColor VConfig VDrawMode VMaxSamples VUnitID "
                   "Comment")
            .split(QLatin1Char(' '));
    }

    SampleGrid* tdbA = nullptr;
    QStatusBar* sb = nullptr;
    std::array<QLabel*, 2> labels{};
    double posLeft = 0;
    double posTop = 0;
};
