#include "jet/write/RowChanger.h"

#include <algorithm>
#include <memory>
#include <random>

#include "jet/index/KeyEncoder.h"
#include "jet/open/RowRep.h"
#include "jet/page/UsageMap.h"
#include "jet/RowObserver.h"
#include "jet/write/DataPageEditor.h"
#include "jet/write/IndexWriter.h"
#include "jet/write/LongValueWriter.h"
#include "jet/write/UsageMapEditor.h"

namespace jet {
namespace {

// Counters on the first page of a table's definition.
constexpr std::size_t kRowCount = 0x10;
constexpr std::size_t kLastAutoNumber = 0x14;
constexpr std::size_t kUniqueCounts = 0x3F + 4;
constexpr std::size_t kUniqueCountSize = 12;
// The pointer of a moved row needs as many bytes in its own slot.
constexpr std::size_t kPointerSize = 4;

std::vector<std::byte> Padded(Bytes row) {
    std::vector<std::byte> bytes(row.begin(), row.end());
    if (bytes.size() < kPointerSize) bytes.resize(kPointerSize);
    return bytes;
}

/// A random one in the form that says so.
Guid RandomGuid() {
    static std::random_device random;
    Guid guid;
    for (std::byte& b : guid.bytes) b = static_cast<std::byte>(random());
    guid.bytes[6] = (guid.bytes[6] & std::byte{0x0F}) | std::byte{0x40};
    guid.bytes[8] = (guid.bytes[8] & std::byte{0x3F}) | std::byte{0x80};
    return guid;
}

bool IsAssigned(std::span<const Assignment> values, std::size_t column) {
    return std::any_of(values.begin(), values.end(),
                       [&](const Assignment& a) { return a.column == column; });
}

}  // namespace

template <typename Change>
Status RowChanger::Step(Change change) {
    if (!file_.cache.InTransaction()) {
        return rep_.Named(Status::BadArgument("a change needs a transaction"));
    }
    // The definition is replaced now or not at all: inside a transaction nobody else changes the
    // file, and what follows holds on to it.
    JET_TRY(table_.Refresh());
    JET_TRY(CheckWritable());
    file_.cache.BeginStep();
    Status status = change();
    if (!status.IsOk()) {
        file_.cache.UndoStep();
        status = rep_.Named(status);
    }
    if (file_.observer != nullptr) file_.observer->StepEnded(status.IsOk());
    file_.cache.BeginStep();
    return status;
}

Result<RowId> RowChanger::Insert(std::span<const Assignment> values) {
    RowId id;
    JET_TRY(Step([&]() -> Status {
        JET_ASSIGN(id, InsertNow(values));
        return {};
    }));
    return id;
}

Status RowChanger::Update(RowId row, std::span<const Assignment> values) {
    return Step([&] { return UpdateNow(row, values); });
}

Status RowChanger::Delete(RowId row) {
    return Step([&] { return DeleteNow(row); });
}

Status RowChanger::CheckWritable() const {
    const TableDef& def = table_.Definition();
    if (file_.format != Format::Jet4) {
        return rep_.Named(Status::Unsupported("tables of Jet 3 files are read only"));
    }
    if ((def.isSystem || !rep_.isForUsers) && for_ != For::TheSystem) {
        return rep_.Named(Status::Unsupported("it belongs to the system"));
    }
    for (std::size_t i = 0; i < def.realIndexes.size(); ++i) {
        if (table_.CanSeek(i)) continue;
        std::string name = std::to_string(i);
        for (const LogicalIndex& index : def.logicalIndexes) {
            if (index.real == i) name = "\"" + index.name + "\"";
        }
        return rep_.Named(Status::Unsupported("it is read only, since its index " + name +
                                              " has an order that is not known here"));
    }
    return {};
}

Result<std::vector<Value>> RowChanger::ValuesOf(const Row& row) const {
    const TableDef& def = table_.Definition();
    std::vector<Value> values(def.columns.size());
    for (const RealIndex& index : def.realIndexes) {
        for (const IndexColumn& key : index.columns) {
            Value& value = values[key.column];
            JET_TRY(row.Read(key.column, value));
            if (const auto* memo = std::get_if<LongValue>(&value)) {
                std::u16string text;
                JET_ASSIGN(text, table_.ReadMemo(*memo));
                value = std::move(text);
            }
        }
    }
    return values;
}

Result<std::vector<RowChanger::Key>> RowChanger::KeysOf(std::span<const Value> values) const {
    const TableDef& def = table_.Definition();
    std::vector<Key> keys(def.realIndexes.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const RealIndex& index = def.realIndexes[i];
        std::size_t nulls = 0;
        for (const IndexColumn& part : index.columns) {
            const Value& value = values[part.column];
            const Column& column = def.columns[part.column];
            JET_TRY(AppendKey(column, part.ascending, value, keys[i].bytes));
            if (value.index() != 0) continue;
            ++nulls;
            if (index.IsRequired()) {
                return Status(StatusCode::Required,
                              "column \"" + column.name + "\" must have a value");
            }
        }
        keys[i].allNull = nulls == index.columns.size();
        keys[i].hasEntry = !keys[i].allNull || !index.IgnoresNulls();
    }
    return keys;
}

Result<bool> RowChanger::HasKey(std::size_t index, const Key& key) {
    Result<IndexCursor> cursor = table_.Seek(index, key.bytes);
    if (!cursor.IsOk()) return cursor.GetStatus();
    bool found = false;
    JET_ASSIGN(found, cursor->Next());
    return found && cursor->Key() == key.bytes;
}

Status RowChanger::CheckKey(std::size_t index, const Key& key, const Key* before) {
    const RealIndex& def = table_.Definition().realIndexes[index];
    const bool isSame = before != nullptr && before->bytes == key.bytes;
    if (!def.IsUnique() || key.allNull || isSame) return {};
    bool exists = false;
    JET_ASSIGN(exists, HasKey(index, key));
    if (!exists) return {};
    std::string columns;
    for (const IndexColumn& part : def.columns) {
        columns += (columns.empty() ? "\"" : ", \"") +
                   table_.Definition().columns[part.column].name + "\"";
    }
    return {StatusCode::Duplicate, "another row has the same value in " + columns};
}

Status RowChanger::InsertKeys(const std::vector<Key>& keys, RowId row,
                              const std::vector<Key>* before) {
    const TableDef& def = table_.Definition();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const Key* old = before != nullptr ? &(*before)[i] : nullptr;
        if (!keys[i].hasEntry || (old != nullptr && old->bytes == keys[i].bytes)) continue;
        const RealIndex& index = def.realIndexes[i];
        const bool isUnique = index.IsUnique() && !keys[i].allNull;
        const auto isNew =
            IndexWriter(file_.cache, def.page, index).Insert(keys[i].bytes, row, isUnique);
        if (!isNew.IsOk()) {
            // The text that names the columns, where another row has the key.
            const bool isDuplicate = isNew.GetStatus().Code() == StatusCode::Duplicate;
            if (isDuplicate) JET_TRY(CheckKey(i, keys[i], nullptr));
            return isNew.GetStatus();
        }
        if (*isNew) JET_TRY(CountKeys(i, 1));
    }
    return {};
}

