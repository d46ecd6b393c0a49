#include "project/FieldParts.h"

#include <algorithm>

#include "project/Colour.h"

namespace project {
namespace {

constexpr int kDisplayTextCaption = 403;
constexpr int kNo = 20;
constexpr int kYes = 21;
constexpr Code kStorage[] = {{0, 204}, {ArchiveType::kMainMemory, 205}};
constexpr Code kSaveSafe[] = {{0, kNo}, {ArchiveType::kSaveSafe, kYes}};
constexpr Code kRedundancy[] = {{0, kNo}, {ArchiveType::kRedundancy, kYes}};

const Column* FindColumn(std::string_view table, std::string_view column) {
    if (table == kTrendTable) return FindTrendColumn(column);
    return table == kArchiveTable ? FindArchiveColumn(column) : nullptr;
}

}  // namespace

std::vector<FieldPart> PartsOfType() {
    return {{209, ArchiveType::kKindMask, ArchiveKinds()},
            {203, ArchiveType::kMainMemory, kStorage},
            {207, ArchiveType::kSaveSafe, kSaveSafe},
            {208, ArchiveType::kRedundancy, kRedundancy}};
}

std::vector<FieldPart> PartsOf(std::string_view table, std::string_view column) {
    if (table == kTextTable && IsLanguageColumn(column)) return {{.caption = kDisplayTextCaption}};
    const Column* known = FindColumn(table, column);
    if (known == nullptr || known->caption == 0) return {{}};
    if (table == kArchiveTable && column == "Type") {
        std::vector<FieldPart> parts = PartsOfType();
        parts.push_back({.mask = ~ArchiveType::kKnown});  // bits that nobody knows
        return parts;
    }
    return {{.caption = known->caption,
             .codes = known->codes,
             .isColour = known->kind == Kind::Colour}};
}

ado::Value PartOf(const FieldPart& part, const ado::Value& value) {
    const auto* number = std::get_if<std::int32_t>(&value);
    return part.mask != 0 && number != nullptr ? ado::Value(*number & part.mask) : value;
}

std::u16string WordOf(const FieldPart& part, const ado::Value& value,
                      const std::function<std::u16string(int)>& text) {
    const auto* number = std::get_if<std::int32_t>(&value);
    if (number == nullptr) return {};
    if (part.isColour) return ColourText(*number);
    const auto found = std::ranges::find(part.codes, *number, &Code::code);
    return found != part.codes.end() ? text(found->text) : std::u16string();
}

}  // namespace project
