#include <KV4AddIn/KV4AddIn.h>

#include <QFile>
#include <QObject>
#include <QPlainTextEdit>
#include <QPointer>
#include <QWidget>

using namespace Qt::Literals::StringLiterals;

/// Notes on the plant: a node "Notes" in the tree, and a text in the editor area that is kept in a
/// file beside the project. The least that an add-in does: it adds its node when a project is
/// opened, shows its window when the node is clicked, and gives everything back at the end.
class PlantNotes final : public QObject, public KV4AddIn::CKV4Extensibility {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "KV4AddIn.CKV4Extensibility/4.0" FILE "PlantNotes.json")
    Q_INTERFACES(KV4AddIn::CKV4Extensibility)
public:
    void CKV4Extensibility_Initialize(const QString& projectName, const QString& /*secondName*/,
                                      KV4AddIn::IHost* host,
                                      KV4AddIn::IHost* /*secondHost*/) override {
        host_ = host;
        // A project's file comes with backslashes; a registered project as its name alone, and
        // what is noted on such a one is not kept.
        file_ = projectName.contains(u'\\') ? projectName + u".notes.txt"_s : QString();
        file_.replace(u'\\', u'/');
        host_->AddNode(QString(), tr("Notes"), kKey, QString(), QString(), {});
    }

    void CKV4Extensibility_StartupComplete() override {}

    void CKV4Extensibility_Terminate() override {
        Keep();
        delete editor_;
        host_ = nullptr;
    }

    void CKV4Extensibility_Deactivate() override { Keep(); }

    void CKV4Extensibility_NodeClick(const KV4AddIn::Node& node) override {
        if (node.key == kKey) {
            Show();
        } else if (editor_ != nullptr) {
            Keep();
            editor_->hide();
        }
    }

    // What an add-in has no use for stays empty.
    void CKV4Extensibility_NodeDblClick(const KV4AddIn::Node& /*node*/) override {}
    void CKV4Extensibility_NodeExpand(const KV4AddIn::Node& /*node*/) override {}
    void CKV4Extensibility_NodeMouseDown(const KV4AddIn::Node& /*node*/, int /*button*/,
                                         int /*shift*/, double /*x*/, double /*y*/) override {}
    void CKV4Extensibility_NodeMouseMove(const KV4AddIn::Node& /*node*/, int /*button*/,
                                         int /*shift*/, double /*x*/, double /*y*/) override {}
    void CKV4Extensibility_NodeMouseUp(const KV4AddIn::Node& /*node*/, int /*button*/,
                                       int /*shift*/, double /*x*/, double /*y*/) override {}
    void CKV4Extensibility_NodeKeyDown(const KV4AddIn::Node& /*node*/, int& /*keyCode*/,
                                       int& /*shift*/) override {}
    void CKV4Extensibility_NodeKeyPress(const KV4AddIn::Node& /*node*/,
                                        int& /*keyAscii*/) override {}
    void CKV4Extensibility_NodeKeyUp(const KV4AddIn::Node& /*node*/, int& /*keyCode*/,
                                     int& /*shift*/) override {}
    QVariant CKV4Extensibility_GetMessage(const QString& /*sender*/, const QString& /*message*/,
                                          const QVariant& /*value*/) override {
        return {};
    }

private:
    // Keys are unique in the whole tree: one's own name in front keeps clear of the others'.
    static inline const QString kKey = u"KVPlantNotes"_s;

    void Show() {
        if (editor_ == nullptr) {
            editor_ = new QPlainTextEdit(host_->EditorParent());
            QFile file(file_);
            if (file.open(QIODevice::ReadOnly)) {
                editor_->setPlainText(QString::fromUtf8(file.readAll()));
            }
            editor_->document()->setModified(false);
        }
        editor_->show();
        editor_->raise();
    }

    void Keep() {
        if (editor_ == nullptr || !editor_->document()->isModified()) return;
        const QByteArray text = editor_->toPlainText().toUtf8();
        QFile file(file_);
        const bool isKept = !file_.isEmpty() && file.open(QIODevice::WriteOnly) &&
                            file.write(text) == text.size() && file.flush();
        if (!isKept) {
            qWarning("KVPlantNotes: the notes are not kept in '%s': %s", qUtf8Printable(file_),
                     qUtf8Printable(file.errorString()));
            return;
        }
        editor_->document()->setModified(false);
    }

    KV4AddIn::IHost* host_ = nullptr;  // borrowed from Initialize to Terminate
    QString file_;                     // empty: nothing is kept
    QPointer<QPlainTextEdit> editor_;
};

#include "PlantNotes.moc"
