#pragma once

#include <QDialog>
#include <vector>

#include "backups/Backups.h"
#include "studio/ProjectLocation.h"
#include "studio/StudioTexts.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTreeWidget;

namespace studio {

class BackupService;

/// Lists the backups of a project and lets the user choose one to be put back, which is left to
/// whoever has the project open. How many are kept and where is set here too, with effect from the
/// next one.
class BackupsDialog final : public QDialog {
    Q_OBJECT
public:
    /// `service` is borrowed.
    BackupsDialog(BackupService& service, const ProjectLocation& project, const StudioTexts& texts,
                  QWidget* parent = nullptr);

    /// What exec() gives when the user wants to see how the chosen one differs from the project.
    static constexpr int kCompare = 2;

    /// When the dialog was accepted: what the user wants back, and has confirmed; or compared.
    [[nodiscard]] const backups::Backup& Chosen() const { return chosen_; }

private slots:
    void cmdRestore_Click();
    void cmdCompare_Click();
    void cmdBrowse_Click();
    void txtFolder_Change();
    void FillList();
    void UpdateEnabling();

private:
    [[nodiscard]] QWidget* BuildSettings();

    BackupService& service_;
    ProjectLocation project_;
    StudioTexts texts_;
    std::vector<backups::Backup> backups_;  // as they are listed
    backups::Backup chosen_;
    QTreeWidget* lstBackups_ = nullptr;
    QLabel* lblNone_ = nullptr;
    QSpinBox* numMost_ = nullptr;
    QLineEdit* txtFolder_ = nullptr;
    QPushButton* cmdRestore_ = nullptr;
    QPushButton* cmdCompare_ = nullptr;
};

/// When a backup was taken, as the user reads dates.
[[nodiscard]] QString DateText(const backups::Backup& backup, const StudioTexts& texts);

}  // namespace studio