Status RowChanger::RemoveKeys(const std::vector<Key>& keys, RowId row,
                              const std::vector<Key>* after) {
    const TableDef& def = table_.Definition();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const Key* next = after != nullptr ? &(*after)[i] : nullptr;
        if (!keys[i].hasEntry || (next != nullptr && next->bytes == keys[i].bytes)) continue;
        bool isShared = false;
        JET_ASSIGN(
            isShared,
            IndexWriter(file_.cache, def.page, def.realIndexes[i]).Remove(keys[i].bytes, row));
        if (!isShared) JET_TRY(CountKeys(i, -1));
    }
    return {};
}

/// The number of different keys is a statistic: what other programs have put there is not set
/// right, and never falls below nothing.
Status RowChanger::CountKeys(std::size_t index, int difference) {
    MutableBytes page;
    JET_ASSIGN(page, file_.cache.Edit(table_.Definition().page));
    const std::size_t at = kUniqueCounts + kUniqueCountSize * index;
    const std::uint32_t count = LoadU32(page, at);
    if (difference > 0 || count > 0) {
        StoreU32(page, at, count + static_cast<std::uint32_t>(difference));
    }
    return {};
}

Status RowChanger::Assign(RowImage& image, std::vector<Value>& values,
                          const Assignment& assignment) {
    const TableDef& def = table_.Definition();
    if (assignment.column >= def.columns.size()) {
        return Status::BadArgument("there is no column number " +
                                   std::to_string(assignment.column));
    }
    const Column& column = def.columns[assignment.column];
    const Value& value = assignment.value;
    std::optional<std::vector<std::byte>> bytes;
    if (column.IsLongValue() && image.Bytes(assignment.column)) {
        JET_TRY(LongValueWriter(file_.cache, column).Free(*image.Bytes(assignment.column)));
    }
    if (column.type == ColumnType::Boolean) {
        const auto* set = std::get_if<bool>(&value);
        if (set == nullptr) {
            return Status::BadArgument("column \"" + column.name + "\": a value of another type");
        }
        if (*set) bytes.emplace();
    } else if (value.index() != 0 && column.IsLongValue()) {
        const auto* text = std::get_if<std::u16string>(&value);
        const auto* binary = std::get_if<Binary>(&value);
        const bool fits = column.type == ColumnType::Memo ? text != nullptr : binary != nullptr;
        if (!fits) {
            return Status::BadArgument("column \"" + column.name + "\": a value of another type");
        }
        std::vector<std::byte> encoded;
        if (text != nullptr) {
            JET_ASSIGN(encoded, EncodeText(column, *text));
        }
        JET_ASSIGN(bytes,
                   LongValueWriter(file_.cache, column).Store(text != nullptr ? encoded : *binary));
    } else if (value.index() != 0) {
        JET_ASSIGN(bytes, EncodeValue(column, value));
    }
    image.Set(assignment.column, std::move(bytes));
    values[assignment.column] = value;
    return {};
}

