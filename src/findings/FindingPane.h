#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <QDateTime>
#include <QTimer>
#include <QWidget>
#include <vector>

#include "findings/FindingService.h"
#include "projectdb/IProjectWork.h"
#include "texts/MResources.h"

class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTableView;
class QToolButton;

namespace findings {

class FindingFilter;
class FindingModel;

/// The list of what the check has found in the project that is open, always of its present state,
/// with what can be done about it. It checks by itself, shown or not.
class FindingPane final : public QWidget {
    Q_OBJECT
public:
    /// Both are borrowed.
    FindingPane(projectdb::IProjectWork& work, const MResources::TextTable& texts,
                QWidget* parent = nullptr);
    ~FindingPane() override;

    /// The project is open: it is checked from now on.
    void Watch();
    /// To be called before the project's connection is closed.
    void Stop();
    /// Something may have been changed in the project.
    void Look();

    /// "3 errors, 28 warnings"; with an ellipsis behind while that is being looked at anew.
    [[nodiscard]] QString CountText() const;
    /// The gravest finding's; Off: there is none, or nothing is known.
    [[nodiscard]] project::Severity Gravest() const;
    /// Gives the list the keyboard.
    void TakeKeyboard();

signals:
    void CountChanged();
    /// The user wants to go back to where he was; `hide`: and see the list no more.
    void LeaveWanted(bool hide);
    /// Something to be said in passing.
    void Said(const QString& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] QLayout* BuildTopRow();
    void BuildList();
    QToolButton* MakeSeverityButton(const QString& name, project::Severity severity, int text);
    QPushButton* MakeButton(const QString& name, int text);
    void Show();
    void ShowState();
    void ShowDetail();
    void GoTo(const QModelIndex& index);
    void OpenContextMenu(const QPoint& position);
    void Accept();
    void Cure(const std::vector<project::Finding>& findings);
    void ShowSafeOnes();
    /// Those that can be cured without a look.
    [[nodiscard]] std::vector<project::Finding> SafeOnes() const;
    [[nodiscard]] std::vector<project::Finding> Selected() const;

    projectdb::IProjectWork& work_;
    const MResources::TextTable& texts_;
    std::unique_ptr<FindingService> service_;  // null while no project is open
    CheckedPtr shown_;
    std::optional<std::uint64_t> content_;  // of the file, when it was last asked
    QDateTime settingsTime_;
    QTimer poll_;  // for what other programs do
    FindingModel* model_;
    FindingFilter* filter_;
    QTableView* tblFindings_ = nullptr;
    QLineEdit* txtFilter_ = nullptr;
    QLabel* lblState_ = nullptr;
    QLabel* lblDetail_ = nullptr;
    QPushButton* cmdAccept_ = nullptr;
    QPushButton* cmdCure_ = nullptr;
    QPushButton* cmdCureSafe_ = nullptr;
};

}  // namespace findings
