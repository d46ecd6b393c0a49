#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "project/check/Finder.h"
#include "project/Cure.h"
#include "project/FieldText.h"
#include "project/Names.h"
#include "project/Rows.h"
#include "project/Schema.h"

namespace project {
namespace {

using Kind = CureStep::Kind;
using Steps = std::vector<CureStep>;

constexpr std::int32_t kScanTime = 1000;  // of new archives

std::u16string KeyOf(const ado::Value& name) {
    const auto* text = std::get_if<std::u16string>(&name);
    return text == nullptr ? std::u16string() : ado::FoldName(Content(*text));
}

/// Plans one cure after the other; names that it has given away are taken.
class CurePlanner {
public:
    explicit CurePlanner(ado::Connection& connection)
        : connection_(connection), rows_(connection) {}

    Steps Plan(const Finding& finding) {
        static constexpr std::pair<Rule, Steps (CurePlanner::*)(const Finding&)> kPlans[] = {
            {Rule::ArchiveWithoutGroup, &CurePlanner::AddGroup},
            {Rule::ArchiveWithSeveralGroups, &CurePlanner::JoinGroups},
            {Rule::ArchiveWithoutText, &CurePlanner::AddText},
            {Rule::NameEmpty, &CurePlanner::GiveName},
            {Rule::NameDouble, &CurePlanner::RenameDoubles},
            {Rule::CodeUnknown, &CurePlanner::SetUsualCode},
            {Rule::ScanTimeMissing, &CurePlanner::SetScanTime},
            {Rule::FileMissing, &CurePlanner::GiveFile},
            {Rule::FileShared, &CurePlanner::GiveFiles},
            {Rule::PathInvalid, &CurePlanner::MendPath},
            {Rule::TrendWithoutArchive, &CurePlanner::Remove},
            {Rule::TrendWithoutText, &CurePlanner::AddText},
            {Rule::RangeInverted, &CurePlanner::Exchange},
            {Rule::FactorZero, &CurePlanner::SetFactor},
            {Rule::HysteresisIncomplete, &CurePlanner::EndHysteresis},
            {Rule::TextShared, &CurePlanner::CopyTexts},
            {Rule::TextWithoutOwner, &CurePlanner::RemoveText},
            {Rule::TextMissing, &CurePlanner::FillText},
            {Rule::GroupWithoutArchive, &CurePlanner::RemoveGroup},
            {Rule::RootGroupMissing, &CurePlanner::AddRoot},
        };
        const auto* plan =
            std::find_if(std::begin(kPlans), std::end(kPlans),
                         [&](const auto& each) { return each.first == finding.rule; });
        if (plan == std::end(kPlans)) return {};
        if (finding.id != 0 && !Seek(finding)) return {};
        return (this->*plan->second)(finding);
    }

private:
    ado::Recordset& RowsOf(std::string_view table) {
        if (table == kArchiveTable) return rows_.Archives();
        if (table == kTrendTable) return rows_.Trends();
        if (table == kTextTable) return rows_.Texts();
        return rows_.Groups();
    }

    bool Seek(const Finding& finding) {
        ado::Recordset& rows = RowsOf(finding.table);
        rows.SetFilter("ID = " + std::to_string(finding.id));
        if (rows.IsEOF()) return false;
        // What has another value by now is another finding.
        return std::all_of(finding.values.begin(), finding.values.end(), [&](const auto& value) {
            if (value.column.empty() || !HasField(rows, value.column)) return true;
            if (finding.rule == Rule::FileShared || finding.rule == Rule::NameDouble) return true;
            const ado::Value now = rows.Get(value.column);
            const auto* text = std::get_if<std::u16string>(&now);
            return text == nullptr || Content(*text) == Content(value.text);
        });
    }

    /// A field of the row that Seek has found, or of another current one.
    CureStep Set(std::string_view table, std::string_view column, ado::Value is) {
        const ado::Recordset& rows = RowsOf(table);
        return {
            Kind::Set,        table,        ado::ToLong(rows.Get(kKeyColumn)), std::string(column),
            rows.Get(column), std::move(is)};
    }

    static CureStep Do(Kind kind, const Finding& finding) {
        return {kind, finding.table, finding.id};
    }

