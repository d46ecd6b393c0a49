#pragma once

#include <functional>
#include <QDialog>
#include <QStringList>
#include <QTimer>

#include "studio/VariableModel.h"

class QLabel;
class QLineEdit;
class QHBoxLayout;
class QPushButton;
class QTreeView;

namespace studio {

/// Chooses a variable. Opens at once and shows variables as they are read; the search filters
/// while it is typed. The keyboard stays in the search: the arrow keys move through the tree from
/// there, Enter takes what is marked.
class VariableDialog final : public QDialog {
    Q_OBJECT
public:
    /// `catalog` and `texts` are borrowed; the dialog reads on what the catalog has not read yet.
    /// `current` is the variable to begin at.
    VariableDialog(VariableCatalog& catalog, const StudioTexts& texts, QString current,
                   QWidget* owner);

    /// The user may choose several, with Ctrl and Shift.
    void OfferSeveral();
    /// A button that shows where the marked variable is used.
    using ShowUses = std::function<void(QWidget* owner, const QString& variable)>;
    void OfferUses(ShowUses showUses);

    /// Full name of the marked variable; empty when none is.
    [[nodiscard]] QString Chosen() const;
    /// Those of all that are selected, from top to bottom.
    [[nodiscard]] QStringList AllChosen() const;

public slots:
    void accept() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void ReadOn();
    void ApplyFilter();
    void ShowState();

private:
    void Build();
    void GoToCurrent(Qt::CaseSensitivity sensitivity);
    void Mark(const QModelIndex& index);

    VariableCatalog& catalog_;
    const StudioTexts& texts_;
    QString current_;  // where to begin; empty once found, or once the user has gone elsewhere
    VariableModel model_;
    QTimer reading_;
    QTimer filtering_;
    QLineEdit* txtSearch_ = nullptr;
    QTreeView* trvVariables_ = nullptr;
    QLabel* lblChosen_ = nullptr;
    QLabel* lblState_ = nullptr;
    QHBoxLayout* buttons_ = nullptr;
    QPushButton* cmdUses_ = nullptr;  // null: not offered
    QPushButton* cmdOk_ = nullptr;
};

}  // namespace studio
