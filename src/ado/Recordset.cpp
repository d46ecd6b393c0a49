#include "ado/Recordset.h"

#include <algorithm>
#include <optional>
#include <tuple>

#include "ado/AdoError.h"
#include "ado/detail/ConnectionRep.h"
#include "ado/detail/Lexer.h"
#include "ado/detail/ProviderError.h"
#include "ado/detail/RowList.h"

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
    enum class Place { First, Begin, Row, End };

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
    std::size_t position = 0;  // while place is Row

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

    /// The place, with First made out.
    Place Resolve() {
        if (place == Place::First) GoTo(0);
        return place;
    }

    void RequireRow() {
        if (Resolve() != Place::Row) ThrowNoCurrentRecord();
    }

    void LoadCurrent() {
        RequireRow();
        if (!reader.Load(list.At(position))) {
            throw AdoError(ErrorNumber::kRowNotLocated,
                           "The row cannot be located: another program has deleted it since it "
                           "was read.");
        }
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
    if (rep_) Close();
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
    if (field >= rep.rows.Fields().size()) {
        throw AdoError(ErrorNumber::kItemNotFound,
                       "There is no column number " + std::to_string(field) + ".");
    }
    rep.LoadCurrent();
    const RowSet::Origin origin = rep.rows.OriginOf(field);
    return rep.reader.Get(origin.table, origin.column);
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
    if (!rep.list.Has(0)) ThrowNoCurrentRecord();
    rep.GoTo(0);
}

void Recordset::MoveLast() {
    Rep& rep = Opened();
    const std::size_t count = rep.list.Count();
    if (count == 0) ThrowNoCurrentRecord();
    rep.GoTo(count - 1);
}

void Recordset::MoveNext() {
    Rep& rep = Opened();
    if (IsEOF()) ThrowNoCurrentRecord();
    rep.GoTo(rep.place == Rep::Place::Begin ? 0 : rep.position + 1);
}

void Recordset::MovePrevious() {
    Rep& rep = Opened();
    if (IsBOF()) ThrowNoCurrentRecord();
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
    return {rep.list.At(rep.position)};
}

void Recordset::SetBookmark(Bookmark bookmark) {
    Rep& rep = Opened();
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
    const Rep::Place place = rep.Resolve();

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
    Opened().Restart();
}

void Recordset::Resync() {
    Rep& rep = Opened();
    rep.reader.Forget();
    rep.LoadCurrent();
}

}  // namespace ado
