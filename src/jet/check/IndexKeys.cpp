#include "jet/check/IndexKeys.h"

#include <algorithm>
#include <functional>

#include "jet/index/KeyEncoder.h"
#include "jet/row/LongValuePieces.h"
#include "jet/row/ValueCodec.h"

namespace jet::check {
namespace {

constexpr std::size_t kMostKeyUnits = 255;  // of a text

/// As much of a memo's text as its key depends on.
Status ReadKeyText(PageCache& cache, const LongValue& value, std::u16string& text) {
    MemoPieces pieces(LongValuePieces(cache, Format::Jet4, value, "a memo"), nullptr);
    while (text.size() < kMostKeyUnits) {
        Result<std::u16string_view> piece = pieces.Next();
        if (!piece.IsOk()) return piece.GetStatus();
        if (piece->empty()) break;
        text += *piece;
    }
    return {};
}

}  // namespace

std::uint64_t IndexSum::Hash(std::string_view key, RowId row) {
    // The constants are those of a usual 64-bit finaliser; entries that differ in a single bit
    // must not cancel out in the sum.
    std::uint64_t hash = std::hash<std::string_view>()(key) ^ row.Pointer();
    hash = (hash ^ hash >> 33) * 0xFF51AFD7ED558CCDULL;
    hash = (hash ^ hash >> 33) * 0xC4CEB9FE1A85EC53ULL;
    return hash ^ hash >> 33;
}

bool CanMakeKeys(const TableDef& def, const RealIndex& index) {
    return std::all_of(index.columns.begin(), index.columns.end(), [&](const IndexColumn& column) {
        return CanEncodeKey(def.columns[column.column]);
    });
}

bool IsKeyOfNulls(const RealIndex& index, std::string_view key) {
    if (key.size() != index.columns.size()) return false;
    for (std::size_t i = 0; i < key.size(); ++i) {
        if (key[i] != (index.columns[i].ascending ? '\0' : '\xFF')) return false;
    }
    return true;
}

Status MakeIndexKey(PageCache& cache, const TableDef& def, const RealIndex& index,
                    const RowView& row, IndexKey& key) {
    key.bytes.clear();
    bool hasValue = false;
    Value value;
    for (const IndexColumn& part : index.columns) {
        const Column& column = def.columns[part.column];
        value = Null{};
        if (column.type == ColumnType::Boolean) {
            value = row.HasBit(column);
        } else if (row.HasBit(column)) {
            Bytes bytes;
            JET_ASSIGN(bytes, row.ValueBytes(column));
            JET_TRY(DecodeValue(column, nullptr, bytes, value));
        }
        if (const auto* memo = std::get_if<LongValue>(&value)) {
            std::u16string text;
            JET_TRY(ReadKeyText(cache, *memo, text));
            value = std::move(text);
        }
        hasValue = hasValue || !std::holds_alternative<Null>(value);
        JET_TRY(AppendKey(column, part.ascending, value, key.bytes));
    }
    key.isInIndex = hasValue || !index.IgnoresNulls();
    return {};
}

}  // namespace jet::check
