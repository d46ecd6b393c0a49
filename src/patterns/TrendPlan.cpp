#include "patterns/TrendPlan.h"

#include <tuple>

#include "project/Colour.h"
#include "project/CurveColours.h"
#include "project/Number.h"
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

std::set<std::u16string> NamesOf(project::Rows& rows, std::int32_t archive) {
    std::set<std::u16string> names;
    std::ignore = rows.SeekTrendsOf(archive);
    for (ado::Recordset& trends = rows.Trends(); !trends.IsEOF(); trends.MoveNext()) {
        names.insert(KeyOf(project::NameOf(trends)));
    }
    return names;
}

std::size_t LengthOf(const ado::Recordset& rows, std::string_view column) {
    if (!project::HasField(rows, column)) return 0;
    return static_cast<std::size_t>(rows.Fields()[rows.FieldIndex(column)].definedSize);
}

void Add(project::Values& values, const char* column, const std::u16string& text) {
    if (!text.empty()) values.emplace_back(column, text);
}

}  // namespace

void TrendPlan::Set(TrendPatterns patterns) {
    if (patterns.name != patterns_.name || patterns.texts.size() != patterns_.texts.size()) {
        corrections_.clear();
        leftOut_.clear();
    }
    patterns_ = std::move(patterns);
    wrong_.reset();
    const auto read = [this](std::size_t column, const std::u16string& text) {
        project::Pattern pattern(text);
        auto wrong = column == kName ? pattern.Wrong() : pattern.WrongBeside(name_);
        if (column == kName && !wrong) wrong = pattern.WrongBeside(pattern);
        if (wrong && !wrong_) wrong_ = Fault{column, *wrong};
        return pattern;
    };
    name_ = read(kName, patterns_.name);
    variable_ = read(kVariable, patterns_.variable);
    texts_.clear();
    for (const auto& [column, text] : patterns_.texts) {
        texts_.push_back(read(kFirstText + texts_.size(), text));
    }
    rows_ = wrong_ || patterns_.name.empty() ? 0 : name_.Count();
    problems_.clear();
}

std::u16string TrendPlan::Cell(std::size_t row, std::size_t column) const {
    const auto corrected = corrections_.find({row, column});
    return corrected != corrections_.end() ? corrected->second : Planned(row, column);
}

std::u16string TrendPlan::Planned(std::size_t row, std::size_t column) const {
    const std::vector<std::size_t> combination = name_.Combination(row);
    if (column == kName) return name_.Text(name_, combination);
    if (column == kVariable) return variable_.Text(name_, combination);
    if (column < UnitColumn()) return texts_[column - kFirstText].Text(name_, combination);
    // The last of the lists that says something holds.
    std::u16string text;
    for (std::size_t brace = 0; brace < combination.size(); ++brace) {
        const auto entry = patterns_.entries.find({brace, combination[brace]});
        if (entry == patterns_.entries.end()) continue;
        const EntrySettings& settings = entry->second;
        const std::u16string& said = column == UnitColumn()       ? settings.unit
                                     : column == SmallestColumn() ? settings.smallest
                                     : column == LargestColumn()  ? settings.largest
                                                                  : settings.colour;
        if (!said.empty()) text = said;
    }
    return text;
}

void TrendPlan::Correct(std::size_t row, std::size_t column, std::u16string text) {
    if (text == Planned(row, column)) {
        corrections_.erase({row, column});
    } else {
        corrections_[{row, column}] = std::move(text);
    }
}

bool TrendPlan::IsCorrected(std::size_t row, std::size_t column) const {
    return corrections_.contains({row, column});
}

void TrendPlan::LeaveOut(std::size_t row, bool out) {
    if (out) {
        leftOut_.insert(row);
    } else {
        leftOut_.erase(row);
    }
}

TrendPlan::Problem TrendPlan::ProblemIn(std::size_t column, const std::u16string& text,
                                        const Archive& archive) const {
    const auto within = [&](std::size_t longest) {
        return text.size() <= longest ? Problem::None : Problem::TooLong;
    };
    if (column == kName) {
        return KeyOf(text).empty() ? Problem::NameEmpty : within(archive.longestName);
    }
    if (column == kVariable) return within(archive.longestVariable);
    if (column < UnitColumn()) return within(archive.longestText);
    if (column == UnitColumn()) return within(archive.longestUnit);
    if (text.empty()) return Problem::None;
    if (column == ColourColumn()) {
        const auto colour = project::ReadColour(text);
        return colour && project::IsColour(*colour) ? Problem::None : Problem::NoColour;
    }
    const project::NumberText number = project::ReadNumber(text);
    return number.whole && !number.tooLarge ? Problem::None : Problem::NoNumber;
}

