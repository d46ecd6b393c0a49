#include "patterns/ArchivePlan.h"

#include <algorithm>
#include <tuple>

#include "project/CopyRows.h"
#include "project/Names.h"
#include "project/Schema.h"
#include "project/Transaction.h"

namespace patterns {
namespace {

/// Names are one name whatever their capitals, and blanks at their end.
std::u16string KeyOf(std::u16string_view name) {
    std::u16string key = ado::FoldName(name);
    key.erase(key.find_last_not_of(u' ') + 1);
    return key;
}

bool IsCopied(const ado::Field& field) {
    return project::IsText(field.type) && field.name != "Name";
}

/// The texts of a copied row, but for its name, as the copy has them.
void ReplaceTexts(ado::Recordset& copy, const ArchivePlan& plan, std::size_t number) {
    const project::EditScope scope(copy);
    bool isChanged = false;
    for (std::size_t i = 0; i < copy.Fields().size(); ++i) {
        if (!IsCopied(copy.Fields()[i])) continue;
        const ado::Value stands = copy.Get(i);
        const auto* text = std::get_if<std::u16string>(&stands);
        if (text == nullptr) continue;
        const std::u16string replaced = plan.TextOf(number, *text);
        if (replaced == *text) continue;
        copy.Set(i, replaced);
        isChanged = true;
    }
    if (isChanged) copy.Update();
}

/// Two archives that write one file destroy what the other has recorded.
void NameFile(ado::Recordset& copy, const std::u16string& originalFile,
              const std::u16string& name) {
    if (!project::HasField(copy, "FileName") || originalFile.empty()) return;
    if (ado::ToText(copy.Get("FileName")) != originalFile) return;
    copy.Set("FileName", project::FileNameOf(name));
    copy.Update();
}

}  // namespace

std::optional<Original> ReadOriginal(ado::Connection& connection, std::int32_t archive) {
    project::Rows rows(connection);
    if (!rows.SeekArchive(archive)) return std::nullopt;
    Original original;
    original.longestName = static_cast<std::size_t>(rows.LongestArchiveName());
    original.longestTrendName = static_cast<std::size_t>(rows.LongestTrendName());
    ado::Recordset& archives = rows.Archives();
    for (archives.SetFilter(""); !archives.IsEOF(); archives.MoveNext()) {
        original.names.insert(KeyOf(project::NameOf(archives)));
    }
    std::ignore = rows.SeekTrendsOf(archive);
    for (ado::Recordset& trends = rows.Trends(); !trends.IsEOF(); trends.MoveNext()) {
        original.trends.push_back(project::NameOf(trends));
    }
    return original;
}

void ArchivePlan::Set(ArchivePatterns patterns, const Original& original) {
    patterns_ = std::move(patterns);
    wrong_.reset();
    names_.clear();
    by_.clear();
    problems_.clear();
    const project::Pattern name(patterns_.name);
    const project::Pattern by(patterns_.by);
    auto wrong = name.Wrong() ? name.Wrong() : name.WrongBeside(name);
    if (wrong) {
        wrong_ = Fault{true, *wrong};
    } else if (wrong = by.WrongBeside(name); wrong) {
        wrong_ = Fault{false, *wrong};
    }
    if (wrong_ || patterns_.name.empty()) return;
    for (std::size_t i = 0; i < name.Count(); ++i) {
        const std::vector<std::size_t> combination = name.Combination(i);
        names_.push_back(name.Text(name, combination));
        by_.push_back(by.Text(name, combination));
    }
    Check(original);
}

std::u16string ArchivePlan::TextOf(std::size_t copy, std::u16string text) const {
    if (patterns_.find.empty()) return text;
    for (std::size_t at = text.find(patterns_.find); at != text.npos;
         at = text.find(patterns_.find, at + by_[copy].size())) {
        text.replace(at, patterns_.find.size(), by_[copy]);
    }
    return text;
}

ArchivePlan::Problem ArchivePlan::TrendsOf(std::size_t copy, const Original& original) const {
    std::map<std::u16string, int> before;
    std::map<std::u16string, int> after;
    for (const std::u16string& trend : original.trends) {
        const std::u16string name = TextOf(copy, trend);
        if (name.size() > original.longestTrendName) return Problem::TooLong;
        ++before[KeyOf(trend)];
        ++after[KeyOf(name)];
    }
    for (const auto& [name, count] : after) {
        // Names that are double already are the original's.
        if (name.empty() || count > std::max(before[name], 1)) return Problem::TrendsDouble;
    }
    return Problem::None;
}

void ArchivePlan::Check(const Original& original) {
    std::map<std::u16string, std::size_t> counts;
    for (const std::u16string& name : original.names) ++counts[name];
    for (const std::u16string& name : names_) ++counts[KeyOf(name)];
    for (std::size_t i = 0; i < names_.size(); ++i) {
        const std::u16string key = KeyOf(names_[i]);
        Problem problem = TrendsOf(i, original);
        if (names_[i].size() > original.longestName) problem = Problem::TooLong;
        if (counts[key] > 1) problem = Problem::NameDouble;
        if (key.empty()) problem = Problem::NameEmpty;
        if (problem != Problem::None) problems_[i] = problem;
    }
}

ArchivePlan::Problem ArchivePlan::ProblemOf(std::size_t copy) const {
    const auto found = problems_.find(copy);
    return found == problems_.end() ? Problem::None : found->second;
}

std::vector<std::int32_t> CopyArchives(ado::Connection& connection, std::int32_t archive,
                                       const ArchivePlan& plan,
                                       const std::function<bool(std::size_t made)>& goOn) {
    project::CopyRows rows(connection);
    project::Transaction transaction(connection);
    std::vector<std::int32_t> made;
    for (std::size_t copy = 0; copy < plan.Count(); ++copy) {
        if (goOn && !goOn(copy)) return {};
        std::ignore = rows.From().SeekArchive(archive);  // what follows fails when it has gone
        const ado::Recordset& original = rows.From().Archives();
        const std::u16string file = project::HasField(original, "FileName")
                                        ? ado::ToText(original.Get("FileName"))
                                        : std::u16string();
        const auto [id, group] = rows.CopyArchive(plan.Name(copy));
        ReplaceTexts(rows.To().Texts(), plan, copy);
        ReplaceTexts(rows.To().Archives(), plan, copy);
        NameFile(rows.To().Archives(), file, plan.Name(copy));
        std::ignore = rows.From().SeekTrendsOf(archive);
        for (ado::Recordset& trends = rows.From().Trends(); !trends.IsEOF(); trends.MoveNext()) {
            rows.CopyTrend(plan.TextOf(copy, project::NameOf(trends)), id, group);
            ReplaceTexts(rows.To().Texts(), plan, copy);
            ReplaceTexts(rows.To().Trends(), plan, copy);
        }
        made.push_back(id);
    }
    transaction.Commit();
    return made;
}

}  // namespace patterns
