#include "jet/repair/TableRebuild.h"

#include <algorithm>

#include "jet/check/IndexKeys.h"
#include "jet/check/RowCheck.h"
#include "jet/compact/IndexBuilder.h"
#include "jet/index/EntryCursor.h"
#include "jet/open/RowRep.h"
#include "jet/row/AutoNumber.h"
#include "jet/row/TextDecoder.h"

namespace jet::repair {
namespace {

using compact::RowPacker;

// What a row holds of a long value: length and flags, pointer, stamp.
constexpr std::size_t kHead = 12;
constexpr std::uint32_t kInlineFlag = 0x80000000;
constexpr std::uint32_t kSingleRowFlag = 0x40000000;
constexpr std::size_t kMostInRow = 4076;    // bytes of a value in a single row
constexpr std::size_t kMostInPiece = 4072;  // bytes of a piece of a chain, behind its pointer

Status HalfACharacter() {
    return Status::Corrupt("its text ends inside a character");
}

void MakeNull(MutableBytes row, const Column& column) {
    const std::size_t mask = row.size() - (LoadU16(row, 0) + 7U) / 8;
    row[mask + column.number / 8] &= ~static_cast<std::byte>(1U << column.number % 8);
}

}  // namespace

Status TableRebuild::Place() {
    const TableDef& def = table_->Definition();
    Result<compact::DefinitionCopy> definition = compact::DefinitionCopy::Load(cache_, def.page);
    if (!definition.IsOk()) return definition.GetStatus();
    definition_ = std::move(*definition);
    pages_.push_back(def.page);
    while (pages_.size() < definition_->PageCount()) {
        JET_ASSIGN(pages_.emplace_back(), draft_.Take());
    }
    JET_ASSIGN(rowMaps_.owned, maps_.Reserve());
    JET_ASSIGN(rowMaps_.free, maps_.Reserve());
    definition_->SetOwnedMap(rowMaps_.owned);
    definition_->SetFreeMap(rowMaps_.free);
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        if (!def.columns[i].IsLongValue()) continue;
        MapPair& pair = longValueMaps_[i];
        JET_ASSIGN(pair.owned, maps_.Reserve());
        JET_ASSIGN(pair.free, maps_.Reserve());
        definition_->SetLongValueMaps(def.columns[i].number, pair.owned, pair.free);
        longValues_.emplace(i, RowPacker(draft_, DataPage::kLongValueOwner));
    }
    for (const RealIndex& real : def.realIndexes) {
        Index& index = indexes_.emplace_back();
        JET_ASSIGN(index.map, maps_.Reserve());
        index.canMakeKeys = check::CanMakeKeys(def, real);
    }
    keys_.resize(indexes_.size());
    hasEntry_.resize(indexes_.size());
    mustHave_ = check::ColumnsWithoutNull(def);
    for (const std::size_t index : dropped_) definition_->MakeOrdinary(index);
    return {};
}

Status TableRebuild::Copy() {
    JET_TRY(CopyRows());
    const auto named = [&](const Status& status) { return status.In(TableText(table_->Name())); };
    JET_TRY(named(maps_.Fill(rowMaps_.owned, rows_->Pages())));
    JET_TRY(named(maps_.Fill(rowMaps_.free, rows_->PagesWithRoom())));
    for (auto& [column, values] : longValues_) {
        JET_TRY(named(values.Finish()));
        JET_TRY(named(maps_.Fill(longValueMaps_[column].owned, values.Pages())));
        JET_TRY(named(maps_.Fill(longValueMaps_[column].free, values.PagesWithRoom())));
    }
    for (std::size_t i = 0; i < indexes_.size(); ++i) JET_TRY(named(WriteIndex(i)));
    SetCounters();
    return definition_->Save(draft_, pages_);
}

void TableRebuild::SetCounters() {
    const TableDef& def = table_->Definition();
    definition_->SetRowCount(rowCount_);
    const auto last = static_cast<std::int32_t>(def.lastAutoNumber);
    if (last < greatest_ || IsNearLastAutoNumber(last)) {
        definition_->SetLastAutoNumber(static_cast<std::uint32_t>(greatest_));
    }
}

