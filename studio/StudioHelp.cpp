#include "studio/StudioHelp.h"

#include <tuple>

#include "help/HelpViewer.h"
#include "platform/HelpTopics.h"
#include "studio/StudioRegistry.h"

namespace studio {

using namespace Qt::Literals::StringLiterals;

StudioHelp::StudioHelp(StudioRegistry& registry) : registry_(registry) {
    file_.SetViewer(help::MakeViewer(texts_));
}

void StudioHelp::SetLanguage(int lcid) {
    texts_.SetLanguage(static_cast<std::uint32_t>(lcid));
}

void StudioHelp::Show(QWidget* owner) {
    file_.SetPath(registry_.HelpFile());
    // Our own viewer has pages for everything.
    std::ignore = file_.ShowTopic(platform::kHelpContents, owner);
}

}  // namespace studio
