#include "project/Check.h"

#include <algorithm>
#include <tuple>

#include "project/check/Finder.h"

namespace project {
namespace {

std::size_t PlaceAmongTables(std::string_view table) {
    const auto found = std::find_if(Tables().begin(), Tables().end(),
                                    [&](const Table& each) { return each.name == table; });
    return static_cast<std::size_t>(found - Tables().begin());
}

std::u16string Widened(std::string_view text) {
    return {text.begin(), text.end()};
}

std::u16string Subject(const Finding& finding) {
    static constexpr std::pair<std::string_view, std::u16string_view> kKinds[] = {
        {kArchiveTable, u"archive"},
        {kTrendTable, u"trend"},
        {kTextTable, u"text"},
        {kGroupTable, u"group"},
    };
    if (finding.id == 0) return u"the project";
    std::u16string subject;
    for (const auto& [table, kind] : kKinds) {
        if (finding.table == table) subject = kind;
    }
    subject += finding.name.empty() ? u" " + DigitsOf(finding.id) : u" \"" + finding.name + u'"';
    if (!finding.archive.empty()) subject += u" of archive \"" + finding.archive + u'"';
    return subject;
}

}  // namespace

std::string PlaceOf(const Finding& finding) {
    std::string place(finding.table);
    if (finding.id != 0) place += '/' + std::to_string(finding.id);
    if (!finding.column.empty()) place += '/' + finding.column;
    return place;
}

std::u16string MessageOf(const Finding& finding) {
    const RuleInfo& rule = InfoOf(finding.rule);
    const bool isEmpty = !rule.messageIfEmpty.empty() &&
                         (finding.values.empty() || finding.values.front().text.empty());
    std::string_view form = isEmpty ? rule.messageIfEmpty : rule.message;
    std::u16string message = Subject(finding) + u' ';
    for (std::size_t at = 0; at < form.size();) {
        const std::size_t open = std::min(form.find('{', at), form.size());
        message += Widened(form.substr(at, open - at));
        if (open == form.size()) break;
        const std::size_t close = form.find('}', open);
        const bool isColumn = form[open + 1] == 'c';
        const auto number = static_cast<std::size_t>(form[close - 1] - '1');
        if (number < finding.values.size()) {
            const Finding::Value& value = finding.values[number];
            message += isColumn ? Widened(value.column) : value.text;
        }
        at = close + 1;
    }
    return message;
}

std::string FingerprintOf(const Finding& finding) {
    // FNV-1a; stored beside projects, so it stays what it is.
    std::uint64_t hash = 0xCBF29CE484222325U;
    const auto add = [&](const auto& text) {
        for (const auto unit : text) {
            for (const unsigned part :
                 {static_cast<unsigned>(unit) & 0xFFU, static_cast<unsigned>(unit) >> 8 & 0xFFU}) {
                hash = (hash ^ part) * 0x100000001B3U;
            }
        }
        hash = (hash ^ 0xFFU) * 0x100000001B3U;
    };
    add(InfoOf(finding.rule).id);
    add(PlaceOf(finding));
    for (const Finding::Value& value : finding.values) {
        add(value.column);
        add(value.text);
    }
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string digits;
    for (int shift = 60; shift >= 0; shift -= 4) digits += kDigits[hash >> shift & 15U];
    return digits;
}

CheckResult CheckProject(ado::Connection& connection, const Severities& severities) {
    const ado::OneState state(connection);
    Finder finder{severities};
    ReadFacts(connection, finder);
    CheckArchives(connection, finder);
    CheckGroups(finder);
    CheckTrends(connection, finder);
    CheckTexts(connection, finder);
    if (finder.isVariableLeft && finder.Looks(Rule::VariableUnknown)) {
        finder.result.notChecked.push_back(Rule::VariableUnknown);
    }
    const auto place = [](const Finding& finding) {
        return std::tuple(PlaceAmongTables(finding.table), finding.id, finding.rule);
    };
    std::stable_sort(finder.result.findings.begin(), finder.result.findings.end(),
                     [&](const Finding& a, const Finding& b) { return place(a) < place(b); });
    return std::move(finder.result);
}

}  // namespace project
