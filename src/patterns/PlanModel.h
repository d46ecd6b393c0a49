#pragma once

#include <QAbstractTableModel>
#include <QStringList>

#include "patterns/TrendPlan.h"
#include "texts/MResources.h"

namespace patterns {

/// The trends that are planned, as a table that can be corrected: what stands against a cell is
/// marked and said, and a row without its tick is left out.
class PlanModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    /// Both are borrowed.
    PlanModel(TrendPlan& plan, const MResources::TextTable& texts, QObject* parent)
        : QAbstractTableModel(parent), plan_(plan), texts_(texts) {}

    /// The plan is another one. `languages`: what the columns of the texts are called.
    void Reset(const QStringList& languages);
    /// What stands against the rows may be something else.
    void ShowProblems();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

signals:
    void Corrected();

private:
    [[nodiscard]] QString ProblemText(const QModelIndex& index) const;

    TrendPlan& plan_;
    const MResources::TextTable& texts_;
    QStringList languages_;
    int rows_ = 0;
};

}  // namespace patterns
