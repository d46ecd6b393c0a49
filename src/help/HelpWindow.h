#pragma once

#include <memory>
#include <QMainWindow>

#include "help/BuiltInHelp.h"
#include "help/ChmHelp.h"
#include "help/PageSearch.h"
#include "texts/MResources.h"

class QAction;
class QLabel;
class QLineEdit;
class QListWidget;
class QStackedWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace help {

class HelpPage;

/// The help viewer: contents and search on the left, the page on the right.
///
/// Shows the installed help file where it can be read and has the page that is asked for, else the
/// built-in pages. A window of its own that takes its keys also while a dialog is open.
class HelpWindow final : public QMainWindow {
    Q_OBJECT
public:
    /// The table holds the viewer's texts; it is read here and not kept.
    explicit HelpWindow(const MResources::TextTable& texts);
    ~HelpWindow() override;

    /// The folder of the built-in pages, which tells the language.
    [[nodiscard]] const QString& Language() const noexcept { return language_; }
    /// True while a help file is being read.
    [[nodiscard]] bool IsLoading() const noexcept { return reader_ != nullptr; }

    /// Shows the page of a context number. `helpFile` is a native path; it is read at the first
    /// call and when it has changed. A number without a page shows the first page.
    void ShowTopic(const QString& helpFile, int topic);
    /// Brings the window to the front, above `owner` (may be null).
    void BringUp(QWidget* owner);
    void Search(const QString& words);

signals:
    /// The page that was asked for is shown.
    void TopicShown(const QString& page);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BuildToolBar();
    void BuildBody();
    QAction* AddAction(const char* name, const QString& text, const QString& icon,
                       const QKeySequence& key);
    void Loaded(std::unique_ptr<ChmHelp> chm);
    void ShowPending();
    void Use(const IHelpSource& source);
    void SelectPage(const QUrl& address);
    void OpenItem(QTreeWidgetItem* item);
    void OpenMatch();

    MResources::TextTable texts_;
    QString language_;
    BuiltInHelp builtIn_;
    std::unique_ptr<ChmHelp> chm_;
    std::unique_ptr<ChmReader> reader_;
    QString chmFile_;
    QString chmStamp_;  // of the file that has been read or tried
    int pendingTopic_ = 0;
    const IHelpSource* source_ = nullptr;
    PageSearch search_;

    HelpPage* txtPage_ = nullptr;
    QTreeWidget* tvwContents_ = nullptr;
    QListWidget* lstMatches_ = nullptr;
    QStackedWidget* stkLeft_ = nullptr;
    QLineEdit* txtSearch_ = nullptr;
    QLabel* lblState_ = nullptr;
};

}  // namespace help
