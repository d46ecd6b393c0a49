#pragma once

#include <QStackedWidget>
#include <QStringList>
#include <vector>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace studio {

class StudioTexts;

/// The container that an add-in puts its editor window into. It shows one child at a time, the one
/// that was shown or raised last, and gives it the whole area. A child that has just been put in is
/// shown, unless its add-in has hidden it expressly.
class EditorContainer final : public QWidget {
    Q_OBJECT
public:
    explicit EditorContainer(QWidget* parent = nullptr);

    /// The editor that is shown, or null.
    [[nodiscard]] QWidget* Current() const { return current_; }

signals:
    void CurrentChanged();
    /// The editor that is shown has another title.
    void TitleChanged();

protected:
    void childEvent(QChildEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void TakeIn(QWidget& editor);
    void SetCurrent(QWidget* editor);
    void ShowTopmost();
    void Leave(QObject* editor);

    std::vector<QWidget*> editors_;  // in the order in which they were shown, the latest last
    QWidget* current_ = nullptr;     // one of editors_
    bool arranging_ = false;         // the container itself is changing the order
};

/// The right side of the studio: the editor container, or where to begin when it is empty.
class EditorArea final : public QStackedWidget {
    Q_OBJECT
public:
    enum class State { NoProject, NoEditor, NoAddIns };

    explicit EditorArea(QWidget* parent = nullptr);

    [[nodiscard]] EditorContainer* Container() const { return container_; }
    /// What the area says while no editor is shown.
    void SetState(State state, const StudioTexts& texts);
    /// Whether there is an example to look at.
    void SetDemo(bool isThere);
    /// The projects offered while none is open: what is opened, and what is shown for it.
    void SetRecent(const QList<std::pair<QString, QString>>& projects, const StudioTexts& texts);

signals:
    void NewRequested();
    void OpenRequested();
    void DemoRequested();
    void RecentRequested(const QString& project);

private slots:
    void ShowCurrent();

private:
    EditorContainer* container_;
    QWidget* emptyPage_;
    QLabel* lblTitle_;
    QLabel* lblHint_;
    QWidget* fraStart_;  // what to begin with, while no project is open
    QPushButton* cmdNew_;
    QPushButton* cmdOpen_;
    QPushButton* cmdDemo_;
    QLabel* lblRecent_;
    QVBoxLayout* recent_;  // a button for each project
};

}  // namespace studio