void TrendPlan::Check(const Archive& archive) {
    problems_.clear();
    for (std::size_t row = 0; row < rows_; ++row) {
        if (IsLeftOut(row)) continue;
        for (std::size_t column = 0; column < Columns(); ++column) {
            const Problem problem = ProblemIn(column, Cell(row, column), archive);
            if (problem != Problem::None) problems_[{row, column}] = problem;
        }
    }
    CheckNames(archive);
}

void TrendPlan::CheckNames(const Archive& archive) {
    std::map<std::u16string, std::size_t> counts;
    for (const std::u16string& name : archive.names) ++counts[name];
    for (std::size_t row = 0; row < rows_; ++row) {
        if (!IsLeftOut(row)) ++counts[KeyOf(Cell(row, kName))];
    }
    for (std::size_t row = 0; row < rows_; ++row) {
        if (IsLeftOut(row) || counts[KeyOf(Cell(row, kName))] < 2) continue;
        problems_.try_emplace({row, kName}, Problem::NameDouble);
    }
}

TrendPlan::Problem TrendPlan::ProblemOf(std::size_t row, std::size_t column) const {
    const auto found = problems_.find({row, column});
    return found == problems_.end() ? Problem::None : found->second;
}

std::vector<project::NewTrend> TrendPlan::Trends() const {
    std::vector<project::NewTrend> trends;
    for (std::size_t row = 0; row < rows_; ++row) {
        if (IsLeftOut(row)) continue;
        project::NewTrend trend;
        trend.name = Cell(row, kName);
        Add(trend.values, "TrendVar", Cell(row, kVariable));
        Add(trend.values, "Unit", Cell(row, UnitColumn()));
        for (const auto& [name, column] :
             {std::pair("VMin", SmallestColumn()), std::pair("VMax", LargestColumn())}) {
            const std::u16string text = Cell(row, column);
            if (!text.empty()) trend.values.emplace_back(name, project::ReadNumber(text).number);
        }
        if (const auto colour = project::ReadColour(Cell(row, ColourColumn()))) {
            trend.values.emplace_back("VLineColor", *colour);
        }
        for (std::size_t i = 0; i < texts_.size(); ++i) {
            Add(trend.texts, patterns_.texts[i].first.c_str(), Cell(row, kFirstText + i));
        }
        trends.push_back(std::move(trend));
    }
    return trends;
}

Made MakeTrends(ado::Connection& connection, std::int32_t archive,
                const std::vector<project::NewTrend>& trends,
                const std::function<bool(std::size_t made)>& goOn) {
    project::Rows rows(connection);
    // Begun before anything is read: nobody can take a name that is found to be free.
    project::Transaction transaction(connection);
    std::ignore = rows.SeekArchive(archive);
    std::ignore = rows.Archives().Get(project::kKeyColumn);  // fails when it has gone
    std::set<std::u16string> names = NamesOf(rows, archive);
    Made made;
    for (const project::NewTrend& trend : trends) {
        if (!names.insert(KeyOf(trend.name)).second) ++made.taken;
    }
    if (made.taken > 0) return made;
    const std::int32_t group = rows.GroupOfTrends(archive);
    project::CurveColours colours(rows, archive);
    for (project::NewTrend trend : trends) {
        if (goOn && !goOn(made.ids.size())) return {};
        trend.colour = colours.Next();
        made.ids.push_back(rows.AddTrend(archive, trend));
        colours.Add(rows.Trends());
        rows.AddTrendText(group, trend);
    }
    transaction.Commit();
    made.isDone = true;
    return made;
}

Archive ReadArchive(ado::Connection& connection, std::int32_t archive) {
    project::Rows rows(connection);
    Archive known;
    known.names = NamesOf(rows, archive);
    known.longestName = static_cast<std::size_t>(rows.LongestTrendName());
    known.longestVariable = LengthOf(rows.Trends(), "TrendVar");
    known.longestUnit = LengthOf(rows.Trends(), "Unit");
    known.longestText = project::kLanguageTextLength;
    return known;
}

}  // namespace patterns
