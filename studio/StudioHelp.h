#pragma once

#include "platform/HelpFile.h"
#include "texts/MResources.h"

class QWidget;

namespace studio {

class StudioRegistry;

/// The help, as the studio itself shows it. The add-ins show their topics in windows of their own.
class StudioHelp {
public:
    /// `registry` is borrowed and outlives this.
    explicit StudioHelp(StudioRegistry& registry);
    StudioHelp(const StudioHelp&) = delete;
    StudioHelp& operator=(const StudioHelp&) = delete;

    void SetLanguage(int lcid);
    /// Shows where the help begins.
    void Show(QWidget* owner);

private:
    StudioRegistry& registry_;
    MResources::TextTable texts_;  // the viewer's
    platform::HelpFile file_;
};

}  // namespace studio
