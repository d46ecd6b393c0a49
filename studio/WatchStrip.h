#pragma once

#include <QFrame>

#include "studio/FileWatch.h"

class QLabel;
class QPushButton;

namespace studio {

class StudioTexts;

/// Says over the editors what has happened to the project's file. It wants no answer, and work goes
/// on below it.
class WatchStrip final : public QFrame {
    Q_OBJECT
public:
    explicit WatchStrip(QWidget* parent = nullptr);

    /// `file`: the name that is told. What is the same as ever is told only after it was not.
    void Show(FileWatch::State state, const QString& file, const StudioTexts& texts);

signals:
    void ReloadRequested();

private:
    QLabel* lblWatch_;
    QPushButton* cmdReload_;
    QPushButton* cmdHide_;
};

}  // namespace studio
