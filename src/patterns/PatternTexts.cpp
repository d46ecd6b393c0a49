#include "patterns/PatternTexts.h"

#include <QLocale>

#include "texts/MResourceTable.h"

namespace patterns {
namespace {

using Text = MResourceTable::Patterns;

Text TextOf(project::PatternFault::Cause cause) {
    using Cause = project::PatternFault::Cause;
    switch (cause) {
        case Cause::NotClosed:
            return Text::NotClosed;
        case Cause::Empty:
            return Text::Empty;
        case Cause::TooMany:
            return Text::TooMany;
        case Cause::NoSuchBrace:
            return Text::NoSuchBrace;
        case Cause::EntriesDiffer:
            return Text::EntriesDiffer;
    }
    return Text::NotClosed;
}

}  // namespace

QString FaultText(const project::PatternFault& fault, const QString& field,
                  const MResources::TextTable& texts) {
    const auto most = static_cast<qulonglong>(project::kMostPatternTexts);
    return texts.GetText(TextOf(fault.cause), {{u"field", QString(field).remove(u':')},
                                               {u"at", QString::number(fault.at + 1)},
                                               {u"most", QLocale().toString(most)}});
}

}  // namespace patterns
