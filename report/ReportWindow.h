#pragma once

#include <memory>
#include <optional>
#include <QMainWindow>
#include <QPointer>

#include "platform/HelpFile.h"
#include "report/HtmlWriter.h"
#include "report/PortionRunner.h"
#include "report/ProjectReader.h"
#include "report/ReportTexts.h"

class QAction;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;
class QTextBrowser;

namespace platform {
class Registry;
}

namespace report {

/// The window that shows the report of one project: archives on the left, the chosen one on the
/// right, a hundred trends at a time. The project is read in portions after the window is shown
/// and stays open for reading while the window lives.
///
/// With a parent it is a window of its own above it and goes with it.
class ReportWindow final : public QMainWindow {
    Q_OBJECT
public:
    ReportWindow(platform::Registry& registry, QString projectPath, QWidget* parent = nullptr);
    ~ReportWindow() override;

    [[nodiscard]] const QString& ProjectPath() const noexcept { return projectPath_; }
    /// False while the project is read, and when it could not be.
    [[nodiscard]] bool IsReady() const noexcept { return ready_; }
    [[nodiscard]] bool IsBusy() const noexcept { return runner_.IsRunning(); }
    [[nodiscard]] const Section& Shown() const noexcept { return shown_; }

    /// Opens the project and begins to read it; false when it cannot be opened, which the user has
    /// been told.
    bool Read();
    void Show(const Section& section);
    /// Looks for the text in the field, from the selection on, through all sections.
    void Find(bool backward);
    void ExportHtml(const QString& file);
    void ExportPdf(const QString& file);
    /// Adds the differences to the project in a file as a chapter, and shows it.
    void CompareWith(const QString& file);

signals:
    /// A task has ended; `done` is false when it was cancelled or has failed.
    void TaskEnded(bool done);
    /// The user wants to see a row of the project; see RowPlace.
    void RowChosen(const QString& table, int id, const QString& column);

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// Of an entry of the contents: the address of its section.
    static constexpr int kSectionRole = Qt::UserRole;

    /// The message under the title of this window.
    void Tell(messages::Message message);
    void BuildActions();
    void BuildBody();
    void BuildStatusBar();
    void FindHelpFile(platform::Registry& registry);
    QMenu* AddMenu(const char* name, Text text);
    QAction* AddAction(const char* name, Text text, Text tip, const QKeySequence& key,
                       void (ReportWindow::*slot)());
    void FillArchives();
    void FilterArchives(const QString& text);
    void ShowShown();
    void Start(std::unique_ptr<Task> task, const QString& doneText);
    void Collected();
    void SetRunning(bool running);
    [[nodiscard]] QString SuggestedFile(const QString& extension) const;

    void FindNext();
    void FindPrevious();
    void actPrint_Triggered();
    void actPdf_Triggered();
    void actHtml_Triggered();
    void actDifferences_Triggered();
    void actRefresh_Triggered();
    void actHelp_Triggered();

    ReportTexts texts_;
    platform::HelpFile helpFile_;  // its viewer borrows the texts
    QString projectPath_;
    QString shownPath_;  // as the user knows it
    std::unique_ptr<ProjectReader> reader_;
    std::unique_ptr<HtmlWriter> writer_;
    Section shown_;
    bool ready_ = false;
    bool hasNewColours_ = false;  // since a task began; the page is shown anew behind it

    QTextBrowser* txtReport_ = nullptr;
    QListWidget* lstArchives_ = nullptr;
    QLineEdit* txtFilter_ = nullptr;
    QLineEdit* txtFind_ = nullptr;
    QLabel* lblState_ = nullptr;
    QProgressBar* prgState_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QList<QAction*> actions_;
    // Last: it is destroyed first, with the task that borrows the members above.
    PortionRunner runner_;
};

}  // namespace report
