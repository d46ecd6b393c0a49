#pragma once

#include <cstdint>
#include <QDialog>
#include <QTimer>

#include "projectdb/IProjectWork.h"
#include "replace/HitModel.h"
#include "replace/Hits.h"
#include "replace/ProjectFields.h"
#include "texts/MResources.h"

class QCheckBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

/// Finds and replaces over the whole project, beside the editor window: what is found is listed
/// while it is typed, with its place, what stands there and what is to stand there. What is written
/// is written in one step, all or nothing. The list is of the project as it is: where others have
/// changed it, it is made anew when the user turns to the window.
class FReplace final : public QDialog {
    Q_OBJECT
public:
    /// All are borrowed and outlive the window.
    FReplace(projectdb::IProjectWork& work, const MResources::TextTable& texts, QWidget* owner);

    /// Shows the window with the keyboard in the term; `replacing`: with a replacement.
    void Open(bool replacing);
    /// Shows where a variable is used.
    void ShowUses(const QString& variable);
    /// The same over a dialog, which has to be closed before anything else can be done: to look at
    /// only. Returns when the window is closed.
    void LookAtUses(const QString& variable);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Build();
    QLayout* BuildTerm();
    QLayout* BuildKinds();
    QLayout* BuildNarrowing();
    void BuildList();
    QLayout* BuildButtons();
    QCheckBox* Box(const QString& name, int text, bool checked);
    QLineEdit* Line(const QString& name, int label);
    QLabel* Label(const QString& name);

    /// The term has changed: searched anew when no further key comes.
    void SearchSoon();
    void TakeVariable(const QString& variable);
    void Search();
    void TakeReplacement();
    void WorkOn();
    void ReadProject();
    void Narrow();
    void ShowFaults();
    void ShowState();
    void ShowHit(const QModelIndex& index);
    void TickSelected();
    void Replace();
    [[nodiscard]] bool WriteHits(const replace::Hits::Changes& changes);
    [[nodiscard]] replace::Term Term() const;
    [[nodiscard]] unsigned Kinds() const;
    [[nodiscard]] QString StateText() const;

    projectdb::IProjectWork& work_;
    const MResources::TextTable& texts_;
    replace::ProjectFields fields_;
    replace::Hits hits_{fields_};
    replace::HitModel model_{hits_, texts_, nullptr};
    QTimer typing_;           // until the term is taken as it stands
    QTimer narrowing_;        // likewise for what narrows the list
    QTimer working_;          // while hits are searched and checked
    std::uint64_t read_ = 0;  // content of the file that `fields_` is of; 0: nothing is read
    QString told_;            // what the last replacement came to, until something is typed

    QLineEdit* txtTerm_ = nullptr;
    QLabel* lblTermFault_ = nullptr;
    QCheckBox* chkReplace_ = nullptr;
    QLineEdit* txtReplacement_ = nullptr;
    QLabel* lblReplacementFault_ = nullptr;
    QCheckBox* chkCase_ = nullptr;
    QCheckBox* chkWord_ = nullptr;
    QCheckBox* chkWhole_ = nullptr;
    QCheckBox* chkExpression_ = nullptr;
    QCheckBox* chkNames_ = nullptr;
    QCheckBox* chkVariables_ = nullptr;
    QCheckBox* chkTexts_ = nullptr;
    QCheckBox* chkComments_ = nullptr;
    QCheckBox* chkUnits_ = nullptr;
    QLineEdit* txtNarrow_ = nullptr;
    QCheckBox* chkAll_ = nullptr;
    QTableView* grdHits_ = nullptr;
    QLabel* lblState_ = nullptr;
    QPushButton* cmdShow_ = nullptr;
    QPushButton* cmdReplace_ = nullptr;
};
