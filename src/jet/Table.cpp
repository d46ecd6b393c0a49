#include "jet/Table.h"

#include "jet/index/KeyEncoder.h"
#include "jet/open/IndexCursorRep.h"
#include "jet/open/LongValueReaderRep.h"
#include "jet/open/OwnedPage.h"
#include "jet/open/RowCursorRep.h"
#include "jet/open/TableRep.h"

namespace jet {

std::string TableText(const std::string& name) {
    return "table \"" + name + "\"";
}

Table::Table(std::unique_ptr<Rep> rep) : rep_(std::move(rep)) {}
Table::~Table() = default;

const std::string& Table::Name() const {
    return rep_->name;
}

const TableDef& Table::Definition() const {
    return *rep_->def;
}

ReadScope Table::Hold(ReadScope::Length length) const {
    return ReadScope(rep_->file.cache, length);
}

Status Table::Refresh() {
    return rep_->Refresh();
}

Result<Row> Table::Fetch(RowId id) {
    Rep& rep = *rep_;
    const ReadScope scope(rep.file.cache);
    JET_TRY(scope.GetStatus());
    JET_TRY(rep.Refresh());
    const auto gone = [&] {
        return rep.Named(Status::NotFound(RowText(id) + ": there is no such row"));
    };
    const auto row = std::make_shared<Row::Rep>();
    row->id = id;
    row->def = rep.def;
    row->codePage = rep.file.codePage;
    Result<DataPage> page = OpenOwned(rep.file, rep.file.cache.Read(id.page), id.page, rep.page);
    if (!page.IsOk()) return MayBeGone(rep.file, id.page) ? gone() : rep.Named(page.GetStatus());
    row->page = *page;
    if (id.row >= page->SlotCount()) return gone();
    Result<Slot> slot = page->At(id.row);
    if (!slot.IsOk()) return rep.Named(slot.GetStatus());
    if (slot->isDeleted || slot->isTarget) return gone();
    Result<Bytes> bytes = slot->bytes;
    if (slot->isMoved) bytes = FollowMove(rep.file, rep.page, *slot, row->page);
    if (!bytes.IsOk()) return rep.Named(bytes.GetStatus().In(RowText(id)));
    Result<RowView> view = RowView::Parse(rep.file.format, *rep.def, *bytes);
    if (!view.IsOk()) return rep.Named(view.GetStatus().In(RowText(id)));
    row->view = *view;
    return Row(row);
}

Result<RowCursor> Table::Scan() {
    JET_TRY(rep_->Refresh());
    return RowCursor(std::make_unique<RowCursor::Rep>(rep_->file, rep_->name, rep_->def));
}

bool Table::CanSeek(std::size_t realIndex) const {
    const Rep& rep = *rep_;
    if (rep.file.format != Format::Jet4 || realIndex >= rep.def->realIndexes.size()) return false;
    const RealIndex& index = rep.def->realIndexes[realIndex];
    if (index.columns.empty()) return false;
    for (const IndexColumn& key : index.columns) {
        if (!CanEncodeKey(rep.def->columns[key.column])) return false;
    }
    return true;
}

Result<std::string> Table::MakeKey(std::size_t realIndex, std::span<const Value> values) const {
    const Rep& rep = *rep_;
    if (realIndex >= rep.def->realIndexes.size()) {
        return rep.Named(Status::BadArgument("it has no index " + std::to_string(realIndex)));
    }
    const RealIndex& index = rep.def->realIndexes[realIndex];
    std::string key;
    for (std::size_t i = 0; i < values.size() && i < index.columns.size(); ++i) {
        const Column& column = rep.def->columns[index.columns[i].column];
        if (Status status = AppendKey(column, index.columns[i].ascending, values[i], key);
            !status.IsOk()) {
            return rep.Named(status);
        }
    }
    return key;
}

Result<IndexCursor> Table::Seek(std::size_t realIndex, const std::string& from) {
    Rep& rep = *rep_;
    const ReadScope scope(rep.file.cache);
    JET_TRY(scope.GetStatus());
    JET_TRY(rep.Refresh());
    if (!CanSeek(realIndex)) {
        return rep.Named(Status::Unsupported("its index " + std::to_string(realIndex) +
                                             " cannot be used for look-ups"));
    }
    Result<EntryCursor> entries =
        EntryCursor::Seek(rep.file.cache, rep.page, rep.def->realIndexes[realIndex].root, from);
    if (!entries.IsOk()) return rep.Named(entries.GetStatus());
    return IndexCursor(std::make_unique<IndexCursor::Rep>(rep, std::move(*entries)));
}

Status Table::SeekAgain(IndexCursor& cursor, const std::string& from) {
    Rep& rep = *rep_;
    const ReadScope scope(rep.file.cache);
    JET_TRY(scope.GetStatus());
    JET_TRY(rep.Refresh());
    return rep.Named(Inside::Of(cursor).entries.MoveTo(from));
}

LongValueReader Table::OpenLongValue(const LongValue& value) const {
    return LongValueReader(
        std::make_unique<LongValueReader::Rep>(LongValueReader::Rep{rep_->Pieces(value)}));
}

MemoReader Table::OpenMemo(const LongValue& value) const {
    return MemoReader(std::make_unique<MemoReader::Rep>(
        MemoReader::Rep{{rep_->Pieces(value), rep_->file.codePage}}));
}

Result<std::u16string> Table::ReadMemo(const LongValue& value) const {
    MemoPieces pieces(rep_->Pieces(value), rep_->file.codePage);
    std::u16string text;
    for (;;) {
        Result<std::u16string_view> piece = pieces.Next();
        if (!piece.IsOk()) return piece.GetStatus();
        if (piece->empty()) return text;
        text += *piece;
    }
}

Result<Binary> Table::ReadBinary(const LongValue& value) const {
    LongValuePieces pieces = rep_->Pieces(value);
    Binary bytes;
    for (;;) {
        Result<Bytes> piece = pieces.Next();
        if (!piece.IsOk()) return piece.GetStatus();
        if (piece->empty()) return bytes;
        bytes.insert(bytes.end(), piece->begin(), piece->end());
    }
}

}  // namespace jet
