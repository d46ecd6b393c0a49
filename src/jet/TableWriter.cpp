#include "jet/TableWriter.h"

#include "jet/write/RowChanger.h"

namespace jet {

Status TableWriter::CheckWritable() const {
    return RowChanger(table_).CheckWritable();
}

Result<RowId> TableWriter::Insert(std::span<const Assignment> values) {
    return RowChanger(table_).Insert(values);
}

Status TableWriter::Update(RowId row, std::span<const Assignment> values) {
    return RowChanger(table_).Update(row, values);
}

Status TableWriter::Delete(RowId row) {
    return RowChanger(table_).Delete(row);
}

}  // namespace jet
