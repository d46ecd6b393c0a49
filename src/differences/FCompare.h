#pragma once

#include <array>
#include <QDialog>
#include <QTimer>

#include "differences/CompareService.h"
#include "differences/DifferenceModel.h"
#include "projectdb/IProjectWork.h"
#include "texts/MResources.h"

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QToolButton;
class QTreeView;

/// Shows how the open project differs from another one, or from a backup, beside the editor window,
/// and brings what the other one has into the open one, as one step of the editor's. The list is of
/// the project as it is: where it has been changed, it is compared anew when the user turns to the
/// window.
class FCompare final : public QDialog {
    Q_OBJECT
public:
    /// All are borrowed and outlive the window.
    FCompare(projectdb::IProjectWork& work, const MResources::TextTable& texts, QWidget* owner);

    /// Shows the window and compares with the project in a file; `name` is what the user knows it
    /// by.
    void Open(const QString& file, const QString& name);
    [[nodiscard]] bool IsComparing() const { return service_.IsRunning(); }

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Build();
    QLayout* BuildFilter();
    void BuildTree();
    QLayout* BuildState();
    QLayout* BuildButtons();

    void Compare();
    void TakeResult(const differences::Compared& compared);
    void Filter();
    void ExpandTables();
    void ShowState();
    void ShowCounts();
    /// `told` stands in place of the state until something else is to be said.
    void Tell(const QString& told);
    void GoTo(const QModelIndex& row);
    void Step(bool forward);
    void Previous();
    void Next();
    void ShowInEditor();
    void TakeSelected();
    void TakeAll();
    void Take(const std::vector<project::Wanted>& wanted);
    [[nodiscard]] bool Confirm(const std::vector<ado::RowChange>& rows);
    void TellRefusals(const std::vector<project::TakeOverRefusal>& refusals);

    projectdb::IProjectWork& work_;
    const MResources::TextTable& texts_;
    differences::DifferenceModel model_;
    differences::CompareService service_;
    QTimer typing_;
    QString file_;
    std::uint64_t compared_ = 0;  // content of the project that the list is of
    QString told_;
    // The row that was the current one before the list was made anew.
    std::string currentTable_;
    int currentPlace_ = 0;

    std::array<QToolButton*, differences::kRowKinds> cmdKinds_{};
    QLineEdit* txtFilter_ = nullptr;
    QTreeView* trvDifferences_ = nullptr;
    QLabel* lblState_ = nullptr;
    QProgressBar* prgState_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QPushButton* cmdPrevious_ = nullptr;
    QPushButton* cmdNext_ = nullptr;
    QPushButton* cmdShow_ = nullptr;
    QPushButton* cmdTakeOver_ = nullptr;
    QPushButton* cmdTakeAll_ = nullptr;
};
