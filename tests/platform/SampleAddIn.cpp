#include <QObject>

// The smallest library that ComponentRegistry can create.
class SampleAddIn final : public QObject {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "Sample/1.0" FILE "SampleAddIn.json")
};

#include "SampleAddIn.moc"
