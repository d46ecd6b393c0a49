#include "project/FindingText.h"

#include <initializer_list>
#include <optional>
#include <utility>

#include "project/check/Finder.h"

namespace project {
namespace {

/// Values for placeholders, by name.
using Fillings = std::initializer_list<std::pair<std::u16string_view, std::u16string>>;

std::optional<std::u16string_view> ValueOf(std::u16string_view name, const Fillings& fillings) {
    for (const auto& [each, value] : fillings) {
        if (each == name) return value;
    }
    return std::nullopt;
}

/// The text with values for <name>; what stands in square brackets with one that is empty is left
/// out.
std::u16string Filled(std::u16string_view text, const Fillings& fillings) {
    std::u16string filled;
    std::optional<std::size_t> optional;  // where the part in brackets begins
    bool isLeftOut = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t c = text[at];
        if (c == u'[') {
            optional = filled.size();
            isLeftOut = false;
        } else if (c == u']' && optional) {
            if (isLeftOut) filled.resize(*optional);
            optional.reset();
        } else if (const std::size_t end = text.find(u'>', at); c == u'<' && end != text.npos) {
            const auto value = ValueOf(text.substr(at + 1, end - at - 1), fillings);
            isLeftOut = isLeftOut || (value && value->empty());
            filled += value ? *value : text.substr(at, end - at + 1);
            at = end;
        } else {
            filled += c;
        }
    }
    return filled;
}

std::string_view KindOf(std::string_view table) {
    static constexpr std::pair<std::string_view, std::string_view> kKinds[] = {
        {kArchiveTable, "Archive"},
        {kTrendTable, "Trend"},
        {kTextTable, "Text"},
        {kGroupTable, "Group"},
    };
    for (const auto& [each, kind] : kKinds) {
        if (each == table) return kind;
    }
    return "Project";
}

std::u16string SubjectOf(const Finding& finding, const FindingWords& words, Subject subject) {
    const std::string_view kind = finding.id == 0 ? "Project" : KindOf(finding.table);
    if (subject == Subject::This) return words.text("FindingRow.This" + std::string(kind));
    if (finding.id == 0) return words.text("FindingRow.Project");
    return NameOf(FoundRow{finding.table, finding.id, finding.name, finding.archive}, words);
}

std::u16string ListOf(const std::vector<FoundRow>& rows, const FindingWords& words) {
    std::u16string list;
    for (const FoundRow& row : rows) {
        if (!list.empty()) list += u", ";
        list += words.tellsIds ? NameOf(FoundRow{row.table, row.id}, words) : NameOf(row, words);
    }
    if (rows.size() == kMostOthers) list += u", \u2026";
    return list;
}

}  // namespace

std::u16string NameOf(const FoundRow& row, const FindingWords& words) {
    const std::u16string number = row.name.empty() ? DigitsOf(row.id) : std::u16string();
    return Filled(words.text("FindingRow." + std::string(KindOf(row.table))),
                  {{u"name", row.name}, {u"id", number}, {u"archive", row.archive}});
}

std::u16string MessageOf(const Finding& finding, const FindingWords& words, Subject subject) {
    const std::string key = "Finding." + TextKeyOf(finding.rule);
    const auto value = [&](std::size_t place) {
        return place < finding.values.size() ? finding.values[place] : Finding::Value();
    };
    const auto caption = [&](const std::string& column) {
        std::u16string text =
            words.caption ? words.caption(finding.table, column) : std::u16string();
        return text.empty() ? std::u16string(column.begin(), column.end()) : text;
    };
    std::u16string form;
    if (value(0).text.empty()) form = words.text(key + "IfEmpty");
    if (form.empty()) form = words.text(key);
    return Filled(form, {{u"row", SubjectOf(finding, words, subject)},
                         {u"value", value(0).text},
                         {u"other", value(1).text},
                         {u"column", caption(value(0).column)},
                         {u"second", caption(value(1).column)},
                         {u"rows", ListOf(finding.others, words)}});
}

}  // namespace project
