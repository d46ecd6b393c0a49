#include "tools/FieldWords.h"

#include <algorithm>

#include "exchange/Sheet.h"
#include "project/Colour.h"
#include "unicode/Unicode.h"

namespace tools {
namespace {

constexpr int kDisplayTextCaption = 403;

const project::Column* FindColumn(std::string_view table, std::string_view column) {
    if (table == project::kTrendTable) return project::FindTrendColumn(column);
    return table == project::kArchiveTable ? project::FindArchiveColumn(column) : nullptr;
}

}  // namespace

std::vector<FieldPart> PartsOf(std::string_view table, const std::string& column,
                               const words::Language& language) {
    if (table == project::kTextTable && project::IsLanguageColumn(column)) {
        return {{unicode::ToUtf8(language.Text(kDisplayTextCaption)) + " " + column}};
    }
    const project::Column* known = FindColumn(table, column);
    if (known == nullptr || known->caption == 0) return {{column}};
    std::vector<FieldPart> parts;
    if (table == project::kArchiveTable && column == "Type") {
        for (const exchange::TypeBits& bits : exchange::PartsOfType()) {
            parts.push_back({unicode::ToUtf8(language.Text(bits.caption)), bits.codes, bits.mask});
        }
        // Bits that nobody knows.
        parts.push_back({column, {}, ~project::ArchiveType::kKnown});
        return parts;
    }
    parts.push_back({unicode::ToUtf8(language.Text(known->caption)), known->codes, 0,
                     known->kind == project::Kind::Colour});
    return parts;
}

ado::Value PartOf(const FieldPart& part, const ado::Value& value) {
    const auto* number = std::get_if<std::int32_t>(&value);
    return part.mask != 0 && number != nullptr ? ado::Value(*number & part.mask) : value;
}

std::string WordOf(const FieldPart& part, const ado::Value& value,
                   const words::Language& language) {
    const auto* number = std::get_if<std::int32_t>(&value);
    if (number == nullptr) return {};
    if (part.isColour) return unicode::ToUtf8(project::ColourText(*number));
    const auto found =
        std::find_if(part.codes.begin(), part.codes.end(),
                     [&](const project::Code& each) { return each.code == *number; });
    return found != part.codes.end() ? unicode::ToUtf8(language.Text(found->text)) : std::string();
}

}  // namespace tools
