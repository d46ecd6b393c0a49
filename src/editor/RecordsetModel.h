#pragma once

#include <cstdint>
#include <optional>
#include <QAbstractTableModel>
#include <QLocale>
#include <QString>
#include <string>
#include <vector>

#include "ado/Recordset.h"
#include "languages/MResources.h"
#include "projectdb/RowWalk.h"

/// Read-only model over the rows of a recordset, for a table view.
///
/// Rows are read in portions as the view scrolls to them and kept as texts, so that painting asks
/// the database nothing. Reading moves the recordset's current row. The recordset is borrowed from
/// Attach to Detach and must stay open all the while. Rows that cannot be read are left out.
class RecordsetModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    struct Column {
        std::string field;
        QString caption;
    };

    /// `texts` is borrowed.
    explicit RecordsetModel(const MResources::TextTable& texts, QObject* parent = nullptr);

    /// Throws ado::AdoError when the recordset lacks a column; the model is then empty.
    void Attach(ado::Recordset& recordset, std::vector<Column> columns);
    /// The columns stay, so that a view keeps their widths until rows come again.
    void Detach();

    /// The row whose column ID holds `id`, reading on as far as needed; -1 when there is none.
    [[nodiscard]] int RowOf(std::int32_t id);
    [[nodiscard]] std::int32_t IdAt(int row) const;
    /// What could not be read so far.
    [[nodiscard]] const projectdb::RowFailures& Missing() const noexcept { return missing_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

signals:
    /// The first rows that cannot be read have been met.
    void RowsMissing();

private:
    struct Row {
        std::int32_t id = 0;
        std::vector<QString> texts;
    };

    void Bind(ado::Recordset& recordset, std::vector<Column> columns);
    void ReadPortion(std::vector<Row>& portion);
    [[nodiscard]] Row ReadRow() const;

    const MResources::TextTable& texts_;
    ado::Recordset* recordset_ = nullptr;
    std::vector<Column> columns_;
    std::vector<std::size_t> fields_;  // of each column
    std::vector<bool> rightAligned_;
    std::size_t idField_ = 0;
    std::vector<Row> rows_;
    std::optional<ado::Bookmark> lastRead_;  // empty: nothing has been read yet
    projectdb::RowFailures missing_;
    bool complete_ = true;
    QLocale locale_;
};
