#pragma once

#include <QHash>
#include <vector>

#include "controls/GridSource.h"
#include "projecttable/TrendTableModel.h"

/// The archives beside the table, with how many of their trends the filters leave; in front of them
/// a row for all of them. Read only.
class ArchiveGroups final : public GridSource {
    Q_OBJECT
public:
    static constexpr GridRowId kAll = 0;

    explicit ArchiveGroups(const MResources::TextTable& texts, QObject* parent = nullptr)
        : GridSource(parent), texts_(texts) {}

    /// Rows stay where they are when only their counts have changed.
    void Show(std::vector<TrendTableModel::Archive> archives);

    [[nodiscard]] GridRowId IdAt(int row) const override;
    [[nodiscard]] int RowOf(GridRowId id) const override { return places_.value(id, -1); }
    [[nodiscard]] QVariant ContentKey() const override { return 0; }
    [[nodiscard]] std::optional<QVariant> ReadCell(int, const QString&) const override {
        return std::nullopt;
    }
    GridCommit CommitCell(GridRowId, int, const QVariant&) override {
        return GridCommit::Refused();
    }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    const MResources::TextTable& texts_;
    std::vector<TrendTableModel::Archive> archives_;  // the first stands for all
    QHash<GridRowId, int> places_;
};
