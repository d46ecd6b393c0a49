#include <QObject>

#include "studio/RecordingAddIn.h"

// A sample add-in for the program itself. It shows what it is told and cannot be used at all while
// the environment variable KV_SAMPLE_THROWS is set.
class SamplePlugin final : public QObject, public RecordingAddIn {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "KV4AddIn.CKV4Extensibility/4.0" FILE "SamplePlugin.json")
    Q_INTERFACES(KV4AddIn::CKV4Extensibility)
public:
    SamplePlugin() {
        onClick = [this] {
            if (qEnvironmentVariableIsSet("KV_SAMPLE_THROWS")) throw std::runtime_error("sample");
            if (editor) editor->setText(events.join(u'\n'));
        };
    }
};

#include "SamplePlugin.moc"
