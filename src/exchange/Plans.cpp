#include "ado/AdoError.h"
#include "exchange/Apply.h"
#include "exchange/Plan.h"
#include "exchange/SheetRows.h"
#include "project/Transaction.h"

namespace exchange {

std::vector<Plan> MakePlans(ado::Connection& connection, std::span<const InputRows> sheets,
                            const PlanOptions& options) {
    std::vector<Plan> plans;
    {
        const ado::OneState state(connection);
        for (const InputRows& sheet : sheets) {
            plans.push_back(MakePlan(connection, sheet, options));
            if (plans.back().HasWork() && sheets.size() > plans.size()) break;
        }
    }
    if (plans.size() == sheets.size()) return plans;
    const project::Transaction tried(connection);
    const ArchiveNames before(connection);
    plans.clear();
    for (const InputRows& sheet : sheets) {
        plans.push_back(MakePlan(connection, sheet, options, &before));
        const bool isLast = plans.size() == sheets.size();
        if (!isLast && !Apply(connection, plans.back())) {
            throw ado::AdoError(ado::ErrorNumber::kRowNotLocated,
                                "The project is not what it was a moment ago.");
        }
    }
    return plans;
}

}  // namespace exchange
