#include "jet/open/Inside.h"
#include "jet/open/RowRep.h"
#include "jet/row/ValueCodec.h"

namespace jet {

RowId Row::Id() const {
    return rep_->id;
}

Result<Value> Row::Get(std::size_t column) const {
    Value value;
    JET_TRY(Read(column, value));
    return value;
}

Status Row::Read(std::size_t column, Value& value) const {
    const Rep& rep = *rep_;
    if (column >= rep.def->columns.size()) {
        return Status::BadArgument("there is no column number " + std::to_string(column));
    }
    const Column& def = rep.def->columns[column];
    const bool bit = rep.view.HasBit(def);
    if (def.type == ColumnType::Boolean) {
        value = bit;
        return {};
    }
    if (!bit) {
        value = Null{};
        return {};
    }
    Bytes bytes;
    Status status = rep.view.Locate(def, bytes) ? DecodeValue(def, rep.codePage, bytes, value)
                                                : rep.view.ValueBytes(def).GetStatus();
    if (status.IsOk()) return {};
    return status.In(RowText(rep.id) + ", column \"" + def.name + "\"");
}

Bytes Row::Stored() const {
    return rep_->view.Stored();
}

Result<Bytes> StoredValue(const Row& row, std::size_t column) {
    const Row::Rep& rep = Inside::Of(row);
    const Column& def = rep.def->columns[column];
    if (def.type == ColumnType::Boolean || !rep.view.HasBit(def)) return Bytes();
    return rep.view.ValueBytes(def);
}

}  // namespace jet