    // The plans: each is for a finding whose row is the current one.

    Steps AddGroup(const Finding& finding) {
        rows_.Groups().SetFilter("Type = -2 AND Parameter = " + std::to_string(finding.id));
        return rows_.Groups().IsEOF() ? Steps{Do(Kind::AddGroup, finding)} : Steps();
    }

    Steps AddRoot(const Finding& /*finding*/) {
        if (rows_.RootGroup() != 0) return {};
        return {{Kind::AddGroup, kGroupTable, 0}};
    }

    Steps AddText(const Finding& finding) {
        if (rows_.SeekTextOf(RowsOf(finding.table))) return {};
        return {Do(Kind::AddText, finding)};
    }

    /// The texts and groups in a group move to another.
    void Empty(std::int32_t group, std::int32_t to, Steps& steps) {
        for (const std::string_view table : {kTextTable, kGroupTable}) {
            ado::Recordset& rows = RowsOf(table);
            rows.SetFilter("ParentID = " + std::to_string(group));
            for (; !rows.IsEOF(); rows.MoveNext()) steps.push_back(Set(table, "ParentID", to));
        }
        steps.push_back({Kind::Remove, kGroupTable, group});
    }

    /// All become the one that bears the archive's name, else the first.
    Steps JoinGroups(const Finding& finding) {
        const std::u16string name = KeyOf(rows_.Archives().Get("Name"));
        ado::Recordset& groups = rows_.Groups();
        groups.SetFilter("Type = -2 AND Parameter = " + std::to_string(finding.id));
        std::vector<std::int32_t> ids;
        for (; !groups.IsEOF(); groups.MoveNext()) {
            ids.push_back(ado::ToLong(groups.Get(kKeyColumn)));
            if (KeyOf(groups.Get("Name")) == name) std::swap(ids.front(), ids.back());
        }
        Steps steps;
        for (std::size_t i = 1; i < ids.size(); ++i) Empty(ids[i], ids.front(), steps);
        return steps;
    }

    Steps RemoveGroup(const Finding& finding) {
        const std::int32_t root = rows_.RootGroup();
        Steps steps;
        if (root != 0 && root != finding.id) Empty(finding.id, root, steps);
        return steps;
    }

    /// Names that are in use: of archives, of the trends of one, of files.
    std::unordered_set<std::u16string>& NamesIn(std::string_view table, std::int32_t archive,
                                                std::string_view column = "Name") {
        const auto [names, isNew] = names_.try_emplace({table, archive, column});
        if (!isNew) return names->second;
        ado::Recordset rows;
        rows.Open(table, connection_, ado::CommandType::Table);
        if (table == kTrendTable) rows.SetFilter("ArchiveID = " + std::to_string(archive));
        for (; !rows.IsEOF(); rows.MoveNext()) names->second.insert(KeyOf(rows.Get(column)));
        return names->second;
    }

    std::u16string FreeNameIn(std::unordered_set<std::u16string>& names,
                              std::u16string_view first) {
        const std::u16string name = FreeName(
            first, [&](const std::u16string& each) { return names.contains(KeyOf(each)); });
        names.insert(KeyOf(name));
        return name;
    }

    std::int32_t ArchiveOf(const Finding& finding) {
        return finding.table == kTrendTable ? NumberOf(rows_.Trends(), "ArchiveID").value_or(0) : 0;
    }

    Steps GiveName(const Finding& finding) {
        auto& names = NamesIn(finding.table, ArchiveOf(finding));
        const char16_t* kind = finding.table == kTrendTable ? u"Trd" : u"Arc";
        return {Set(finding.table, "Name", FreeNameIn(names, kind + DigitsOf(finding.id)))};
    }

