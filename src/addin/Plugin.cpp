#include "addin/Connect.h"

// The library's root object. A class of its own, so that Connect itself can be linked elsewhere.
class ArchiveEditorPlugin final : public Connect, public KV4AddIn::IInstances {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "KV4AddIn.CKV4Extensibility/4.0" FILE "KVArchivEditor.json")
public:
    std::unique_ptr<KV4AddIn::CKV4Extensibility> MakeInstance() override {
        return std::make_unique<Connect>();
    }
};

#include "Plugin.moc"
