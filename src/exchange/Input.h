#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "exchange/Cell.h"

namespace exchange {

/// Rows that come from outside; the first is the heading.
class Input {
public:
    Input() = default;
    virtual ~Input() = default;
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    /// False at the end, and after an error. The cells are used again.
    [[nodiscard]] virtual bool Next(std::vector<Cell>& record) = 0;
    /// Where the last record began, counted from 1.
    [[nodiscard]] virtual std::size_t Line() const = 0;
    /// The name of the sheet, of an input that is one among several.
    [[nodiscard]] virtual std::u16string Sheet() const { return {}; }
    /// What is wrong, and where; empty when nothing is.
    [[nodiscard]] virtual const std::string& Error() const = 0;
};

}  // namespace exchange
