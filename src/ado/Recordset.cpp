#include "ado/Recordset.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>

#include "ado/AdoError.h"
#include "ado/detail/ConnectionRep.h"
#include "ado/detail/Convert.h"
#include "ado/detail/Lexer.h"
#include "ado/detail/PendingEdits.h"
#include "ado/detail/ProviderError.h"
#include "ado/detail/RowList.h"
#include "jet/TableWriter.h"

namespace ado {
namespace {

std::vector<SortColumn> ParseSort(const RowSet& rows, std::string_view columns) {
    std::vector<SortColumn> sort;
    Lexer lexer(columns);
    if (lexer.Current().kind == Token::Kind::End) return sort;
    do {
        std::string name = lexer.ExpectName("column");
        if (lexer.TakeSymbol(".")) name += "." + lexer.ExpectName("column");
        const bool descending = lexer.TakeKeyword("DESC");
        if (!descending) std::ignore = lexer.TakeKeyword("ASC");  // says what holds anyway
        sort.push_back({rows.OriginOf(rows.FieldIndex(name)), descending});
    } while (lexer.TakeSymbol(","));
    if (lexer.Current().kind != Token::Kind::End) lexer.Fail("something behind the columns");
    return sort;
}

bool IsBlank(std::string_view text) {
    return text.find_first_not_of(' ') == text.npos;
}

}  // namespace

struct Recordset::Rep {
    /// First: the first row, if there is one; nothing has been read yet to know.
    /// Added: the row that AddNew and Update have made. Deleted: in front of `position`, where a
    /// row has been deleted.
    enum class Place { First, Begin, Row, End, Added, Deleted };

    Rep(Connection& owner, RowSet set)
        : connection(owner), rows(std::move(set)), reader(rows), list(rows, reader) {}

    Connection& connection;
    RowSet rows;
    RowReader reader;
    RowList list;
    std::unique_ptr<Expression> filter;  // null: none
    std::string filterText;
    std::string sortText;
    Place place = Place::First;
    std::size_t position = 0;  // while place is Row or Deleted
    RowKey addedKey = 0;       // while place is Added

    bool isNew = false;  // AddNew has begun a row
    // The row of each table as it was when its edit began; what Update compares with.
    std::array<jet::Row, RowSet::kMostTables> original;
    PendingEdits edits;

    void Restart() {
        reader.Forget();
        list.Restart(filter.get(), ParseSort(rows, sortText));
        place = Place::First;
    }

    /// Goes to a row, or behind the last one when there is no such row.
    void GoTo(std::size_t to) {
        const bool found = list.Has(to);
        place = found ? Place::Row : Place::End;
        position = to;
    }

    /// Puts the place of a row that has been added at its position, for a move from there.
    void GoToAdded() {
        position = list.Find(addedKey).value_or(0);
        place = Place::Row;
    }

    /// The place, with First made out.
    Place Resolve() {
        if (place == Place::First) GoTo(0);
        return place;
    }

    void RequireField(std::size_t field) const {
        if (field < rows.Fields().size()) return;
        throw AdoError(ErrorNumber::kItemNotFound,
                       "There is no column number " + std::to_string(field) + ".");
    }

    void RequireRow() {
        const Place now = Resolve();
        if (now != Place::Row && now != Place::Added) ThrowNoCurrentRecord();
    }
    [[nodiscard]] RowKey CurrentKey() const {
        return place == Place::Added ? addedKey : list.At(position);
    }
    [[nodiscard]] bool IsEditing() const { return isNew || !edits.IsEmpty(); }

    void LoadCurrent() {
        RequireRow();
        if (!reader.Load(CurrentKey())) {
            throw AdoError(ErrorNumber::kRowNotLocated,
                           "The row cannot be located: another program has deleted it since it "
                           "was read.",
                           {reasons::Cause::RowChanged, rows.File()});
        }
    }

