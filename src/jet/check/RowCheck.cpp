#include "jet/check/RowCheck.h"

#include <algorithm>

#include "jet/page/Bytes.h"
#include "jet/row/AutoNumber.h"
#include "jet/row/ValueCodec.h"

namespace jet::check {
namespace {

constexpr std::size_t kCount = 2;  // bytes of each number in a row
constexpr std::uint8_t kAutoNumberFlag = 0x04;

Status Bad(const std::string& what) {
    return Status::Corrupt(what);
}

}  // namespace

RowCheck::RowCheck(PageCache& cache, Reporter& report, const PageLedger& pages,
                   const CheckedTable& table)
    : cache_(cache),
      report_(report),
      table_(table),
      rows_(cache, report, pages, table),
      longValues_(cache, report, pages, table),
      mustHave_(ColumnsWithoutNull(table.def)),
      autoNumber_(table.def.columns.size()) {
    const TableDef& def = table.def;
    sums_.indexes.resize(def.realIndexes.size());
    for (const RealIndex& index : def.realIndexes) {
        canMakeKeys_.push_back(CanMakeKeys(def, index));
    }
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        const Column& column = def.columns[i];
        if (column.type == ColumnType::Long && (column.flags & kAutoNumberFlag) != 0) {
            autoNumber_ = i;
        }
    }
}

RowSums RowCheck::Run() {
    while (rows_.Next()) CheckRow();
    longValues_.CheckPages();
    if (!report_.IsStopped()) CheckCounters();
    sums_.unreadable = rows_.Rejected();
    return std::move(sums_);
}

void RowCheck::Error(const std::string& what) {
    report_.Error(Subject::Rows, table_.name + ", " + RowText(rows_.Id()) + what);
}

void RowCheck::CheckRow() {
    const Bytes row = rows_.Row();
    Status status = CheckRowLayout(table_.def, row);
    RowView view;
    if (status.IsOk()) {
        Result<RowView> parsed = RowView::Parse(Format::Jet4, table_.def, row);
        if (parsed.IsOk()) view = *parsed;
        if (!parsed.IsOk()) status = parsed.GetStatus();
    }
    if (!status.IsOk()) {
        Error(": " + status.Text());
        rows_.Reject();
        return;
    }
    bool isGood = true;
    for (std::size_t i = 0; i < table_.def.columns.size(); ++i) {
        if (const Status value = CheckValue(i, view); !value.IsOk()) {
            Error(", column \"" + table_.def.columns[i].name + "\": " + value.Text());
            isGood = false;
        }
    }
    if (isGood) {
        AddKeys(view);
    } else {
        rows_.Reject();
    }
}

std::vector<bool> ColumnsWithoutNull(const TableDef& def) {
    std::vector<bool> mustHave(def.columns.size());
    const auto primary = def.PrimaryKey();
    for (std::size_t i = 0; i < def.realIndexes.size(); ++i) {
        if (!def.realIndexes[i].IsRequired() && primary != i) continue;
        for (const IndexColumn& part : def.realIndexes[i].columns) mustHave[part.column] = true;
    }
    return mustHave;
}

Status CheckRowLayout(const TableDef& def, Bytes row) {
    if (row.size() < kCount) return Bad("its " + std::to_string(row.size()) + " bytes are no row");
    const std::size_t columns = LoadU16(row, 0);
    if (columns > def.highestColumnCount) {
        return Bad("has " + std::to_string(columns) + " columns, the table never had more than " +
                   std::to_string(def.highestColumnCount));
    }
    const std::size_t maskSize = (columns + 7) / 8;
    if (row.size() < kCount + maskSize) return Bad("its null mask does not fit");
    const std::size_t mask = row.size() - maskSize;
    std::size_t fixedLimit = mask;
    if (def.variableColumnCount > 0) {
        const std::size_t count = mask < 2 * kCount ? 0 : LoadU16(row, mask - 2);
        if (mask < kCount * (count + 3)) return Bad("its table of offsets does not fit");
        if (count > def.variableColumnCount) {
            return Bad("has " + std::to_string(count) + " variable columns, the table only " +
                       std::to_string(def.variableColumnCount));
        }
        const std::size_t tableBegin = mask - kCount * (count + 2);
        std::size_t last = kCount;
        for (std::size_t i = 0; i <= count; ++i) {
            const std::size_t offset = LoadU16(row, mask - 2 * kCount - kCount * i);
            if (offset < last || offset > tableBegin) {
                return Bad("variable column " + std::to_string(i) +
                           " begins at the impossible offset " + std::to_string(offset));
            }
            if (i == 0) fixedLimit = offset;
            last = offset;
        }
    }
    for (const Column& column : def.columns) {
        const bool takesRoom = column.IsFixed() && column.type != ColumnType::Boolean;
        if (!takesRoom || column.number >= columns) continue;
        if (kCount + column.fixedOffset + column.length > fixedLimit) {
            return Bad("its fixed area is too short for column \"" + column.name + "\"");
        }
    }
    return {};
}

Status RowCheck::CheckValue(std::size_t position, const RowView& view) {
    const Column& column = table_.def.columns[position];
    if (column.type == ColumnType::Boolean) return {};
    if (!view.HasBit(column)) {
        if (mustHave_[position]) Error(", column \"" + column.name + "\": an index forbids Null");
        return {};
    }
    Bytes bytes;
    JET_ASSIGN(bytes, view.ValueBytes(column));
    if (column.type == ColumnType::Text) {
        TextDecoder decoder(nullptr);
        text_.clear();
        decoder.Append(bytes, text_);
        return decoder.IsComplete() ? Status() : Bad("its text ends inside a character");
    }
    JET_TRY(DecodeValue(column, nullptr, bytes, value_));
    if (const auto* value = std::get_if<LongValue>(&value_)) {
        return longValues_.Check(position, *value);
    }
    if (position == autoNumber_) {
        const auto number = std::get<std::int32_t>(value_);
        if (!IsNearLastAutoNumber(number)) greatest_ = std::max(greatest_, number);
    }
    return {};
}

void RowCheck::AddKeys(const RowView& view) {
    for (std::size_t i = 0; i < sums_.indexes.size(); ++i) {
        if (!canMakeKeys_[i]) continue;
        const Status status =
            MakeIndexKey(cache_, table_.def, table_.def.realIndexes[i], view, key_);
        if (!status.IsOk()) {
            Error(": no key for an index: " + status.Text());
            rows_.Reject();
        } else if (key_.isInIndex) {
            sums_.indexes[i].Add(key_.bytes, rows_.Id());
        }
    }
}

void RowCheck::CheckCounters() {
    const TableDef& def = table_.def;
    if (rows_.Count() != def.rowCount) {
        report_.Warn(Subject::Counters, table_.name + ": states " + std::to_string(def.rowCount) +
                                            " rows and has " + std::to_string(rows_.Count()));
    }
    if (greatest_ > 0 && static_cast<std::uint32_t>(greatest_) > def.lastAutoNumber) {
        report_.Warn(Subject::Counters, table_.name + ": its last automatic number is " +
                                            std::to_string(def.lastAutoNumber) +
                                            ", but a row has " + std::to_string(greatest_));
    }
    const bool isCounted = autoNumber_ < def.columns.size();
    if (isCounted && IsNearLastAutoNumber(static_cast<std::int32_t>(def.lastAutoNumber))) {
        report_.Warn(Subject::Counters,
                     table_.name + ": its last automatic number is " +
                         std::to_string(static_cast<std::int32_t>(def.lastAutoNumber)) +
                         "; few are left, and a repair sets it back");
    }
}

}  // namespace jet::check
