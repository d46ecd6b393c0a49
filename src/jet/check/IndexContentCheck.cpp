#include "jet/check/IndexContentCheck.h"

#include <algorithm>
#include <vector>

namespace jet::check {
namespace {

constexpr std::uint64_t kMostAtOnce = std::uint64_t{1} << 21;  // entries; 16 bytes each, twice

/// An entry, as far as comparing needs it.
struct Entry {
    std::uint32_t row;  // pointer
    std::uint64_t hash;
    [[nodiscard]] auto operator<=>(const Entry&) const = default;
};

/// Names the rows whose entries are missing, wrong or too many.
class ContentDiff {
public:
    ContentDiff(PageCache& cache, Reporter& report, PageLedger& pages, const CheckedTable& table,
                std::size_t realIndex, const Unreadable& unreadable)
        : cache_(cache),
          report_(report),
          pages_(pages),
          table_(table),
          realIndex_(realIndex),
          unreadable_(unreadable) {}

    /// `count` says about how many entries there are.
    void Run(std::uint64_t count) {
        const std::uint64_t parts = 1 + count / kMostAtOnce;
        for (std::uint64_t part = 0; part < parts && !report_.IsStopped(); ++part) {
            const auto isInPart = [&](RowId row) { return row.Pointer() % parts == part; };
            // Everything but the comparison has been reported by those who summed up.
            report_.SetQuiet(true);
            GatherWanted(isInPart);
            GatherStored(isInPart);
            report_.SetQuiet(false);
            Compare();
        }
    }

private:
    template <typename Filter>
    void GatherWanted(const Filter& isInPart) {
        wanted_.clear();
        RowWalker rows(cache_, report_, pages_, table_);
        IndexKey key;
        while (rows.Next()) {
            if (!isInPart(rows.Id()) || unreadable_.Contains(rows.Id())) continue;
            const Result<RowView> view = RowView::Parse(Format::Jet4, table_.def, rows.Row());
            if (!view.IsOk()) continue;
            const RealIndex& index = table_.def.realIndexes[realIndex_];
            const Status made = MakeIndexKey(cache_, table_.def, index, *view, key);
            if (!made.IsOk() || !key.isInIndex) continue;
            wanted_.push_back({rows.Id().Pointer(), IndexSum::Hash(key.bytes, rows.Id())});
        }
        std::sort(wanted_.begin(), wanted_.end());
    }

    template <typename Filter>
    void GatherStored(const Filter& isInPart) {
        stored_.clear();
        const auto add = [&](std::string_view key, RowId row) {
            if (!isInPart(row) || unreadable_.Contains(row)) return;
            stored_.push_back({row.Pointer(), IndexSum::Hash(key, row)});
        };
        IndexWalk(cache_, report_, pages_, table_, realIndex_, add).Run();
        std::sort(stored_.begin(), stored_.end());
    }

    void Compare() {
        auto wanted = wanted_.begin();
        auto stored = stored_.begin();
        while (wanted != wanted_.end() || stored != stored_.end()) {
            if (stored == stored_.end() || (wanted != wanted_.end() && *wanted < *stored)) {
                // The row may have an entry all the same, with another key.
                const bool isOther = stored != stored_.end() && stored->row == wanted->row;
                Report(wanted->row, isOther ? "the entry of the row has another key than the row"
                                            : "the row has no entry");
                if (isOther) ++stored;
                ++wanted;
            } else if (wanted == wanted_.end() || *stored < *wanted) {
                const bool isOther = wanted != wanted_.end() && wanted->row == stored->row;
                Report(stored->row, isOther ? "the entry of the row has another key than the row"
                                            : "there is an entry for this row, but no such row");
                if (isOther) ++wanted;
                ++stored;
            } else {
                ++wanted;
                ++stored;
            }
        }
    }

    void Report(std::uint32_t row, const char* what) {
        report_.Error(Subject::Indexes, table_.IndexName(realIndex_) + ", " +
                                            RowText(RowId::FromPointer(row)) + ": " + what);
    }

    PageCache& cache_;
    Reporter& report_;
    PageLedger& pages_;
    const CheckedTable& table_;
    std::size_t realIndex_;
    const Unreadable& unreadable_;
    std::vector<Entry> wanted_;
    std::vector<Entry> stored_;
};

}  // namespace

void CheckIndex(PageCache& cache, Reporter& report, PageLedger& pages, const CheckedTable& table,
                std::size_t realIndex, const RowSums& rows) {
    const RealIndex& index = table.def.realIndexes[realIndex];
    const std::string name = table.IndexName(realIndex);
    IndexSum stored;
    const auto add = [&](std::string_view key, RowId row) { stored.Add(key, row); };
    IndexWalk walk(cache, report, pages, table, realIndex, add);
    walk.Run();
    if (report.IsStopped()) return;
    if (walk.DistinctKeys() != index.uniqueCount) {
        report.Warn(Subject::Counters, name + ": states " + std::to_string(index.uniqueCount) +
                                           " different keys and has " +
                                           std::to_string(walk.DistinctKeys()));
    }
    if (!CanMakeKeys(table.def, index)) {
        report.Warn(Subject::Indexes, name +
                                          ": its sort order is not known; its entries have not "
                                          "been compared with the rows");
        return;
    }
    const IndexSum& wanted = rows.indexes[realIndex];
    if (stored == wanted) return;
    if (report.IsFull(Subject::Indexes)) {
        report.Error(Subject::Indexes, name + ": does not agree with the rows");
        return;
    }
    ContentDiff(cache, report, pages, table, realIndex, rows.unreadable)
        .Run(std::max(stored.count, wanted.count));
}

}  // namespace jet::check