/// Gives the AutoNumber column its number, and remembers the greatest one handed out.
Status RowChanger::NumberRow(RowImage& image, std::vector<Value>& values,
                             std::span<const Assignment> assigned) {
    const TableDef& def = table_.Definition();
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        if (!def.columns[i].IsAutoNumber()) continue;
        if (def.columns[i].type == ColumnType::Guid && !IsAssigned(assigned, i)) {
            JET_TRY(Assign(image, values, {i, Value(RandomGuid())}));
        }
        if (def.columns[i].type != ColumnType::Long) continue;
        MutableBytes page;
        JET_ASSIGN(page, file_.cache.Edit(def.page));
        const auto last = Load<std::int32_t>(page, kLastAutoNumber);
        if (!IsAssigned(assigned, i)) {
            if (last == INT32_MAX) {
                return {StatusCode::UsedUp, "column \"" + def.columns[i].name +
                                                "\": the last number, " + std::to_string(last) +
                                                ", has been given; kvs repair sets the count back"};
            }
            JET_TRY(Assign(image, values, {i, Value(last + 1)}));
        }
        const auto* number = std::get_if<std::int32_t>(&values[i]);
        if (number != nullptr && *number > last) Store(page, kLastAutoNumber, *number);
    }
    return {};
}

Result<RowId> RowChanger::InsertNow(std::span<const Assignment> assignments) {
    const TableDef& def = table_.Definition();
    const std::size_t change = Changing(nullptr);
    RowImage image(def);
    std::vector<Value> values(def.columns.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (def.columns[i].type == ColumnType::Boolean) values[i] = false;
    }
    for (const Assignment& assignment : assignments) JET_TRY(Assign(image, values, assignment));
    JET_TRY(NumberRow(image, values, assignments));
    const auto all = std::make_unique<bool[]>(values.size());
    std::fill_n(all.get(), values.size(), true);
    JET_TRY(CheckRules(values, {all.get(), values.size()}));
    std::vector<Key> keys;
    JET_ASSIGN(keys, KeysOf(values));
    std::vector<std::byte> bytes;
    JET_ASSIGN(bytes, image.Assemble());
    RowId row;
    JET_ASSIGN(row, PlaceRow(bytes, 0));
    JET_TRY(InsertKeys(keys, row, nullptr));
    // When the row is there: it may belong to itself.
    JET_TRY(CheckParents(values, nullptr, keys));
    JET_TRY(Count(1));
    JET_TRY(Changed(change, row));
    return row;
}

