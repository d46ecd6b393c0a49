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

    /// The user has typed into a cell that another program has changed too: whether the user's
    /// value holds; nothing when he decides nothing.
    using Settle = std::function<std::optional<bool>(const project::Conflict& conflict)>;

    /// All are borrowed.
    TrendRows(const MResources::TextTable& texts, INameRegistry& names, Refusal refuse,
              Settle settle, QObject* parent = nullptr);

    /// Binds to the trend query's rows: every column of it, editable where the table of trends has
    /// it and it is no key.
    void AttachTrends(ado::Recordset& trends, const QVariant& archive);

    GridCommit CommitCell(GridRowId row, int column, const QVariant& value) override;

    /// Whether a trend can be made with a value for the column: all of the table of trends but the
    /// keys that the database and the archive give.
    [[nodiscard]] bool IsSetting(int column) const;
    /// Whether the column holds the trend's text in one of the project's languages.
    [[nodiscard]] bool IsLanguage(int column) const;

private:
    [[nodiscard]] bool AcceptName(const QString& stored, const QString& name);
    [[nodiscard]] GridCommit Write(int row, int column, const ado::Value& value);
    /// Takes over what another program has made of a row. Nothing: the cell can be written; else
    /// how the edit of it ends.
    [[nodiscard]] std::optional<GridCommit> Join(int row, int column, const ado::Value& value);

    INameRegistry& names_;
    Refusal refuse_;
    Settle settle_;
};
