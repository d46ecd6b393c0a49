#include "spreadsheet/Cell.h"

namespace spreadsheet {

std::string ColumnName(std::size_t column) {
    std::string name;
    for (std::size_t rest = column + 1; rest > 0; rest = (rest - 1) / 26) {
        name.insert(name.begin(), static_cast<char>('A' + (rest - 1) % 26));
    }
    return name;
}

std::string CellName(std::size_t column, std::size_t row) {
    return ColumnName(column) + std::to_string(row);
}

}  // namespace spreadsheet
