#include "commands/Statistic.h"

#include "projectdb/ProjectRows.h"

namespace Statistic {

using namespace Qt::Literals::StringLiterals;

void Show(ADOArchiv& environment, projectdb::FunctionCounters& counters) {
    projectdb::ProjectRows rows(environment);
    const auto trends = static_cast<int>(rows.Trends().RecordCount());
    const auto archives = static_cast<int>(rows.Archives().RecordCount());
    counters.Set(u"Statistik"_s, archives, trends);
}

}  // namespace Statistic
