#include <algorithm>

#include "project/check/Finder.h"

namespace project {
namespace {

class TextCheck {
public:
    TextCheck(ado::Connection& connection, Finder& finder)
        : finder_(finder), scan_(connection, TableOf(kTextTable)) {
        std::sort(finder.owners.begin(), finder.owners.end());
        for (const TextGroup& group : finder.groups) groups_.insert(group.id);
        for (const std::string& language : finder.languages) {
            languages_.push_back(scan_.Find(language));
        }
    }

    void Run() {
        finder_.Run(scan_, kTextTable, [&](const ScannedRow& row) { Check(row); });
    }

private:
    void Check(const ScannedRow& row) {
        const FoundAt at = {kTextTable, row.Id(), row.Text(name_)};
        const auto [first, last] = std::equal_range(
            finder_.owners.begin(), finder_.owners.end(), TextOwner{row.Id()},
            [](const TextOwner& a, const TextOwner& b) { return a.text < b.text; });
        if (first == last) {
            // In other groups lie the texts of other editors.
            const auto group = row.Long(group_);
            if (group && groups_.contains(*group)) finder_.Add(Rule::TextWithoutOwner, at, "");
            return;
        }
        if (last - first > 1) TellShared(at, first, last);
        const std::vector<FoundRow> owners = SomeOwners(first, last);
        for (const ScanPlace language : languages_) {
            if (!row.Text(language).empty()) continue;
            const std::string& column = scan_.Columns()[*language].name;
            finder_.Add(Rule::TextMissing, at, column, {{column, u""}}, owners);
        }
        finder_.CheckLengths(scan_, row, at, owners);
    }

    using Owner = std::vector<TextOwner>::const_iterator;
    void TellShared(const FoundAt& at, Owner first, Owner last) {
        std::u16string list;
        for (Owner owner = first; owner != last; ++owner) {
            if (!list.empty()) list += u", ";
            list += (owner->isTrend ? u"trend " : u"archive ") + DigitsOf(owner->id);
        }
        finder_.Add(Rule::TextShared, at, "", {{"", list}}, SomeOwners(first, last));
    }

    static std::vector<FoundRow> SomeOwners(Owner first, Owner last) {
        std::vector<FoundRow> owners;
        for (; first != last && owners.size() < kMostOthers; ++first) {
            owners.push_back({first->isTrend ? kTrendTable : kArchiveTable, first->id});
        }
        return owners;
    }

    Finder& finder_;
    TableScan scan_;
    ScanPlace name_ = scan_.Find("Name");
    ScanPlace group_ = scan_.Find("ParentID");
    std::unordered_set<std::int32_t> groups_;
    std::vector<ScanPlace> languages_;
};

}  // namespace

void CheckTexts(ado::Connection& connection, Finder& finder) {
    if (finder.hasTexts) TextCheck(connection, finder).Run();
}

}  // namespace project