Status TableRebuild::CopyRows() {
    rows_ = std::make_unique<RowPacker>(draft_, Raw(table_->Definition().page));
    Result<RowCursor> cursor = table_->Scan();
    if (!cursor.IsOk()) return cursor.GetStatus();
    for (;;) {
        const Result<bool> found = cursor->Next();
        if (!found.IsOk()) {
            lost_(found.GetStatus().Text());
            continue;
        }
        if (!*found) return rows_->Finish();
        const Row& row = cursor->Current();
        if (isKept_ && !isKept_(row)) continue;
        JET_TRY(CopyRow(row).In(TableText(table_->Name()) + ", " + RowText(row.Id())));
    }
}

/// Fails only when the new file cannot be written.
Status TableRebuild::CopyRow(const Row& row) {
    const TableDef& def = table_->Definition();
    const std::string where = RowText(row.Id());
    const Bytes stored = row.Stored();
    if (const Status layout = check::CheckRowLayout(def, stored); !layout.IsOk()) {
        Lose(where + ": " + layout.Text());
        return {};
    }
    std::vector<std::byte> bytes(stored.begin(), stored.end());
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        const Status value = SaveValue(i, row, bytes);
        if (!value.IsOk()) {
            Lose(where + ", column \"" + def.columns[i].name + "\": " + value.Text());
            MakeNull(bytes, def.columns[i]);
        }
    }
    bool fits = false;
    JET_ASSIGN(fits, MakeKeys(row, bytes));
    if (!fits) return {};
    RowId copy;
    JET_ASSIGN(copy, rows_->Append(bytes));
    ++rowCount_;
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        if (!indexes_[i].canMakeKeys) places_[row.Id().Pointer()] = copy.Pointer();
        if (hasEntry_[i]) indexes_[i].entries.emplace_back(std::move(keys_[i]), copy);
    }
    return {};
}

Status TableRebuild::SaveValue(std::size_t position, const Row& row, MutableBytes bytes) {
    const Column& column = table_->Definition().columns[position];
    Bytes stored;
    JET_ASSIGN(stored, StoredValue(row, position));
    Value value;
    JET_TRY(row.Read(position, value));
    if (std::holds_alternative<Null>(value) || column.type == ColumnType::Boolean) return {};
    if (column.type == ColumnType::Text) {
        TextDecoder decoder(nullptr);
        std::u16string text;
        decoder.Append(stored, text);
        return decoder.IsComplete() ? Status() : HalfACharacter();
    }
    if (const auto* longValue = std::get_if<LongValue>(&value)) {
        const auto offset = static_cast<std::size_t>(stored.data() - row.Stored().data());
        return SaveLongValue(position, *longValue, bytes.subspan(offset, stored.size()));
    }
    const auto* number = std::get_if<std::int32_t>(&value);
    if (number != nullptr && column.IsAutoNumber() && !IsNearLastAutoNumber(*number)) {
        greatest_ = std::max(greatest_, *number);
    }
    return {};
}

/// Reads the whole value before the first byte of it is stored.
Status TableRebuild::SaveLongValue(std::size_t column, const LongValue& value, MutableBytes head) {
    Binary data;
    JET_ASSIGN(data, table_->ReadBinary(value));
    if (value.isText) {
        TextDecoder decoder(nullptr);
        std::u16string text;
        decoder.Append(data, text);
        if (!decoder.IsComplete()) return HalfACharacter();
    }
    if (value.kind == LongValue::Kind::Inline) return {};
    if (head.size() < kHead) return Status::Corrupt("its long value is cut short");
    const auto length = static_cast<std::uint32_t>(data.size());
    RowPacker& pages = longValues_.at(column);
    std::uint32_t kind = 0;
    std::uint32_t stamp = 0;
    RowId place;
    if (data.empty()) {
        kind = kInlineFlag;
    } else if (data.size() <= kMostInRow) {
        kind = kSingleRowFlag;
        JET_ASSIGN(place, pages.Append(data));
    } else {
        stamp = value.stamp;
        JET_ASSIGN(place, StorePieces(pages, data, stamp));
    }
    StoreU32(head, 0, length | kind);
    StoreU32(head, 4, place.Pointer());
    StoreU32(head, 8, stamp);
    return {};
}

