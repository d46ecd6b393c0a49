#include "project/check/Finder.h"
#include "project/Number.h"

namespace project {
namespace {

class TrendCheck {
public:
    TrendCheck(ado::Connection& connection, Finder& finder)
        : finder_(finder), scan_(connection, TableOf(kTrendTable)) {}

    void Run() {
        finder_.Run(scan_, kTrendTable, [&](const ScannedRow& row) { Check(row); });
        names_.ForEachDouble(
            [&](const NameList::Entry& entry, const std::vector<std::int32_t>& others) {
                finder_.Add(Rule::NameDouble,
                            {kTrendTable, entry.id, entry.name, NameOfArchive(entry.scope)}, "Name",
                            {{"Name", entry.name}, {"", u"trend " + ListOf(others)}},
                            SomeOf(kTrendTable, others));
            });
    }

private:
    [[nodiscard]] std::u16string_view NameOfArchive(std::optional<std::int32_t> id) const {
        const auto found = id ? finder_.archives.find(*id) : finder_.archives.end();
        return found == finder_.archives.end() ? std::u16string_view() : found->second;
    }

    void Check(const ScannedRow& row) {
        const std::u16string_view name = row.Text(name_);
        const auto archive = row.Long(archive_);
        const FoundAt at = {kTrendTable, row.Id(), name, NameOfArchive(archive)};
        if (!name.empty()) {
            names_.Add(archive.value_or(0), row.Id(), name);
        } else if (name_) {
            finder_.Add(Rule::NameEmpty, at, "Name");
        }
        if (archive_ && !(archive && finder_.archives.contains(*archive))) {
            finder_.Add(Rule::TrendWithoutArchive, at, "ArchiveID",
                        {{"ArchiveID", DigitsOf(archive)}});
        }
        finder_.CheckText(Rule::TrendWithoutText, text_, row, at);
        if (variable_ && row.Text(variable_).empty()) {
            finder_.Add(Rule::VariableMissing, at, "TrendVar", {{"TrendVar", u""}});
        }
        finder_.CheckKnownColumns(scan_, row, at);
        finder_.CheckLengths(scan_, row, at);
        for (const Range& range : ranges_) CheckRange(row, at, range);
        if (row.Number(factor_) == 0.0) finder_.Add(Rule::FactorZero, at, "Factor");
        CheckHysteresis(row, at);
    }

    struct Range {
        ScanPlace lower;
        ScanPlace upper;
    };
    [[nodiscard]] std::vector<Range> Ranges() const {
        std::vector<Range> ranges;
        for (const Limits& limits : TrendLimits()) {
            ranges.push_back({scan_.Find(limits.lower), scan_.Find(limits.upper)});
        }
        return ranges;
    }

    /// A number, or a text that is one as a whole; others name variables.
    static std::optional<double> NumberAt(const ScannedRow& row, ScanPlace place) {
        if (const auto number = row.Number(place)) return number;
        const NumberText read = ReadNumber(row.Text(place));
        return read.whole ? std::optional(read.number) : std::nullopt;
    }

    void CheckRange(const ScannedRow& row, const FoundAt& at, const Range& range) {
        const auto lower = NumberAt(row, range.lower);
        const auto upper = NumberAt(row, range.upper);
        if (!lower || !upper || !(*lower > *upper)) return;
        const auto value = [&](ScanPlace place, double number) -> Finding::Value {
            const std::u16string_view text = row.Text(place);
            return {scan_.Columns()[*place].name,
                    text.empty() ? FormatNumber(number) : std::u16string(text)};
        };
        finder_.Add(Rule::RangeInverted, at, scan_.Columns()[*range.lower].name,
                    {value(range.lower, *lower), value(range.upper, *upper)});
    }

    /// A mode that is no code is told as such, and counts as none.
    void CheckHysteresis(const ScannedRow& row, const FoundAt& at) {
        const auto mode = row.Long(mode_);
        if (!amount_ || !mode || *mode < 0 || *mode > kNoHysteresis) return;
        const auto number = row.Number(amount_);
        const std::u16string amount =
            number ? FormatNumber(*number) : std::u16string(row.Text(amount_));
        if (amount.empty() == (*mode == kNoHysteresis)) return;
        finder_.Add(Rule::HysteresisIncomplete, at,
                    amount.empty() ? "Hysteresis" : "HysteresisMode",
                    {{"Hysteresis", amount}, {"HysteresisMode", DigitsOf(mode)}});
    }

    Finder& finder_;
    TableScan scan_;
    ScanPlace name_ = scan_.Find("Name");
    ScanPlace archive_ = scan_.Find("ArchiveID");
    ScanPlace text_ = scan_.Find("TextID");
    ScanPlace variable_ = scan_.Find("TrendVar");
    ScanPlace factor_ = scan_.Find("Factor");
    ScanPlace amount_ = scan_.Find("Hysteresis");
    ScanPlace mode_ = scan_.Find("HysteresisMode");
    std::vector<Range> ranges_ = Ranges();
    NameList names_;
};

}  // namespace

void CheckTrends(ado::Connection& connection, Finder& finder) {
    TrendCheck(connection, finder).Run();
}

}  // namespace project
