#pragma once

#include <functional>
#include <optional>

#include "dialogs/DialogServices.h"
#include "editor/RecordsetModel.h"
#include "project/TakeBack.h"

/// The trends of the open archive: rows of the trend query that are edited in place. A field goes
/// to the table it comes from, a row at a time. What another program has changed in the row
/// meanwhile is shown as it is now; where that is the same cell, the user settles it.
class TrendRows final : public RecordsetModel {
    Q_OBJECT
public:
    /// Number of the data error for a row that is not any more as the grid shows it.
    static constexpr int kRowChanged = 32;

    /// Tells the user why a name is refused; the text's number.
    using Refusal = std::function<void(int text)>;

    /// The user has written cells that another program has changed too: whether the user's value
    /// holds in each; nothing when he decides nothing.
    using AskForConflicts = std::function<std::optional<std::vector<bool>>(
        const std::vector<project::Conflict>& conflicts)>;

    /// All are borrowed.
    TrendRows(const MResources::TextTable& texts, INameRegistry& names, Refusal refuse,
              AskForConflicts ask, QObject* parent = nullptr);

    /// Binds to the trend query's rows: every column of it, editable where the table of trends has
    /// it and it is no key.
    void AttachTrends(ado::Recordset& trends, ado::Connection& connection, const QVariant& archive);

    GridCommit CommitCell(GridRowId row, int column, const QVariant& value) override;
    /// One transaction. Names are taken as a set, so that two trends can swap theirs.
    GridCommit CommitCells(const QList<GridCell>& cells) override;

    /// Asks the user for what another program has changed too, before a transaction that is more
    /// than these cells begins. Returns what is left to be written; nothing when he gives up.
    [[nodiscard]] std::optional<QList<GridCell>> Settle(const QList<GridCell>& cells);

    /// Whether a trend can be made with a value for the column: all of the table of trends but the
    /// keys that the database and the archive give.
    [[nodiscard]] bool IsSetting(int column) const;
    /// Whether the column holds the trend's text in one of the project's languages.
    [[nodiscard]] bool IsLanguage(int column) const;

private:
    /// What is to be written into a row, by column.
    struct RowCells {
        int row = -1;
        std::vector<std::pair<int, ado::Value>> cells;
    };
    [[nodiscard]] std::vector<RowCells> ByRow(const QList<GridCell>& cells) const;
    [[nodiscard]] GridCommit Write(std::vector<RowCells>& rows);
    /// Takes over what other programs have made of the rows, and leaves to be written what the user
    /// wants against that. False when he decides nothing.
    [[nodiscard]] bool Join(std::vector<RowCells>& rows);
    void WriteRow(const RowCells& row, int& column);
    /// After a failure: rows as they are in the file.
    void ReadAgain(const std::vector<RowCells>& rows);
    [[nodiscard]] int NameColumn() const { return ColumnOf("Name"); }

    ado::Connection* connection_ = nullptr;
    INameRegistry& names_;
    Refusal refuse_;
    AskForConflicts ask_;
};
