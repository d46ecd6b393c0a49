#include "ado/AdoError.h"
#include "exchange/Apply.h"
#include "exchange/Plan.h"
#include "exchange/SheetRows.h"
#include "project/Transaction.h"

namespace exchange {

std::vector<Plan> MakePlans(ado::Connection& connection, std::span<const InputRows> sheets,
                            const PlanOptions& options, const GoOn& goOn) {
    std::vector<Plan> plans;
    // Of a sheet the rows before it have been done.
    const auto planNext = [&](const ArchiveNames* before) {
        std::size_t earlier = 0;
        for (std::size_t i = 0; i < plans.size(); ++i) earlier += sheets[i].Count();
        const GoOn next = [&](std::size_t rows) { return goOn(earlier + rows); };
        plans.push_back(
            MakePlan(connection, sheets[plans.size()], options, before, goOn ? next : goOn));
    };
    {
        const ado::OneState state(connection);
        while (plans.size() < sheets.size()) {
            planNext(nullptr);
            if (plans.back().HasWork() && sheets.size() > plans.size()) break;
        }
    }
    if (plans.size() == sheets.size()) return plans;
    const project::Transaction tried(connection);
    const ArchiveNames before(connection);
    plans.clear();
    while (plans.size() < sheets.size()) {
        planNext(&before);
        if (plans.size() == sheets.size()) break;
        const Outcome outcome =
            Apply(connection, {&plans.back(), 1}, [&](std::size_t) { return !goOn || goOn(0); });
        if (outcome == Outcome::GivenUp) throw GivenUp();
        if (outcome == Outcome::Stale) {
            throw ado::AdoError(ado::ErrorNumber::kRowNotLocated,
                                "The project is not what it was a moment ago.");
        }
    }
    return plans;
}

}  // namespace exchange
