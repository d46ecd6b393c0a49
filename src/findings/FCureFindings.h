#pragma once

#include <QDialog>
#include <span>
#include <vector>

#include "project/Cure.h"
#include "texts/MResources.h"

class QTableWidget;

namespace findings {

/// Shows what cures would do, field by field with old and new value, before they do it. Each
/// finding can be left out.
class FCureFindings final : public QDialog {
    Q_OBJECT
public:
    /// All are borrowed; `cures` are those of `findings`.
    FCureFindings(const MResources::TextTable& texts, std::span<const project::Finding> findings,
                  std::span<const project::PlannedCure> cures, QWidget* owner);

    /// When the dialog was accepted: positions among the cures.
    [[nodiscard]] std::vector<std::size_t> Chosen() const;

private:
    void AddSteps(const project::Finding& finding, const project::PlannedCure& cure);
    [[nodiscard]] QString ValueOf(const project::CureStep& step, const ado::Value& value) const;
    [[nodiscard]] QString NewOf(const project::CureStep& step) const;

    const MResources::TextTable& texts_;
    QTableWidget* tblCures_;
    std::vector<int> rows_;  // first row of each cure
};

}  // namespace findings
