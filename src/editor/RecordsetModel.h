#pragma once

#include <cstdint>
#include <optional>
#include <QHash>
#include <QLocale>
#include <QString>
#include <string>
#include <vector>

#include "ado/Recordset.h"
#include "controls/GridSource.h"
#include "projectdb/RowWalk.h"
#include "texts/MResources.h"

/// The rows of a recordset as one split of the grid shows them; read only as it stands.
///
/// Rows are read in portions as the view scrolls to them and kept as values, so that painting,
/// sorting and narrowing ask the database nothing. Reading moves the recordset's current row. The
/// recordset is borrowed from Attach to Detach and must stay open all the while. Rows that cannot
/// be read are left out.
class RecordsetModel : public GridSource {
    Q_OBJECT
public:
    struct Column {
        std::string field;
        GridKind kind = GridKind::Text;
        bool editable = false;
    };

    /// `texts` is borrowed.
    explicit RecordsetModel(const MResources::TextTable& texts, QObject* parent = nullptr);

    /// `contentKey`: what the rows belong to (GridSource::ContentKey). Throws ado::AdoError when
    /// the recordset lacks a column; the model is then empty.
    void Attach(ado::Recordset& recordset, std::vector<Column> columns,
                const QVariant& contentKey = {});
    /// The columns stay, so that a view keeps their widths until rows come again.
    void Detach();

    /// As RowOf, but reading on as far as needed.
    [[nodiscard]] int Locate(GridRowId id);
    /// Reads to the end; false when that fails, which has been told.
    bool ReadAll();
    /// All that has been wanted so far could be read.
    [[nodiscard]] bool IsWhole() const noexcept { return !failed_ && missing_.Count() == 0; }
    /// What could not be read so far.
    [[nodiscard]] const projectdb::RowFailures& Missing() const noexcept { return missing_; }
    /// Position of a column in Columns(); -1 when there is none. Exact names.
    [[nodiscard]] int ColumnOf(std::string_view field) const;
    [[nodiscard]] const std::vector<Column>& Columns() const noexcept { return columns_; }
    [[nodiscard]] const ado::Value& ValueAt(int row, int column) const;
    [[nodiscard]] const ado::Field& FieldAt(int column) const;

    /// Makes the row the recordset's current one, freshly read.
    void MoveTo(int row);
    /// Takes the values of the recordset's current row over into `row`.
    void TakeOver(int row);

    // GridSource
    [[nodiscard]] GridRowId IdAt(int row) const override;
    [[nodiscard]] int RowOf(GridRowId id) const override;
    [[nodiscard]] QVariant ContentKey() const override { return contentKey_; }
    [[nodiscard]] std::optional<QVariant> ReadCell(int column, const QString& text) const override;
    GridCommit CommitCell(GridRowId row, int column, const QVariant& value) override;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

signals:
    /// The first rows that cannot be read have been met.
    void RowsMissing();

protected:
    /// True when the recordset's current row, freshly read, is no longer what `row` shows.
    [[nodiscard]] bool HasChanged(int row) const;
    /// REQUIRES: attached.
    [[nodiscard]] ado::Recordset& Rows() const { return *recordset_; }
    [[nodiscard]] const MResources::TextTable& Texts() const noexcept { return texts_; }

private:
    struct Row {
        std::int32_t id = 0;
        ado::Bookmark bookmark;
        std::vector<ado::Value> values;
    };

    void Bind(ado::Recordset& recordset, std::vector<Column> columns);
    void ReadPortion(std::vector<Row>& portion);
    [[nodiscard]] Row ReadRow() const;
    [[nodiscard]] QString ShownText(int row, int column) const;

    const MResources::TextTable& texts_;
    ado::Recordset* recordset_ = nullptr;
    QVariant contentKey_;
    std::vector<Column> columns_;
    std::vector<std::size_t> fields_;  // of each column
    std::size_t idField_ = 0;
    std::vector<Row> rows_;
    QHash<GridRowId, int> places_;           // row of each id
    std::optional<ado::Bookmark> lastRead_;  // empty: nothing has been read yet
    projectdb::RowFailures missing_;
    bool complete_ = true;
    bool failed_ = false;  // reading has ended with an error
    QLocale locale_;
};