Status RowChanger::UpdateNow(RowId id, std::span<const Assignment> assignments) {
    const TableDef& def = table_.Definition();
    Place place;
    JET_ASSIGN(place, Find(id));
    Row row;
    JET_ASSIGN(row, table_.Fetch(id));
    const std::size_t change = Changing(&row);
    Result<RowImage> image = RowImage::Of(def, Inside::Of(row).view);
    if (!image.IsOk()) return image.GetStatus().In(RowText(id));
    std::vector<Value> values;
    JET_ASSIGN(values, ValuesOf(row));
    std::vector<Key> before;
    JET_ASSIGN(before, KeysOf(values));
    const std::vector<Value> oldValues = values;
    const auto assigned = std::make_unique<bool[]>(values.size());
    for (const Assignment& assignment : assignments) {
        JET_TRY(Assign(*image, values, assignment));
        assigned[assignment.column] = true;
    }
    JET_TRY(CheckRules(values, {assigned.get(), values.size()}));
    std::vector<Key> after;
    JET_ASSIGN(after, KeysOf(values));
    std::vector<std::byte> bytes;
    JET_ASSIGN(bytes, image->Assemble());
    JET_TRY(RemoveKeys(before, id, &after));
    JET_TRY(ReplaceRow(place, bytes));
    JET_TRY(InsertKeys(after, id, &before));
    JET_TRY(Changed(change, id));
    JET_TRY(FollowChildren(oldValues, before, values, &after));
    return CheckParents(values, &before, after);
}

Status RowChanger::DeleteNow(RowId id) {
    const TableDef& def = table_.Definition();
    Place place;
    JET_ASSIGN(place, Find(id));
    Row row;
    JET_ASSIGN(row, table_.Fetch(id));
    const std::size_t change = Changing(&row);
    std::vector<Value> values;
    JET_ASSIGN(values, ValuesOf(row));
    std::vector<Key> keys;
    JET_ASSIGN(keys, KeysOf(values));
    const RowView& view = Inside::Of(row).view;
    for (const Column& column : def.columns) {
        if (!column.IsLongValue() || !view.HasBit(column)) continue;
        Bytes stored;
        JET_ASSIGN(stored, view.ValueBytes(column));
        JET_TRY(LongValueWriter(file_.cache, column).Free(stored));
    }
    JET_TRY(RemoveKeys(keys, id, nullptr));
    if (place.moved) JET_TRY(DeleteSlot(*place.moved));
    JET_TRY(DeleteSlot(place.own));
    JET_TRY(Count(-1));
    if (file_.observer != nullptr) file_.observer->Changed(change, table_, nullptr);
    return FollowChildren(values, keys, {}, nullptr);
}

std::size_t RowChanger::Changing(const Row* before) {
    return file_.observer != nullptr ? file_.observer->Changing(table_, before) : 0;
}

Status RowChanger::Changed(std::size_t change, RowId row) {
    if (file_.observer == nullptr) return {};
    Row after;
    JET_ASSIGN(after, table_.Fetch(row));
    file_.observer->Changed(change, table_, &after);
    return {};
}

Status RowChanger::Count(int change) {
    MutableBytes page;
    JET_ASSIGN(page, file_.cache.Edit(table_.Definition().page));
    const auto count = LoadU32(page, kRowCount);
    // A count that was too small already stays at nothing.
    if (change > 0 || count > 0) {
        StoreU32(page, kRowCount, count + static_cast<std::uint32_t>(change));
    }
    return {};
}

Result<RowId> RowChanger::PlaceRow(Bytes row, std::uint16_t flags) {
    const TableDef& def = table_.Definition();
    const std::vector<std::byte> bytes = Padded(row);
    UsageMap candidates;
    JET_ASSIGN(candidates, UsageMap::Open(file_.cache, file_.format, def.freeMap));
    for (PageNo from{0};;) {
        std::optional<PageNo> number;
        JET_ASSIGN(number, candidates.Next(from));
        if (!number) break;
        from = PageNo{Raw(*number) + 1};
        PageRef ref;
        JET_ASSIGN(ref, file_.cache.Read(*number));
        const bool isOwn = LoadU8(ref.Bytes(), 0) == 1 && LoadU32(ref.Bytes(), 4) == Raw(def.page);
        ref = PageRef();
        if (isOwn) {
            MutableBytes page;
            JET_ASSIGN(page, file_.cache.Edit(*number));
            Result<DataPageEditor> editor = DataPageEditor::Open(page, *number);
            if (!editor.IsOk()) return editor.GetStatus();
            if (editor->Fits(bytes.size())) {
                return RowId{*number, static_cast<std::uint8_t>(editor->Append(bytes, flags))};
            }
        }
        // The map is a hint; what did not fit now will hardly fit later.
        JET_TRY(UsageMapEditor(file_.cache, def.freeMap).Remove(*number));
    }
    PageNo number{};
    JET_ASSIGN(number, PageAllocator(file_.cache).Allocate());
    MutableBytes page;
    JET_ASSIGN(page, file_.cache.Edit(number));
    DataPageEditor::Format(page, Raw(def.page));
    Result<DataPageEditor> editor = DataPageEditor::Open(page, number);
    const std::size_t slot = editor->Append(bytes, flags);
    JET_TRY(UsageMapEditor(file_.cache, def.ownedMap).Add(number));
    if (def.freeMap != 0) JET_TRY(UsageMapEditor(file_.cache, def.freeMap).Add(number));
    return RowId{number, static_cast<std::uint8_t>(slot)};
}

