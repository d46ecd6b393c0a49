#include "projectdb/FunctionCounters.h"

namespace projectdb {

using namespace Qt::Literals::StringLiterals;

void FunctionCounters::Add(const QString& function, int archives, int trends) {
    Set(function, archives_ + archives, trends_ + trends);
}

void FunctionCounters::Set(const QString& function, int archives, int trends) {
    archives_ = archives;
    trends_ = trends;
    const QString first = u"Func: "_s + function;
    if (status_.PanelText(1) != first) status_.SetPanelText(1, first);
    // No blank behind these two colons: that is how the panels are known.
    status_.SetPanelText(2, u"Archive:"_s + QString::number(archives_));
    status_.SetPanelText(3, u"Trends:"_s + QString::number(trends_));
}

}  // namespace projectdb