Result<RowId> TableRebuild::StorePieces(RowPacker& pages, Bytes data, std::uint32_t stamp) {
    PageNo page{};
    JET_ASSIGN(page, draft_.Take());
    const RowId first{page, 0};
    for (std::size_t begin = 0; begin < data.size(); begin += kMostInPiece) {
        const Bytes part = data.subspan(begin, std::min(kMostInPiece, data.size() - begin));
        PageNo next{};
        if (begin + part.size() < data.size()) {
            JET_ASSIGN(next, draft_.Take());
        }
        std::vector<std::byte> piece(4);
        StoreU32(piece, 0, Raw(next) == 0 ? 0 : RowId{next, 0}.Pointer());
        piece.insert(piece.end(), part.begin(), part.end());
        JET_TRY(pages.AppendAlone(page, begin == 0 ? stamp : 0, piece));
        page = next;
    }
    return first;
}

Result<bool> TableRebuild::MakeKeys(const Row& row, Bytes bytes) {
    const TableDef& def = table_->Definition();
    const std::string where = RowText(row.Id());
    RowView view;
    JET_ASSIGN(view, RowView::Parse(Format::Jet4, def, bytes));
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        if (!mustHave_[i] || def.columns[i].type == ColumnType::Boolean) continue;
        if (view.HasBit(def.columns[i])) continue;
        Lose(where + ": it has no value in \"" + def.columns[i].name + "\", which must have one");
        return false;
    }
    // The keys of memos are read from the old file: the new values cannot be read yet.
    RowView old;
    JET_ASSIGN(old, RowView::Parse(Format::Jet4, def, row.Stored()));
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        hasEntry_[i] = false;
        if (!indexes_[i].canMakeKeys) continue;
        const RealIndex& real = def.realIndexes[i];
        const bool hasMemo =
            std::any_of(real.columns.begin(), real.columns.end(), [&](const IndexColumn& part) {
                const Column& column = def.columns[part.column];
                return column.IsLongValue() && view.HasBit(column);
            });
        check::IndexKey key;
        const Status made = check::MakeIndexKey(cache_, def, real, hasMemo ? old : view, key);
        if (!made.IsOk()) {
            Lose(where + ": no key for an index: " + made.Text());
            return false;
        }
        hasEntry_[i] = key.isInIndex;
        keys_[i] = std::move(key.bytes);
    }
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        const RealIndex& real = def.realIndexes[i];
        if (!hasEntry_[i] || !real.IsUnique() || check::IsKeyOfNulls(real, keys_[i])) continue;
        if (!indexes_[i].keys.contains(keys_[i])) continue;
        std::string columns;
        for (const IndexColumn& part : real.columns) {
            columns += (columns.empty() ? "\"" : ", \"") + def.columns[part.column].name + "\"";
        }
        Lose(where + ": another row has the same value in " + columns);
        return false;
    }
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        if (hasEntry_[i] && def.realIndexes[i].IsUnique()) indexes_[i].keys.insert(keys_[i]);
    }
    return true;
}

/// The entries of an index whose keys cannot be computed, as far as its tree can be read.
void TableRebuild::HarvestEntries(std::size_t index) {
    const TableDef& def = table_->Definition();
    std::size_t found = 0;
    Result<EntryCursor> cursor =
        EntryCursor::Seek(cache_, def.page, def.realIndexes[index].root, std::string());
    Status status = cursor.GetStatusOrOk();
    while (status.IsOk() && found <= places_.size()) {
        const Result<bool> next = cursor->Next();
        status = next.GetStatusOrOk();
        if (!status.IsOk() || !*next) break;
        const auto place = places_.find(cursor->Row().Pointer());
        if (place == places_.end()) continue;
        ++found;
        indexes_[index].entries.emplace_back(cursor->Key(), RowId::FromPointer(place->second));
    }
    if (status.IsOk()) return;
    Lose("index " + std::to_string(index) + ", whose order is not known here: " + status.Text());
}

Status TableRebuild::WriteIndex(std::size_t number) {
    Index& index = indexes_[number];
    if (!index.canMakeKeys) HarvestEntries(number);
    std::vector<Entry> entries = std::move(index.entries);
    index.keys = {};
    std::sort(entries.begin(), entries.end());
    entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
    compact::IndexBuilder builder(draft_, table_->Definition().page);
    for (const auto& [key, row] : entries) JET_TRY(builder.Add(key, row));
    PageNo root{};
    JET_ASSIGN(root, builder.Finish());
    definition_->SetIndex(number, index.map, root, builder.DistinctKeys());
    return maps_.Fill(index.map, builder.Pages());
}

}  // namespace jet::repair