    /// All of the name but the first one; the cure of each of them is the same.
    Steps RenameDoubles(const Finding& finding) {
        ado::Recordset& rows = RowsOf(finding.table);
        const std::u16string name = ado::ToText(rows.Get("Name"));
        const std::int32_t archive = ArchiveOf(finding);
        auto& names = NamesIn(finding.table, archive);
        rows.SetFilter(finding.table == kTrendTable ? "ArchiveID = " + std::to_string(archive)
                                                    : std::string());
        std::vector<std::int32_t> ids;
        for (; !rows.IsEOF(); rows.MoveNext()) {
            if (KeyOf(rows.Get("Name")) == KeyOf(name)) {
                ids.push_back(ado::ToLong(rows.Get(kKeyColumn)));
            }
        }
        std::sort(ids.begin(), ids.end());
        Steps steps;
        for (std::size_t i = 1; i < ids.size(); ++i) {
            if (!renamed_.insert({finding.table, ids[i]}).second) continue;
            rows.SetFilter("ID = " + std::to_string(ids[i]));
            const std::u16string is = FreeNameIn(names, ado::ToText(rows.Get("Name")) + u"(1)");
            steps.push_back(Set(finding.table, "Name", is));
        }
        return steps;
    }

    Steps SetUsualCode(const Finding& finding) {
        const bool isArchive = finding.table == kArchiveTable;
        ado::Recordset& rows = RowsOf(finding.table);
        if (isArchive && finding.column == "Type") {
            const std::int32_t type = NumberOf(rows, "Type").value_or(0);
            return {Set(kArchiveTable, "Type",
                        (type & ~ArchiveType::kKindMask) | ArchiveType::kCircularBuffer)};
        }
        const Column* column =
            isArchive ? FindArchiveColumn(finding.column) : FindTrendColumn(finding.column);
        const auto* usual =
            column != nullptr ? std::get_if<std::int32_t>(&column->initial) : nullptr;
        if (usual == nullptr) return {};
        if (finding.column == "HysteresisMode" && !KeyOf(rows.Get("Hysteresis")).empty()) {
            return {Set(kTrendTable, "HysteresisMode", 0)};
        }
        Steps steps{Set(finding.table, finding.column, *usual)};
        if (finding.column == "SampleMode" && NumberOf(rows, "ScanTime").value_or(0) <= 0) {
            steps.push_back(Set(kArchiveTable, "ScanTime", kScanTime));
        }
        return steps;
    }

    Steps SetScanTime(const Finding& /*finding*/) {
        return {Set(kArchiveTable, "ScanTime", kScanTime)};
    }

    Steps SetFactor(const Finding& /*finding*/) { return {Set(kTrendTable, "Factor", 1.0)}; }

    Steps EndHysteresis(const Finding& finding) {
        if (finding.column == "Hysteresis") {
            return {Set(kTrendTable, "HysteresisMode", kNoHysteresis)};
        }
        return {Set(kTrendTable, "Hysteresis", ado::Null())};
    }

    Steps Exchange(const Finding& finding) {
        const ado::Recordset& trends = rows_.Trends();
        const std::string& lower = finding.values.at(0).column;
        const std::string& upper = finding.values.at(1).column;
        return {Set(kTrendTable, lower, trends.Get(upper)),
                Set(kTrendTable, upper, trends.Get(lower))};
    }

    /// A file name as a new archive gets it, which no other has.
    CureStep NewFile(std::int32_t archive) {
        rows_.Archives().SetFilter("ID = " + std::to_string(archive));
        std::u16string name(Content(ado::ToText(rows_.Archives().Get("Name"))));
        if (name.empty()) name = u"Arc" + DigitsOf(archive);
        auto& files = NamesIn(kArchiveTable, 0, "FileName");
        return Set(kArchiveTable, "FileName", FreeNameIn(files, FileNameOf(name)));
    }

    Steps GiveFile(const Finding& finding) { return {NewFile(finding.id)}; }

    /// The first archive keeps the file; the cure of each is the same.
    Steps GiveFiles(const Finding& finding) {
        std::vector<std::int32_t> ids{finding.id};
        for (const FoundRow& other : finding.others) ids.push_back(other.id);
        std::sort(ids.begin(), ids.end());
        Steps steps;
        for (std::size_t i = 1; i < ids.size(); ++i) {
            if (hasNewFile_.insert(ids[i]).second) steps.push_back(NewFile(ids[i]));
        }
        return steps;
    }