    /// Runs `change` in a transaction, or in the one that is going on.
    template <typename Change>
    void InTransaction(Change change) {
        jet::Database& database = *connection.rep_->database;
        const std::string& file = rows.File();
        const bool isOwn = !database.InTransaction();
        if (isOwn) Check(database.Begin(), file);
        jet::Status status = change();
        if (!isOwn) return Check(status, file);
        if (status.IsOk()) {
            Check(database.Commit(), file);
            return connection.rep_->TellChanges();
        }
        std::ignore = database.Rollback();  // the failure to be told is the first one
        ThrowStatus(status, file);
    }

    /// NotFound when the row of a table is no longer as it was read.
    jet::Status CheckUnchanged(std::size_t number) {
        jet::Table& table = rows.Table(number);
        const jet::Row& before = original.at(number);
        const auto now = table.Fetch(before.Id());
        if (!now.IsOk()) return now.GetStatus();
        // The same bytes are the same values; a row that was stored anew may have others for them.
        const jet::Bytes old = before.Stored();
        const jet::Bytes stored = now->Stored();
        if (std::equal(old.begin(), old.end(), stored.begin(), stored.end())) return {};
        for (std::size_t i = 0; i < table.Definition().columns.size(); ++i) {
            const auto oldValue = before.Get(i);
            const auto value = now->Get(i);
            if (!oldValue.IsOk()) return oldValue.GetStatus();
            if (!value.IsOk()) return value.GetStatus();
            if (*oldValue != *value) {
                return jet::Status::NotFound(
                    "the row cannot be located: another program has changed it since it was read");
            }
        }
        return {};
    }

    void BeginEdit() {
        LoadCurrent();
        for (std::size_t i = 0; i < rows.TableCount(); ++i) original.at(i) = reader.Current(i);
    }

    [[nodiscard]] std::vector<jet::Assignment> EditsOf(std::size_t table) const {
        std::vector<jet::Assignment> assignments;
        for (std::size_t i = 0; i < edits.Fields().size(); ++i) {
            if (rows.OriginOf(edits.Fields()[i]).table != table) continue;
            assignments.push_back(edits.Assignments()[i]);
        }
        return assignments;
    }

    void StoreNew() {
        jet::RowId row;
        InTransaction([&]() -> jet::Status {
            auto inserted = jet::TableWriter(rows.Table(0)).Insert(edits.Assignments());
            if (!inserted.IsOk()) return inserted.GetStatus();
            row = *inserted;
            return {};
        });
        addedKey = RowKey{row.Pointer()} << 32;
        list.Add(addedKey);
        place = Place::Added;
    }

    void StoreEdits() {
        InTransaction([&]() -> jet::Status {
            for (std::size_t table = 0; table < rows.TableCount(); ++table) {
                const auto assignments = EditsOf(table);
                if (assignments.empty()) continue;
                jet::Status status = CheckUnchanged(table);
                if (status.IsOk()) {
                    status = jet::TableWriter(rows.Table(table))
                                 .Update(original.at(table).Id(), assignments);
                }
                if (!status.IsOk()) return status;
            }
            return {};
        });
    }

