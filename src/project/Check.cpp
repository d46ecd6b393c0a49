#include "project/Check.h"

#include <algorithm>
#include <tuple>

#include "ado/AdoError.h"
#include "project/check/Finder.h"
#include "project/Rows.h"

namespace project {
namespace {

std::size_t PlaceAmongTables(std::string_view table) {
    const auto found = std::find_if(Tables().begin(), Tables().end(),
                                    [&](const Table& each) { return each.name == table; });
    return static_cast<std::size_t>(found - Tables().begin());
}

/// What people call the rows that findings are about as well; one that cannot be read keeps its
/// number alone.
void NameOthers(ado::Connection& connection, const Finder& finder, CheckResult& result) {
    Rows rows(connection);
    const auto nameOfArchive = [&](std::int32_t id) {
        const auto found = finder.archives.find(id);
        return found != finder.archives.end() ? found->second : std::u16string();
    };
    for (Finding& finding : result.findings) {
        for (FoundRow& other : finding.others) {
            if (other.table == kArchiveTable) {
                other.name = nameOfArchive(other.id);
                continue;
            }
            try {
                if (!rows.SeekTrend(other.id)) continue;
                other.name = NameOf(rows.Trends());
                other.archive = nameOfArchive(NumberOf(rows.Trends(), "ArchiveID").value_or(0));
            } catch (const ado::AdoError&) {
            }
        }
    }
}

}  // namespace

std::string PlaceOf(const Finding& finding) {
    std::string place(finding.table);
    if (finding.id != 0) place += '/' + std::to_string(finding.id);
    if (!finding.column.empty()) place += '/' + finding.column;
    return place;
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

CheckResult CheckProject(ado::Connection& connection, const Severities& severities,
                         const std::function<bool()>& goOn) {
    const ado::OneState state(connection);
    Finder finder{severities, goOn};
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
    NameOthers(connection, finder, finder.result);
    return std::move(finder.result);
}

}  // namespace project
