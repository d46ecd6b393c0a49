#include "report/ReportTexts.h"

#include "platform/Error.h"
#include "platform/Locale.h"
#include "platform/Registry.h"

namespace report {

ReportTexts::ReportTexts(platform::Registry& registry) {
    try {
        table_.Initialize(registry);
    } catch (const platform::Error&) {
        // There are texts all the same; whoever needs the registry's other values tells.
    }
    locale_ = platform::NumberLocale(QLocale(table_.Language().locale));
    // As the editor shows them, all numbers alike.
    locale_.setNumberOptions(QLocale::OmitGroupSeparator);
}

}  // namespace report
