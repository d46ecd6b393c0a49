#pragma once

#include <cstdint>
#include <QDialog>
#include <QTimer>
#include <vector>

#include "exchange/Plan.h"
#include "projectdb/IProjectWork.h"
#include "texts/MResources.h"
#include "transfer/ImportFile.h"
#include "transfer/PlanModel.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeView;

namespace transfer {
class ColumnChoices;
}

/// Shows what a file, CSV or a workbook, would change in the project, and does what is ticked, as
/// one step. What is shown is of the project as it is: where others have changed it, the import is
/// planned anew, and nothing is done before that has been shown. Which column of the project a
/// heading is can be chosen.
class FImport final : public QDialog {
    Q_OBJECT
public:
    /// All are borrowed and outlive the window.
    FImport(projectdb::IProjectWork& work, const MResources::TextTable& texts, QWidget* owner);

    /// Reads a file and shows its plan.
    void Open(const QString& file);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Build();
    QLayout* BuildFile();
    QLayout* BuildColumns();
    QLayout* BuildOptions();
    void BuildPlan();
    QLayout* BuildButtons();
    QComboBox* Combo(const QString& name, int label, QLayout* into);

    void cmdBrowse_Click();
    void cmdImport_Click();
    void ReadFile();
    void Refuse(const QString& text, const QString& details);
    /// The sheet whose columns are shown; null: there is none.
    [[nodiscard]] exchange::InputRows* Shown();
    void ShowSheets();
    void ShowColumns();
    void TakeKind();
    void Plan();
    [[nodiscard]] std::vector<exchange::Plan> MakePlans();
    void ShowPlans(std::vector<exchange::Plan> plans);
    void TakeTicks(const std::vector<transfer::PlanModel::Row>& rows, bool isWanted);
    void TickSelected();
    [[nodiscard]] exchange::PlanOptions Options() const;
    void ShowState();
    [[nodiscard]] QString Hints() const;

    projectdb::IProjectWork& work_;
    const MResources::TextTable& texts_;
    transfer::PlanModel* model_;
    transfer::ImportFile file_;
    exchange::PlanOptions ticks_;  // what is left out, and kept
    QString told_;                 // what has become of the last plan; or empty
    std::uint64_t planned_ = 0;    // content of the project that the plan is of
    QTimer planning_;              // several ticks are one plan

    QLineEdit* txtFile_ = nullptr;
    QComboBox* cmbEncoding_ = nullptr;
    QLabel* lblSheet_ = nullptr;
    QComboBox* cmbSheet_ = nullptr;
    QLabel* lblKind_ = nullptr;
    QComboBox* cmbKind_ = nullptr;
    transfer::ColumnChoices* tblColumns_ = nullptr;
    QComboBox* cmbMatch_ = nullptr;
    QCheckBox* chkDelete_ = nullptr;
    QCheckBox* chkAll_ = nullptr;
    QTreeView* treePlan_ = nullptr;
    QLabel* lblState_ = nullptr;
    QPushButton* cmdImport_ = nullptr;
};
