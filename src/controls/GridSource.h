#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <QAbstractTableModel>
#include <QList>
#include <QString>
#include <QVariant>

/// Names a row for as long as it exists, wherever it stands; the row's own ID in the table.
using GridRowId = std::int64_t;
inline constexpr GridRowId kNoGridRow = std::numeric_limits<GridRowId>::min();

/// What a cell of a column is, and so how it is edited and compared.
/// Columns with value items hold an Integer, the code of the item.
enum class GridKind {
    Text,
    Integer,
    Number,  // with a fraction
    Colour,  // an integer 0x00BBGGRR
};

/// Beyond Qt's own roles. All are answered from memory: a view asks them while it paints.
namespace GridRole {
/// data(): the value as it is stored; an invalid QVariant is Null. Integers as int or qlonglong,
/// numbers as double, texts as QString. Sorting and editing go by it, and so do value items,
/// colours and number formats.
inline constexpr int kStored = Qt::UserRole + 1;
/// headerData(), horizontal: the name of the field, by which the column is addressed.
inline constexpr int kField = Qt::UserRole + 2;
/// headerData(), horizontal: a GridKind as int. Text when missing.
inline constexpr int kKind = Qt::UserRole + 3;
/// data(): the value to be written again elsewhere, where that is more than kStored shows; else the
/// same.
inline constexpr int kExact = Qt::UserRole + 5;
/// data(): true where something should stand in an empty cell; it is hatched then.
inline constexpr int kMissing = Qt::UserRole + 6;
/// data(): the number that the text of a cell is as a whole; an invalid QVariant when it is none.
inline constexpr int kNumber = Qt::UserRole + 4;
}  // namespace GridRole

/// A cell and what is to be written there; an invalid value clears it.
struct GridCell {
    GridRowId row = kNoGridRow;
    int column = -1;
    QVariant value;
};

/// What became of a change.
struct GridCommit {
    enum class Outcome {
        Stored,
        Refused,  // the user has been told why; nothing is written
        Failed,   // nothing is written; the grid raises its data error with the members below
    };
    Outcome outcome = Outcome::Stored;
    int number = 0;
    QString text = {};     // for the user; may be empty
    QString details = {};  // for who is asked for help
    // Which of several cells it was; kNoGridRow: none of them.
    GridRowId row = kNoGridRow;
    int column = -1;

    [[nodiscard]] static GridCommit Stored() { return {}; }
    [[nodiscard]] static GridCommit Refused() { return {Outcome::Refused}; }
    [[nodiscard]] static GridCommit Failed(int number, QString text, QString details = {}) {
        return {Outcome::Failed, number, std::move(text), std::move(details)};
    }
};

/// The rows of one split of a TDBGrid. The window implements it over whatever holds the rows; the
/// grid knows no database.
///
/// What the grid asks for while it paints or scrolls:
/// - rowCount, data (Qt::DisplayRole: the text shown, Qt::ToolTipRole: optional, kStored, kNumber),
///   headerData (Qt::DisplayRole: the caption until the column is given another, kField, kKind),
///   flags (Qt::ItemIsEditable decides whether the cell can be edited at all). They are answered
///   from memory.
/// - canFetchMore, fetchMore: the next portion of rows, inserted at the end. Some screens full at
///   a time; it must take less than a frame (16 ms). Sorting and narrowing read all portions.
///
/// A column with value items shows the item's text; for all others the grid shows what
/// Qt::DisplayRole says, and has it edited, numbers and colours too. A text column with a number
/// format is sorted by the numbers that its texts are.
///
/// Changes are announced as Qt's models do: rows inserted and removed, dataChanged, and a reset
/// when the rows are read anew or become those of another archive. Columns change by reset only.
/// Until modelAboutToBeReset has been emitted, the old rows must still answer IdAt.
///
/// Nothing here may throw: the calls come out of event handlers.
class GridSource : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit GridSource(QObject* parent = nullptr);
    ~GridSource() override;

    /// The id of a row that has been fetched.
    [[nodiscard]] virtual GridRowId IdAt(int row) const = 0;
    /// The row of an id among the rows fetched so far; -1 when it is not there. The grid asks this
    /// for every edit: look it up rather than search for it.
    [[nodiscard]] virtual int RowOf(GridRowId id) const = 0;

    /// Says what the rows belong to (the archive's number). After a reset with the same key the
    /// grid finds its current row, its selection and a running edit again, reading portions as
    /// far as needed; with another key it begins at the top. An empty model in between (released,
    /// then read anew) loses nothing. An invalid key never matches.
    [[nodiscard]] virtual QVariant ContentKey() const { return {}; }

    /// What a text typed into a cell of the column means there: an invalid value when it is empty,
    /// nothing when it is no value for the column.
    [[nodiscard]] virtual std::optional<QVariant> ReadCell(int column,
                                                           const QString& text) const = 0;

    /// Writes one cell. `value` is of the column's kind: QString, qlonglong or double; invalid
    /// when the cell has been cleared. Checks of the value (an empty name) belong here. On
    /// success the model must emit dataChanged before it returns; the row stays where it is.
    /// A row that has gone meanwhile is a failure like others.
    /// The call may show a message box, and the model may even be reset within it.
    virtual GridCommit CommitCell(GridRowId row, int column, const QVariant& value) = 0;

    /// Writes several cells, each named once, all of them or none; as CommitCell. A source that
    /// cannot do that refuses.
    virtual GridCommit CommitCells(const QList<GridCell>& cells);

    /// Puts the rows into the order of a column, where the source can do that better than the grid;
    /// -1: into its own order. `further`: only rows that are equal in the order that there is. The
    /// source tells nobody: the grid reads its rows anew then, and whenever they are reset. False:
    /// the grid sorts them.
    virtual bool SortRows(int column, Qt::SortOrder order, bool further);
    /// How such an order goes by the column; nothing where it does not.
    [[nodiscard]] virtual std::optional<Qt::SortOrder> OrderOf(int column) const;

    /// Goes through CommitCell. Returns whether the value is stored.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override = 0;
};
