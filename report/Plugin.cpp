#include "report/Connect.h"

// The library's root object. A class of its own, so that Connect itself can be linked elsewhere.
class ProjectReportPlugin final : public report::Connect {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "KVProjectReport.Connect/1.0" FILE "KVProjectReport.json")
};

#include "Plugin.moc"