    Steps MendPath(const Finding& finding) {
        if (finding.column != "FileName") {
            return {Set(kArchiveTable, finding.column, std::u16string(kProjectFolder))};
        }
        auto& files = NamesIn(kArchiveTable, 0, "FileName");
        const std::u16string file = FileNameOf(ado::ToText(rows_.Archives().Get("FileName")));
        return {Set(kArchiveTable, "FileName", FreeNameIn(files, file))};
    }

    /// All that share the text but the first one get a copy.
    Steps CopyTexts(const Finding& finding) {
        Steps steps;
        for (const std::string_view table : {kArchiveTable, kTrendTable}) {
            for (const std::int32_t id : OwnersOf(finding.id, table)) {
                steps.push_back({Kind::CopyText, table, id});
            }
        }
        if (!steps.empty()) steps.erase(steps.begin());
        return steps;
    }

    /// The rows of a table that name a text; all are read once.
    const std::vector<std::int32_t>& OwnersOf(std::int32_t text, std::string_view table) {
        auto& owners = owners_[table];
        if (owners.empty()) {
            ado::Recordset rows;
            rows.Open(table, connection_, ado::CommandType::Table);
            rows.Scan({rows.FieldIndex(kKeyColumn), rows.FieldIndex("TextID")},
                      [&](const std::vector<ado::Value>& values) {
                          if (ado::IsNull(values[0]) || ado::IsNull(values[1])) return;
                          owners[ado::ToLong(values[1])].push_back(ado::ToLong(values[0]));
                      });
            for (auto& [each, ids] : owners) std::sort(ids.begin(), ids.end());
        }
        return owners[text];
    }

    Steps RemoveText(const Finding& finding) {
        const bool isNamed = !OwnersOf(finding.id, kArchiveTable).empty() ||
                             !OwnersOf(finding.id, kTrendTable).empty();
        return isNamed ? Steps() : Steps{Do(Kind::Remove, finding)};
    }

    Steps Remove(const Finding& finding) { return {Do(Kind::Remove, finding)}; }

    /// From the first language that has the text; in none, its owner's name.
    Steps FillText(const Finding& finding) {
        const ado::Recordset& texts = rows_.Texts();
        std::u16string text;
        for (const ado::Field& field : texts.Fields()) {
            if (!text.empty() || !IsLanguageColumn(field.name)) continue;
            text = Content(ado::ToText(texts.Get(field.name)));
        }
        if (text.empty() && !finding.others.empty()) text = finding.others.front().name;
        if (text.empty()) return {};
        return {Set(kTextTable, finding.column, text)};
    }

    ado::Connection& connection_;
    Rows rows_;
    std::map<std::tuple<std::string_view, std::int32_t, std::string_view>,
             std::unordered_set<std::u16string>>
        names_;
    std::set<std::pair<std::string_view, std::int32_t>> renamed_;
    std::set<std::int32_t> hasNewFile_;  // archives
    std::map<std::string_view, std::unordered_map<std::int32_t, std::vector<std::int32_t>>> owners_;
};

}  // namespace

CureKind CureOf(const Finding& finding) {
    switch (finding.rule) {
        case Rule::ArchiveWithoutGroup:
        case Rule::ArchiveWithoutText:
        case Rule::NameEmpty:
        case Rule::FileMissing:
        case Rule::TrendWithoutText:
        case Rule::TextShared:
        case Rule::RootGroupMissing:
            return CureKind::Safe;
        case Rule::HysteresisIncomplete:
            // Without an amount nothing is recorded otherwise.
            return finding.column == "Hysteresis" ? CureKind::Safe : CureKind::ToBeLookedAt;
        case Rule::VariableMissing:
        case Rule::VariableUnknown:
        case Rule::Unlimited:
        case Rule::LengthLimit:
            return CureKind::None;
        default:
            return CureKind::ToBeLookedAt;
    }
}

std::vector<PlannedCure> PlanCures(ado::Connection& connection, std::span<const Finding> findings) {
    CurePlanner planner(connection);
    std::vector<PlannedCure> cures;
    for (std::size_t i = 0; i < findings.size(); ++i) {
        Steps steps = planner.Plan(findings[i]);
        if (!steps.empty()) cures.push_back({i, CureOf(findings[i]), std::move(steps)});
    }
    return cures;
}

}  // namespace project
