#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "controls/GridSource.h"
#include "project/CellChanges.h"
#include "projectdb/IProjectWork.h"
#include "projecttable/RowOrder.h"
#include "projecttable/TrendTable.h"
#include "texts/MResources.h"

/// The rows of a TrendTable as a grid shows them, narrowed and ordered here, edited in place. A
/// change goes to the file as a step of the user.
class TrendTableModel final : public GridSource {
    Q_OBJECT
public:
    /// All are borrowed. A change that takes long shows its progress over `owner`.
    TrendTableModel(const MResources::TextTable& texts, projectdb::IProjectWork& work,
                    QWidget* owner = nullptr);
    ~TrendTableModel() override;

    /// Filters and order stay.
    void SetTable(TrendTable table);
    [[nodiscard]] bool HasTable() const { return table_ != nullptr; }
    /// REQUIRES: there is a table.
    [[nodiscard]] TrendTable& Table() { return *table_; }

    /// What narrows the rows; columns by field.
    struct Narrowing {
        std::map<QString, QString> columns;
        QString anywhere;                 // in any column that is shown
        std::set<QString> hidden;         // columns
        std::set<std::int32_t> archives;  // empty: all
    };
    void Narrow(Narrowing narrowing);
    /// The order, the leading key first.
    struct SortKey {
        QString field;
        Qt::SortOrder order = Qt::AscendingOrder;
    };
    [[nodiscard]] QList<SortKey> SortKeys() const;
    void SetSortKeys(const QList<SortKey>& keys);

    struct Archive {
        std::int32_t id = 0;
        QString name;
        std::size_t trends = 0;  // that the filters of columns leave
    };
    /// Those that have trends, by name.
    [[nodiscard]] std::vector<Archive> Archives();
    [[nodiscard]] std::size_t TrendCount() const;
    /// The values of a column as they are shown, each once, in ascending order.
    [[nodiscard]] QStringList ValuesOf(int column);
    [[nodiscard]] projectdb::Place PlaceOf(GridRowId row, int column) const;
    [[nodiscard]] int ColumnOf(const QString& field) const;

    // GridSource
    [[nodiscard]] GridRowId IdAt(int row) const override;
    [[nodiscard]] int RowOf(GridRowId id) const override;
    [[nodiscard]] QVariant ContentKey() const override { return 0; }
    [[nodiscard]] std::optional<QVariant> ReadCell(int column, const QString& text) const override;
    GridCommit CommitCell(GridRowId row, int column, const QVariant& value) override;
    GridCommit CommitCells(const QList<GridCell>& cells) override;
    bool SortRows(int column, Qt::SortOrder order, bool further) override;
    [[nodiscard]] std::optional<Qt::SortOrder> OrderOf(int column) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    /// Other rows are shown, or others are counted.
    void Narrowed();
    /// The user has given a change up; nothing is written.
    void GivenUp();

private:
    [[nodiscard]] bool IsMissing(std::size_t row, std::size_t column) const;
    void ApplyNarrowing();
    void Compute();
    [[nodiscard]] const TrendTable::Column& ColumnAt(int column) const;
    [[nodiscard]] std::vector<project::CellChange> ChangesOf(const QList<GridCell>& cells) const;
    [[nodiscard]] GridCommit Write(const std::vector<project::CellChange>& changes,
                                   const QList<GridCell>& cells);
    [[nodiscard]] GridCommit RefusalOf(const project::CellRefusal& refusal, const GridCell& cell);
    void TakeOver(const std::vector<project::CellChange>& changes, std::uint64_t contentBefore);

    const MResources::TextTable& texts_;
    projectdb::IProjectWork& work_;
    QWidget* owner_;
    QLocale locale_;
    std::unique_ptr<TrendTable> table_;
    std::unique_ptr<RowOrder> order_;
    Narrowing narrowing_;
    QList<SortKey> keys_;
    RowOrder::Rows rows_;
    std::vector<int> places_;  // of the table's rows among the shown ones; -1: not shown
};
