#include "jet/Table.h"

#include "jet/catalog/TableDefReader.h"
#include "jet/catalog/TableRules.h"
#include "jet/index/KeyEncoder.h"
#include "jet/page/Bytes.h"
#include "jet/row/ValueCodec.h"

namespace jet {
namespace {

/// Makes sure that a page is a data page of the table.
Result<DataPage> OpenOwned(const FileContext& file, Result<PageRef> ref, PageNo number,
                           PageNo table) {
    if (!ref.IsOk()) return ref.GetStatus();
    DataPage page;
    JET_ASSIGN(page, DataPage::Open(std::move(*ref), file.format));
    if (page.Owner() != Raw(table)) {
        return Status::Corrupt(PageText(number) + " belongs to another table");
    }
    return page;
}

/// True when a page that is none of the table's may have been one: it has been freed, and may
/// serve something else. Otherwise it is damaged.
bool MayBeGone(const FileContext& file, PageNo number) {
    constexpr std::uint8_t kGreatestType = 9;
    if (Raw(number) >= file.cache.PageCount()) return true;
    const Result<PageRef> ref = file.cache.Read(number);
    return ref.IsOk() && LoadU8(ref->Bytes(), 0) <= kGreatestType;
}

/// The bytes of the row that a moved slot points to; `page` becomes the page that holds them.
Result<Bytes> FollowMove(const FileContext& file, PageNo table, const Slot& slot, DataPage& page) {
    if (slot.bytes.size() < 4) return Status::Corrupt("the pointer to the moved row is cut short");
    const RowId target = RowId::FromPointer(LoadU32(slot.bytes, 0));
    JET_ASSIGN(page, OpenOwned(file, file.cache.Read(target.page), target.page, table));
    if (target.row >= page.SlotCount()) {
        return Status::Corrupt("it has moved to " + RowText(target) + ", which does not exist");
    }
    Slot moved;
    JET_ASSIGN(moved, page.At(target.row));
    if (!moved.isTarget) {
        return Status::Corrupt("it has moved to " + RowText(target) + ", which holds another row");
    }
    return moved.bytes;
}

}  // namespace

std::string TableText(const std::string& name) {
    return "table \"" + name + "\"";
}

Result<Value> Row::Get(std::size_t column) const {
    Value value;
    JET_TRY(Read(column, value));
    return value;
}

Status Row::Read(std::size_t column, Value& value) const {
    if (column >= def_->columns.size()) {
        return Status::BadArgument("there is no column number " + std::to_string(column));
    }
    const Column& def = def_->columns[column];
    const bool bit = view_.HasBit(def);
    if (def.type == ColumnType::Boolean) {
        value = bit;
        return {};
    }
    if (!bit) {
        value = Null{};
        return {};
    }
    Bytes bytes;
    Status status = view_.Locate(def, bytes) ? DecodeValue(def, codePage_, bytes, value)
                                             : view_.ValueBytes(def).GetStatus();
    if (status.IsOk()) return {};
    return status.In(RowText(id_) + ", column \"" + def.name + "\"");
}

Result<Bytes> Row::StoredValue(std::size_t column) const {
    const Column& def = def_->columns[column];
    if (def.type == ColumnType::Boolean || !view_.HasBit(def)) return Bytes();
    return view_.ValueBytes(def);
}

/// Reads some pages at once: a look at the file for each would cost more than reading it.
Status RowCursor::ReadAhead() {
    constexpr std::size_t kPages = 16;
    const ReadScope scope(file_->cache);
    Status status = scope.GetStatus();
    if (status.IsOk()) status = Reopen();
    // Who was only kept waiting may ask again.
    if (!status.IsOk()) atEnd_ = status.Code() != StatusCode::Busy;
    JET_TRY(status);
    ahead_.clear();
    nextAhead_ = 0;
    while (ahead_.size() < kPages && !atEnd_) {
        Result<std::optional<PageNo>> next = pages_.Next(nextPage_);
        if (!next.IsOk()) {
            const std::optional<PageNo> behind = pages_.BehindDamage();
            atEnd_ = !behind;
            if (behind) nextPage_ = *behind;
            ahead_.emplace_back(next.GetStatus());
        } else if (!*next) {
            atEnd_ = true;
        } else {
            nextPage_ = PageNo{Raw(**next) + 1};
            ahead_.push_back(
                OpenOwned(*file_, file_->cache.ReadOnce(**next), **next, row_.def_->page));
        }
    }
    return {};
}

Result<bool> RowCursor::NextPage() {
    if (nextAhead_ >= ahead_.size()) {
        if (atEnd_) return false;
        // Rows that the caller keeps hold their pages; the cursor itself lets go of the last ones.
        row_.page_ = DataPage();
        JET_TRY(ReadAhead());
        if (ahead_.empty()) return false;
    }
    nextSlot_ = 0;
    JET_ASSIGN(page_, std::move(ahead_[nextAhead_++]));
    return true;
}

/// Reads the table's map again when another program has changed the file.
Status RowCursor::Reopen() {
    if (generation_ != file_->cache.Generation()) {
        JET_ASSIGN(pages_, UsageMap::Open(file_->cache, file_->format, row_.def_->ownedMap));
        generation_ = file_->cache.Generation();
    }
    return {};
}

Result<bool> RowCursor::Next() {
    const auto named = [&](const Status& status) { return status.In(TableText(tableName_)); };
    for (;;) {
        if (nextSlot_ >= page_.SlotCount()) {
            page_ = DataPage();
            Result<bool> found = NextPage();
            if (!found.IsOk()) return named(found.GetStatus());
            if (!*found) return false;
            continue;
        }
        const int number = nextSlot_++;
        const RowId id{page_.Number(), static_cast<std::uint8_t>(number)};
        Result<Slot> slot = page_.At(number);
        if (!slot.IsOk()) return named(slot.GetStatus());
        if (slot->isDeleted || slot->isTarget) continue;
        row_.id_ = id;
        row_.page_ = page_;
        Result<Bytes> bytes = slot->bytes;
        if (slot->isMoved) {
            bytes = MovedBytes(number);
            // Meanwhile another program has deleted it.
            if (bytes.GetStatusOrOk().Code() == StatusCode::NotFound) continue;
        }
        if (!bytes.IsOk()) return named(bytes.GetStatus().In(RowText(id)));
        Result<RowView> view = RowView::Parse(file_->format, *row_.def_, *bytes);
        if (!view.IsOk()) return named(view.GetStatus().In(RowText(id)));
        row_.view_ = *view;
        return true;
    }
}

/// The bytes of a row that lies on two pages, both read at one time.
Result<Bytes> RowCursor::MovedBytes(int number) {
    const ReadScope scope(file_->cache);
    JET_TRY(scope.GetStatus());
    const PageNo page = page_.Number();
    JET_ASSIGN(row_.page_, OpenOwned(*file_, file_->cache.Read(page), page, row_.def_->page));
    if (number >= row_.page_.SlotCount()) return Status::NotFound("it has been deleted");
    Slot slot;
    JET_ASSIGN(slot, row_.page_.At(number));
    if (slot.isDeleted || slot.isTarget) return Status::NotFound("it has been deleted");
    if (!slot.isMoved) return slot.bytes;
    return FollowMove(*file_, row_.def_->page, slot, row_.page_);
}

Table::Table(const FileContext& file, PageNo page, std::string name)
    : file_(file), page_(page), name_(std::move(name)) {}

Result<std::unique_ptr<Table>> Table::Open(const FileContext& file, PageNo page, std::string name,
                                           bool isForUsers) {
    std::unique_ptr<Table> table(new Table(file, page, std::move(name)));
    table->isForUsers_ = isForUsers;
    JET_TRY(table->Refresh());
    return table;
}

std::unique_ptr<Table> Table::OpenKnown(const FileContext& file, const std::string& name,
                                        std::shared_ptr<const TableDef> def, bool isForUsers) {
    std::unique_ptr<Table> table(new Table(file, def->page, name));
    table->isForUsers_ = isForUsers;
    table->def_ = std::move(def);
    table->generation_ = file.cache.Generation();
    return table;
}

Status Table::Named(const Status& status) const {
    return status.In(TableText(name_));
}

Status Table::Refresh() {
    const ReadScope scope(file_.cache);
    JET_TRY(scope.GetStatus());
    if (def_ && generation_ == file_.cache.Generation()) return {};
    Result<TableDef> def = ReadTableDef(file_.cache, file_.format, file_.codePage, page_);
    if (!def.IsOk()) return Named(def.GetStatus());
    if (def_ && !SameStructure(*def_, *def)) {
        return Named(Status(StatusCode::Conflict,
                            "another program has changed its columns or indexes; open it again"));
    }
    def_ = std::make_shared<const TableDef>(std::move(*def));
    generation_ = file_.cache.Generation();
    return {};
}

Result<Row> Table::Fetch(RowId id) {
    const ReadScope scope(file_.cache);
    JET_TRY(scope.GetStatus());
    JET_TRY(Refresh());
    const auto gone = [&] {
        return Named(Status::NotFound(RowText(id) + ": there is no such row"));
    };
    Row row;
    row.id_ = id;
    row.def_ = def_;
    row.codePage_ = file_.codePage;
    Result<DataPage> page = OpenOwned(file_, file_.cache.Read(id.page), id.page, page_);
    if (!page.IsOk()) return MayBeGone(file_, id.page) ? gone() : Named(page.GetStatus());
    row.page_ = *page;
    if (id.row >= page->SlotCount()) return gone();
    Result<Slot> slot = page->At(id.row);
    if (!slot.IsOk()) return Named(slot.GetStatus());
    if (slot->isDeleted || slot->isTarget) return gone();
    Result<Bytes> bytes = slot->bytes;
    if (slot->isMoved) bytes = FollowMove(file_, page_, *slot, row.page_);
    if (!bytes.IsOk()) return Named(bytes.GetStatus().In(RowText(id)));
    Result<RowView> view = RowView::Parse(file_.format, *def_, *bytes);
    if (!view.IsOk()) return Named(view.GetStatus().In(RowText(id)));
    row.view_ = *view;
    return row;
}

Result<RowCursor> Table::Scan() {
    JET_TRY(Refresh());
    RowCursor cursor;
    cursor.file_ = &file_;
    cursor.tableName_ = name_;
    cursor.row_.def_ = def_;
    cursor.row_.codePage_ = file_.codePage;
    return cursor;
}

Result<const TableRules*> Table::Rules() {
    if (!rules_ || changes_ != file_.cache.Changes()) {
        changes_ = file_.cache.Changes();
        related_.clear();
        rules_ = nullptr;
        Result<TableRules> rules = ReadTableRules(file_, *def_);
        if (!rules.IsOk()) return rules.GetStatus();
        rules_ = std::make_shared<const TableRules>(std::move(*rules));
    }
    return rules_.get();
}

Result<Table*> Table::Related(PageNo page) {
    if (page == page_) return this;
    JET_TRY(Rules().GetStatusOrOk());
    std::unique_ptr<Table>& table = related_[page];
    if (!table) {
        JET_ASSIGN(table, Open(file_, page, PageText(page)));
        const TableRules* rules = nullptr;
        JET_ASSIGN(rules, table->Rules());
        if (!rules->name.empty()) table->name_ = rules->name;
    }
    return table.get();
}

bool Table::CanSeek(std::size_t realIndex) const {
    if (file_.format != Format::Jet4 || realIndex >= def_->realIndexes.size()) return false;
    const RealIndex& index = def_->realIndexes[realIndex];
    if (index.columns.empty()) return false;
    for (const IndexColumn& key : index.columns) {
        if (!CanEncodeKey(def_->columns[key.column])) return false;
    }
    return true;
}

Result<std::string> Table::MakeKey(std::size_t realIndex, std::span<const Value> values) const {
    if (realIndex >= def_->realIndexes.size()) {
        return Named(Status::BadArgument("it has no index " + std::to_string(realIndex)));
    }
    const RealIndex& index = def_->realIndexes[realIndex];
    std::string key;
    for (std::size_t i = 0; i < values.size() && i < index.columns.size(); ++i) {
        const Column& column = def_->columns[index.columns[i].column];
        if (Status status = AppendKey(column, index.columns[i].ascending, values[i], key);
            !status.IsOk()) {
            return Named(status);
        }
    }
    return key;
}

Result<IndexCursor> Table::Seek(std::size_t realIndex, const std::string& from) {
    const ReadScope scope(file_.cache);
    JET_TRY(scope.GetStatus());
    JET_TRY(Refresh());
    if (!CanSeek(realIndex)) {
        return Named(Status::Unsupported("its index " + std::to_string(realIndex) +
                                         " cannot be used for look-ups"));
    }
    Result<IndexCursor> cursor =
        IndexCursor::Seek(file_.cache, page_, def_->realIndexes[realIndex].root, from);
    if (!cursor.IsOk()) return Named(cursor.GetStatus());
    return cursor;
}

Status Table::SeekAgain(IndexCursor& cursor, const std::string& from) {
    const ReadScope scope(file_.cache);
    JET_TRY(scope.GetStatus());
    JET_TRY(Refresh());
    Status status = cursor.MoveTo(from);
    return status.IsOk() ? Status() : Named(status);
}

LongValueReader Table::OpenLongValue(const LongValue& value) const {
    return {file_.cache, file_.format, value, TableText(name_)};
}

MemoReader Table::OpenMemo(const LongValue& value) const {
    return {OpenLongValue(value), file_.codePage};
}

Result<std::u16string> Table::ReadMemo(const LongValue& value) const {
    MemoReader reader = OpenMemo(value);
    std::u16string text;
    for (;;) {
        Result<std::u16string_view> piece = reader.Next();
        if (!piece.IsOk()) return piece.GetStatus();
        if (piece->empty()) return text;
        text += *piece;
    }
}

Result<Binary> Table::ReadBinary(const LongValue& value) const {
    LongValueReader reader = OpenLongValue(value);
    Binary bytes;
    for (;;) {
        Result<Bytes> piece = reader.Next();
        if (!piece.IsOk()) return piece.GetStatus();
        if (piece->empty()) return bytes;
        bytes.insert(bytes.end(), piece->begin(), piece->end());
    }
}

}  // namespace jet