Result<RowChanger::Place> RowChanger::Find(RowId row) {
    PageRef ref;
    JET_ASSIGN(ref, file_.cache.Read(row.page));
    Result<DataPage> page = DataPage::Open(std::move(ref), file_.format);
    const auto gone = [&] { return Status::NotFound(RowText(row) + ": there is no such row"); };
    if (!page.IsOk() || page->Owner() != Raw(table_.Definition().page) ||
        row.row >= page->SlotCount()) {
        return gone();
    }
    Slot slot;
    JET_ASSIGN(slot, page->At(row.row));
    if (slot.isDeleted || slot.isTarget) return gone();
    Place place{row, std::nullopt};
    if (slot.isMoved) {
        if (slot.bytes.size() < kPointerSize) {
            return Status::Corrupt(RowText(row) + ": the pointer to the moved row is cut short");
        }
        place.moved = RowId::FromPointer(LoadU32(slot.bytes, 0));
    }
    return place;
}

Status RowChanger::ReplaceRow(const Place& place, Bytes row) {
    const std::vector<std::byte> bytes = Padded(row);
    const RowId at = place.Bytes();
    MutableBytes page;
    JET_ASSIGN(page, file_.cache.Edit(at.page));
    Result<DataPageEditor> editor = DataPageEditor::Open(page, at.page);
    if (!editor.IsOk()) return editor.GetStatus();
    const std::size_t size = editor->Row(at.row).size();
    if (bytes.size() <= size + editor->Free()) {
        editor->Replace(at.row, bytes, editor->Flags(at.row));
        if (bytes.size() < size && table_.Definition().freeMap != 0) {
            return UsageMapEditor(file_.cache, table_.Definition().freeMap).Add(at.page);
        }
        return {};
    }
    RowId target;
    JET_ASSIGN(target, PlaceRow(bytes, DataPageEditor::kTarget));
    if (place.moved) JET_TRY(DeleteSlot(*place.moved));
    // The index entries go on naming the row's own slot, which now only points.
    JET_ASSIGN(page, file_.cache.Edit(place.own.page));
    editor = DataPageEditor::Open(page, place.own.page);
    if (!editor.IsOk()) return editor.GetStatus();
    std::vector<std::byte> pointer(kPointerSize);
    StoreU32(pointer, 0, target.Pointer());
    editor->Replace(place.own.row, pointer, DataPageEditor::kMoved);
    if (table_.Definition().freeMap == 0) return {};
    return UsageMapEditor(file_.cache, table_.Definition().freeMap).Add(place.own.page);
}

Status RowChanger::DeleteSlot(RowId slot) {
    const TableDef& def = table_.Definition();
    MutableBytes page;
    JET_ASSIGN(page, file_.cache.Edit(slot.page));
    Result<DataPageEditor> editor = DataPageEditor::Open(page, slot.page);
    if (!editor.IsOk()) return editor.GetStatus();
    if (LoadU32(page, 4) != Raw(def.page) || slot.row >= editor->SlotCount()) {
        return Status::Corrupt(RowText(slot) + " is not the table's");
    }
    editor->Delete(slot.row);
    if (!editor->HasOnlyDeletedSlots()) {
        if (def.freeMap == 0) return {};
        return UsageMapEditor(file_.cache, def.freeMap).Add(slot.page);
    }
    JET_TRY(UsageMapEditor(file_.cache, def.ownedMap).Remove(slot.page));
    if (def.freeMap != 0) JET_TRY(UsageMapEditor(file_.cache, def.freeMap).Remove(slot.page));
    return PageAllocator(file_.cache).Free(slot.page);
}

}  // namespace jet
