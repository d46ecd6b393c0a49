#include <algorithm>
#include <optional>

#include "project/CellChanges.h"
#include "project/check/Finder.h"
#include "project/Cure.h"
#include "project/Names.h"
#include "project/Rows.h"
#include "project/Schema.h"
#include "project/Transaction.h"

namespace project {
namespace {

using Kind = CureStep::Kind;

class CureWriter {
public:
    CureWriter(ado::Connection& connection, std::span<const PlannedCure> cures)
        : connection_(connection), cures_(cures), rows_(connection) {}

    /// What others stand on comes first: groups, names, texts; what goes, last.
    bool Write() {
        return ForEach(Kind::AddGroup, true,
                       [&](const CureStep& step) { return AddGroup(step); }) &&
               ForEach(Kind::AddGroup, false,
                       [&](const CureStep& step) { return AddGroup(step); }) &&
               WriteFields() &&
               ForEach(Kind::AddText, {}, [&](const CureStep& step) { return AddText(step); }) &&
               ForEach(Kind::CopyText, {}, [&](const CureStep& step) { return CopyText(step); }) &&
               ForEach(Kind::Remove, {}, [&](const CureStep& step) { return Remove(step); });
    }

private:
    /// `isRoot`: of the steps with row 0 alone, or of those with another; empty: of all.
    template <typename Body>
    bool ForEach(Kind kind, std::optional<bool> isRoot, Body&& body) {
        for (const PlannedCure& cure : cures_) {
            for (const CureStep& step : cure.steps) {
                if (step.kind != kind || (isRoot && *isRoot != (step.id == 0))) continue;
                if (!body(step)) return false;
            }
        }
        return true;
    }

    bool AddGroup(const CureStep& step) {
        if (step.id == 0) {
            rows_.AddGroup(0, kRootGroupName);
            return true;
        }
        if (!rows_.SeekArchive(step.id)) return false;
        rows_.AddGroup(step.id, NameOf(rows_.Archives()));
        return true;
    }

    bool WriteFields() {
        std::vector<CellChange> changes;
        for (const PlannedCure& cure : cures_) {
            for (const CureStep& step : cure.steps) {
                if (step.kind != Kind::Set) continue;
                changes.push_back({step.table, step.id, step.column, step.was, step.is});
            }
        }
        return changes.empty() || WriteCells(connection_, changes).isDone;
    }

    ado::Recordset* SeekOwner(const CureStep& step) {
        const bool isTrend = step.table == kTrendTable;
        const bool isThere = isTrend ? rows_.SeekTrend(step.id) : rows_.SeekArchive(step.id);
        if (!isThere) return nullptr;
        return isTrend ? &rows_.Trends() : &rows_.Archives();
    }

    std::int32_t GroupOf(const CureStep& step, const ado::Recordset& owner) {
        return rows_.GroupOfTrends(
            step.table == kTrendTable ? NumberOf(owner, "ArchiveID").value_or(0) : step.id);
    }

    std::u16string TextNameOf(const CureStep& step, std::u16string_view owner) {
        return step.table == kTrendTable ? TrendTextName(owner) : ArchiveTextName(owner);
    }

    /// The name in all languages, since nobody knows others.
    bool AddText(const CureStep& step) {
        ado::Recordset* owner = SeekOwner(step);
        if (owner == nullptr || rows_.SeekTextOf(*owner)) return false;
        std::u16string name(Content(NameOf(*owner)));
        if (name.empty()) name = (step.table == kTrendTable ? u"Trd" : u"Arc") + DigitsOf(step.id);
        Values values;
        for (const std::string& language : Languages()) values.emplace_back(language, name);
        AddTextRow(step, *owner, TextNameOf(step, name), nullptr, values);
        return true;
    }

    bool CopyText(const CureStep& step) {
        ado::Recordset* owner = SeekOwner(step);
        if (owner == nullptr) return false;
        Rows from(connection_);
        if (!from.SeekTextOf(*owner)) return false;
        AddTextRow(step, *owner, TextNameOf(step, NameOf(*owner)), &from.Texts(), {});
        return true;
    }

    void AddTextRow(const CureStep& step, ado::Recordset& owner, const std::u16string& name,
                    const ado::Recordset* original, const Values& values) {
        const std::int32_t group = GroupOf(step, owner);
        ado::Recordset& texts = rows_.Texts();
        const EditScope textScope(texts);
        texts.AddNew();
        for (std::size_t i = 0; original != nullptr && i < texts.Fields().size(); ++i) {
            const bool isKey = texts.Fields()[i].autoNumber || texts.Fields()[i].name == kKeyColumn;
            if (!isKey && !ado::IsNull(original->Get(i))) texts.Set(i, original->Get(i));
        }
        const auto room =
            static_cast<std::size_t>(texts.Fields()[texts.FieldIndex("Name")].definedSize);
        texts.Set("Name", name.substr(0, room));
        texts.Set("ParentID", group);
        for (const auto& [column, value] : values) texts.Set(column, value);
        texts.Update();
        const EditScope ownerScope(owner);
        owner.Set("TextID", ado::ToLong(texts.Get(kKeyColumn)));
        owner.Update();
    }

    const std::vector<std::string>& Languages() {
        if (!languages_) {
            languages_ = LanguagesOf(connection_, TableScan(connection_, TableOf(kTextTable)));
        }
        return *languages_;
    }

    bool Remove(const CureStep& step) {
        if (step.table == kTrendTable) {
            if (!isRemoving_) rows_.BeginRemoving();
            isRemoving_ = true;
            return rows_.RemoveTrend(step.id);
        }
        if (step.table == kTextTable && !rows_.SeekText(step.id)) return false;
        ado::Recordset& rows = step.table == kTextTable ? rows_.Texts() : rows_.Groups();
        rows.SetFilter("ID = " + std::to_string(step.id));
        if (rows.IsEOF()) return false;
        rows.Delete();
        return true;
    }

    ado::Connection& connection_;
    std::span<const PlannedCure> cures_;
    Rows rows_;
    std::optional<std::vector<std::string>> languages_;
    bool isRemoving_ = false;
};

}  // namespace

bool ApplyCures(ado::Connection& connection, std::span<const PlannedCure> cures) {
    Transaction transaction(connection);
    if (!CureWriter(connection, cures).Write()) return false;
    transaction.Commit();
    return true;
}

}  // namespace project