    /// True when the row at a position meets a criterion. `candidates` holds the rows that an index
    /// found for it, in ascending order, when there is one.
    bool Matches(std::size_t at, const Expression& criterion,
                 const std::optional<std::vector<RowKey>>& candidates) {
        const RowKey key = list.At(at);
        if (candidates && !std::binary_search(candidates->begin(), candidates->end(), key)) {
            return false;
        }
        return reader.Load(key) && reader.Holds(criterion);
    }
};

Recordset::Recordset() = default;

Recordset::~Recordset() {
    if (!rep_) return;
    CancelUpdate();
    Close();
}

void Recordset::Open(std::string_view source, Connection& connection, CommandType type,
                     const std::vector<std::u16string>& parameters) {
    if (rep_) {
        throw AdoError(ErrorNumber::kObjectOpen,
                       "The operation is not allowed while the recordset is open.");
    }
    if (connection.State() == ObjectState::Closed) {
        throw AdoError(ErrorNumber::kObjectClosed,
                       "The operation is not allowed while the connection is closed.");
    }
    jet::Database& database = *connection.rep_->database;
    const std::string& file = connection.rep_->source;
    auto rep = std::make_unique<Rep>(connection,
                                     type == CommandType::Table
                                         ? RowSet::OfTable(database, file, source)
                                         : RowSet::OfQuery(database, file, source, parameters));
    rep->list.Restart(nullptr, {});
    rep_ = std::move(rep);
    connection.rep_->recordsets.push_back(this);
}

void Recordset::Close() {
    if (Opened().IsEditing()) {
        throw AdoError(ErrorNumber::kIllegalOperation,
                       "The recordset cannot be closed while a row is being edited; store or drop "
                       "the edit first.");
    }
    std::erase(Opened().connection.rep_->recordsets, this);
    rep_.reset();
}

Recordset::Rep& Recordset::Opened() const {
    if (!rep_) {
        throw AdoError(ErrorNumber::kObjectClosed,
                       "The operation is not allowed while the recordset is closed.");
    }
    return *rep_;
}

ObjectState Recordset::State() const noexcept {
    return rep_ ? ObjectState::Open : ObjectState::Closed;
}

const std::vector<Field>& Recordset::Fields() const {
    return Opened().rows.Fields();
}

std::size_t Recordset::FieldIndex(std::string_view name) const {
    return Opened().rows.FieldIndex(name);
}

Value Recordset::Get(std::size_t field) const {
    Rep& rep = Opened();
    rep.RequireField(field);
    const RowSet::Origin origin = rep.rows.OriginOf(field);
    if (const jet::Value* edit = rep.edits.Find(field)) {
        return Check(FromStored(rep.rows.Table(origin.table), *edit), rep.rows.File());
    }
    if (rep.isNew) {
        const bool isBoolean = rep.rows.Fields()[field].type == DataType::Boolean;
        return isBoolean ? Value(false) : Value();
    }
    rep.LoadCurrent();
    return rep.reader.Get(origin.table, origin.column);
}

void Recordset::AddNew() {
    Rep& rep = Opened();
    StorePending();
    if (rep.rows.TableCount() != 1 || rep.rows.Where() != nullptr) {
        throw AdoError(ErrorNumber::kFeatureNotAvailable,
                       "New rows are added to a table, not to a query.");
    }
    rep.isNew = true;
}

void Recordset::Set(std::size_t field, const Value& value) {
    Rep& rep = Opened();
    rep.RequireField(field);
    if (!rep.IsEditing()) rep.BeginEdit();
    const RowSet::Origin origin = rep.rows.OriginOf(field);
    const jet::Column& column = rep.rows.Table(origin.table).Definition().columns[origin.column];
    rep.edits.Set(field, origin.column, ForAssignment(column, value));
}

void Recordset::Set(std::string_view name, const Value& value) {
    Set(FieldIndex(name), value);
}

void Recordset::Update() {
    Rep& rep = Opened();
    if (!rep.IsEditing()) return;
    if (rep.isNew) {
        rep.StoreNew();
    } else {
        rep.StoreEdits();
    }
    CancelUpdate();  // nothing is pending any more
    rep.reader.Forget();
}

void Recordset::CancelUpdate() {
    Rep& rep = Opened();
    rep.isNew = false;
    rep.edits.Clear();
}

ado::EditMode Recordset::EditMode() const {
    const Rep& rep = Opened();
    if (rep.isNew) return ado::EditMode::Add;
    return rep.edits.IsEmpty() ? ado::EditMode::None : ado::EditMode::InProgress;
}

std::vector<std::int32_t> Recordset::NumbersOf(std::size_t field) const {
    const RowSet& rows = Opened().rows;
    jet::RowCursor cursor = Check(rows.Table(0).Scan(), rows.File());
    const std::size_t column = rows.OriginOf(field).column;
    std::vector<std::int32_t> numbers;
    jet::Value stored;
    for (;;) {
        const auto found = cursor.Next();
        if (found.IsOk() && !*found) return numbers;
        if (!found.IsOk() || !cursor.Current().Read(column, stored).IsOk()) continue;
        if (const auto* number = std::get_if<std::int32_t>(&stored)) numbers.push_back(*number);
    }
}

std::size_t Recordset::Scan(
    const std::vector<std::size_t>& fields,
    const std::function<void(const std::vector<Value>& values)>& row) const {
    const RowSet& rows = Opened().rows;
    for (const std::size_t field : fields) rep_->RequireField(field);
    jet::Table& table = rows.Table(0);
    jet::RowCursor cursor = Check(table.Scan(), rows.File());
    std::vector<jet::Value> stored(fields.size());
    std::vector<Value> values(fields.size());
    std::size_t left = 0;
    for (;;) {
        const auto found = cursor.Next();
        if (found.IsOk() && !*found) return left;
        bool isRead = found.IsOk();
        for (std::size_t i = 0; isRead && i < fields.size(); ++i) {
            isRead = cursor.Current().Read(rows.OriginOf(fields[i]).column, stored[i]).IsOk() &&
                     AssignStored(table, stored[i], values[i]).IsOk();
        }
        if (isRead) {
            row(values);
        } else {
            ++left;
        }
    }
}

void Recordset::RequireWritable() const {
    Rep& rep = Opened();
    Check(jet::TableWriter(rep.rows.Table(0)).CheckWritable(), rep.rows.File());
}

void Recordset::Delete() {
    Rep& rep = Opened();
    if (rep.isNew) return CancelUpdate();
    CancelUpdate();
    if (rep.rows.TableCount() != 1) {
        throw AdoError(ErrorNumber::kFeatureNotAvailable,
                       "Rows are deleted from a table, not from a query.");
    }
    rep.BeginEdit();
    rep.InTransaction([&]() -> jet::Status {
        jet::Status status = rep.CheckUnchanged(0);
        if (!status.IsOk()) return status;
        return jet::TableWriter(rep.rows.Table(0)).Delete(rep.original[0].Id());
    });
    rep.reader.Forget();
    if (rep.place == Rep::Place::Added) {
        // Its place is behind all others, which only now have to be known.
        rep.position = rep.list.Find(rep.addedKey).value_or(0);
    }
    rep.list.Remove(rep.position);
    rep.place = Rep::Place::Deleted;
}

void Recordset::StorePending() {
    if (Opened().IsEditing()) Update();
}

Value Recordset::Get(std::string_view name) const {
    return Get(FieldIndex(name));
}

bool Recordset::IsBOF() const {
    Rep& rep = Opened();
    const Rep::Place place = rep.Resolve();
    return place == Rep::Place::Begin || (place == Rep::Place::End && !rep.list.Has(0));
}

bool Recordset::IsEOF() const {
    Rep& rep = Opened();
    const Rep::Place place = rep.Resolve();
    return place == Rep::Place::End || (place == Rep::Place::Begin && !rep.list.Has(0));
}

void Recordset::MoveFirst() {
    Rep& rep = Opened();
    StorePending();
    if (!rep.list.Has(0)) ThrowNoCurrentRecord();
    rep.GoTo(0);
}

void Recordset::MoveLast() {
    Rep& rep = Opened();
    StorePending();
    const std::size_t count = rep.list.Count();
    if (count == 0) ThrowNoCurrentRecord();
    rep.GoTo(count - 1);
}

void Recordset::MoveNext() {
    Rep& rep = Opened();
    StorePending();
    if (IsEOF()) ThrowNoCurrentRecord();
    switch (rep.place) {
        case Rep::Place::Begin:
            return rep.GoTo(0);
        case Rep::Place::Deleted:
            return rep.GoTo(rep.position);
        case Rep::Place::Added:
            rep.GoToAdded();
            [[fallthrough]];
        default:
            return rep.GoTo(rep.position + 1);
    }
}

void Recordset::MovePrevious() {
    Rep& rep = Opened();
    StorePending();
    if (IsBOF()) ThrowNoCurrentRecord();
    if (rep.place == Rep::Place::Added) rep.GoToAdded();
    const std::size_t from = rep.place == Rep::Place::End ? rep.list.Count() : rep.position;
    if (from == 0) {
        rep.place = Rep::Place::Begin;
    } else {
        rep.GoTo(from - 1);
    }
}

Bookmark Recordset::GetBookmark() const {
    Rep& rep = Opened();
    rep.RequireRow();
    return {rep.CurrentKey()};
}

void Recordset::SetBookmark(Bookmark bookmark) {
    Rep& rep = Opened();
    StorePending();
    const auto position = rep.list.Find(bookmark.row);
    if (!position) {
        throw AdoError(ErrorNumber::kInvalidArgument,
                       "The bookmark names no row of this recordset as it is filtered now.");
    }
    rep.GoTo(*position);
}

std::size_t Recordset::RecordCount() const {
    return Opened().list.Count();
}

void Recordset::SetFilter(std::string_view criteria) {
    Rep& rep = Opened();
    std::unique_ptr<Expression> filter;
    if (!IsBlank(criteria)) {
        filter = ParseCriteria(criteria);
        rep.rows.Bind(*filter);
    }
    StorePending();
    rep.list.Clear();  // it uses the filter that goes now
    rep.filter = std::move(filter);
    rep.filterText = criteria;
    rep.Restart();
}

const std::string& Recordset::Filter() const {
    return Opened().filterText;
}

void Recordset::SetSort(std::string_view columns) {
    Rep& rep = Opened();
    std::ignore = ParseSort(rep.rows, columns);  // throws before anything has changed
    StorePending();
    rep.sortText = columns;
    rep.Restart();
}

const std::string& Recordset::Sort() const {
    return Opened().sortText;
}

void Recordset::Find(std::string_view criterion, int skip, SearchDirection direction) {
    Rep& rep = Opened();
    const std::unique_ptr<Expression> condition = ParseCriteria(criterion);
    const bool single =
        condition->kind == Expression::Kind::Compare || condition->kind == Expression::Kind::IsNull;
    if (!single) {
        throw AdoError(
            ErrorNumber::kInvalidArgument,
            "A search takes one condition on one column, not \"" + std::string(criterion) + "\".");
    }
    rep.rows.Bind(*condition);
    std::optional<std::vector<RowKey>> candidates = LookUp(rep.rows, *condition);
    if (candidates) std::sort(candidates->begin(), candidates->end());
    const bool nothing = candidates && candidates->empty();
    StorePending();
    if (rep.place == Rep::Place::Added) rep.GoToAdded();
    Rep::Place place = rep.Resolve();
    // From where a row has been deleted, as from the row behind it.
    if (place == Rep::Place::Deleted) place = Rep::Place::Row;

    if (direction == SearchDirection::Forward) {
        auto at = place == Rep::Place::Row ? static_cast<std::ptrdiff_t>(rep.position) + skip : 0;
        at = std::max(at, std::ptrdiff_t{0});
        if (place == Rep::Place::End) return;
        for (auto i = static_cast<std::size_t>(at); !nothing && rep.list.Has(i); ++i) {
            if (rep.Matches(i, *condition, candidates)) return rep.GoTo(i);
        }
        rep.place = Rep::Place::End;
        return;
    }
    if (place == Rep::Place::Begin) return;
    auto at = place == Rep::Place::Row ? static_cast<std::ptrdiff_t>(rep.position) - skip
                                       : static_cast<std::ptrdiff_t>(rep.list.Count()) - 1;
    for (; !nothing && at >= 0 && rep.list.Has(static_cast<std::size_t>(at)); --at) {
        if (rep.Matches(static_cast<std::size_t>(at), *condition, candidates)) {
            return rep.GoTo(static_cast<std::size_t>(at));
        }
    }
    rep.place = Rep::Place::Begin;
}

void Recordset::Requery() {
    CancelUpdate();
    Opened().Restart();
}

OneState::OneState(const Recordset& rows) : OneState(rows.Opened().connection) {}

void Recordset::Resync() {
    Rep& rep = Opened();
    CancelUpdate();
    rep.reader.Forget();
    rep.LoadCurrent();
}

}  // namespace ado
