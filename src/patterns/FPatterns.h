#pragma once

#include <cstdint>
#include <QFont>
#include <QList>
#include <QStringList>
#include <vector>

#include "patterns/PatternDialog.h"
#include "patterns/PlanModel.h"
#include "patterns/TrendPlan.h"

class QComboBox;
class QFormLayout;
class QLineEdit;
class QTableView;
class QTableWidget;

/// Makes the trends of patterns in an archive: what is typed is shown as the table of what comes of
/// it, which can be corrected before it is made, all or nothing and in one step.
class FPatterns final : public PatternDialog {
    Q_OBJECT
public:
    /// `work` and `texts` are borrowed and outlive the dialog. Throws ado::AdoError.
    FPatterns(projectdb::IProjectWork& work, const MResources::TextTable& texts,
              std::int32_t archive, QWidget* owner);

    /// IDs of the trends that have been made, when it has been accepted.
    [[nodiscard]] const std::vector<std::int32_t>& Made() const noexcept { return made_; }

private:
    void ReadLanguages();
    void Build();
    QLayout* BuildPatterns();
    void BuildEntries();
    void BuildPreview();
    QLineEdit* AddLine(QFormLayout& form, const QString& name, const QString& label);

    void Expand();
    void ShowEntries();
    void ShowColour(int row, const std::u16string& colour);
    void Check();
    void ShowStateNow();
    [[nodiscard]] QString StateText() const;
    void TakeKept(int number);
    void ChooseVariables();
    void TakeVariables(const QStringList& variables);
    void Make();
    [[nodiscard]] patterns::TrendPatterns TypedPatterns() const;

    std::int32_t archive_;
    QString keptFile_;
    QList<patterns::TrendPatterns> kept_;
    QStringList languages_;             // as they are called
    std::vector<std::string> columns_;  // of the texts, in the same order
    patterns::Archive known_;
    patterns::TrendPlan plan_;
    patterns::PlanModel model_{plan_, Texts(), nullptr};
    std::vector<std::int32_t> made_;

    QComboBox* cmbKept_ = nullptr;
    QLineEdit* txtName_ = nullptr;
    QLineEdit* txtVariable_ = nullptr;
    QList<QLineEdit*> txtTexts_;
    QTableWidget* tblEntries_ = nullptr;
    std::vector<std::pair<std::size_t, std::size_t>> entries_;  // those shown, row by row
    QTableView* tblPlan_ = nullptr;
};
