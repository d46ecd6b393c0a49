#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ado/Value.h"
#include "project/Schema.h"

namespace project {

/// What people know as one setting: a field of a row, or some bits of the number in one.
struct FieldPart {
    int caption = 0;        // number of the interface's text; 0: the column's own name
    std::int32_t mask = 0;  // 0: all of it
    std::span<const Code> codes{};
    bool isColour = false;
};

/// Those of a column of a project's table.
[[nodiscard]] std::vector<FieldPart> PartsOf(std::string_view table, std::string_view column);
/// Those of the number in `Type` of an archive, of which something is known.
[[nodiscard]] std::vector<FieldPart> PartsOfType();
/// What counts of a stored value.
[[nodiscard]] ado::Value PartOf(const FieldPart& part, const ado::Value& value);
/// The word of a code or a colour; empty for other values. `text` gives the text of a number.
[[nodiscard]] std::u16string WordOf(const FieldPart& part, const ado::Value& value,
                                    const std::function<std::u16string(int)>& text);

}  // namespace project
