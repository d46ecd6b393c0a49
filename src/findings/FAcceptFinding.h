#pragma once

#include <QDialog>
#include <vector>

#include "project/CheckSettings.h"
#include "texts/MResources.h"

class QCheckBox;
class QDateEdit;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace findings {

/// Asks why findings are to be left as they are, by whom and until when.
class FAcceptFinding final : public QDialog {
    Q_OBJECT
public:
    /// `findings` are at least one; `file` is where it will stand. `texts` is borrowed.
    FAcceptFinding(const MResources::TextTable& texts, std::vector<project::Finding> findings,
                   const QString& file, QWidget* owner);

    /// When the dialog was accepted.
    [[nodiscard]] std::vector<project::Acceptance> Acceptances() const;

private:
    [[nodiscard]] QString RuleText() const;
    void UpdateOk();

    const MResources::TextTable& texts_;
    std::vector<project::Finding> findings_;
    QRadioButton* optThese_;
    QRadioButton* optRule_;
    QLineEdit* txtReason_;
    QLineEdit* txtBy_;
    QCheckBox* chkUntil_;
    QDateEdit* datUntil_;
    QPushButton* cmdOk_;
};

}  // namespace findings
