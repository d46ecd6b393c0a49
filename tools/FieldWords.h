#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ado/Value.h"
#include "project/Schema.h"
#include "words/Words.h"

namespace tools {

/// What people know as one setting: a field of a row, or some bits of one.
struct FieldPart {
    std::string caption;
    std::span<const project::Code> codes{};
    std::int32_t mask = 0;  // 0: all of it
    bool isColour = false;
};
/// Those of a column of a project's table, under the captions that the interface has for them;
/// under its own name a column that has none.
[[nodiscard]] std::vector<FieldPart> PartsOf(std::string_view table, const std::string& column,
                                             const words::Language& language);
/// What counts of a stored value.
[[nodiscard]] ado::Value PartOf(const FieldPart& part, const ado::Value& value);
/// The word of a code or a colour; nothing for other values.
[[nodiscard]] std::string WordOf(const FieldPart& part, const ado::Value& value,
                                 const words::Language& language);

}  // namespace tools
