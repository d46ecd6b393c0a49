#include "addin/AddInTest.h"

#include <QAbstractItemModel>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPluginLoader>

#include "paths/NativePath.h"
#include "texts/Language.h"

using namespace Qt::Literals::StringLiterals;

AddInTest::AddInTest()
    : answer_([this](const messages::Message& message) {
          messages_ += message;
          const bool asks = message.buttons == messages::MessageButtons::YesNo ||
                            message.buttons == messages::MessageButtons::YesNoCancel;
          return asks ? yesOrNo_ : messages::MessageResult::Ok;
      }) {
    QPluginLoader loader(QStringLiteral(KV_ADDIN_FILE));
    root_ = loader.instance();
    addIn_ = qobject_cast<KV4AddIn::CKV4Extensibility*>(root_);
    if (addIn_ == nullptr) qFatal("%s", qPrintable(loader.errorString()));
    qputenv("KV_REGISTRY", QFile::encodeName(folder_.filePath(u"machine.reg"_s)));
    qputenv("XDG_STATE_HOME", QFile::encodeName(folder_.filePath(u"state"_s)));
    host_.container.resize(1000, 560);
    texts::SetInterfaceLanguage(platform::kLcidGerman);  // a test before may have left another
}

AddInTest::~AddInTest() {
    addIn_->CKV4Extensibility_Terminate();
}

QString AddInTest::CopyProject(const QString& source, const QString& name) {
    const QString path = folder_.filePath(name);
    EXPECT_TRUE(QFile::copy(source, path)) << path.toStdString();
    QFile(path).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    return path;
}

void AddInTest::WriteRegistry(const QString& body) {
    QFile file(folder_.filePath(u"machine.reg"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write((u"Windows Registry Editor Version 5.00\r\n\r\n"_s + body + u"\r\n"_s).toUtf8());
}

void AddInTest::Initialize(const QString& nativePath) {
    InitializeByName(QString::fromStdString(paths::ToProject(nativePath.toStdString())));
}

void AddInTest::InitializeByName(const QString& project) {
    addIn_->CKV4Extensibility_Initialize(project, {}, &host_, nullptr);
    addIn_->CKV4Extensibility_StartupComplete();
}

void AddInTest::Click(const QString& key, const QString& text) {
    const FakeHost::Entry* entry = host_.Find(key);
    host_.selected = key;
    addIn_->CKV4Extensibility_NodeClick(entry != nullptr ? entry->node
                                                         : KV4AddIn::Node{{}, key, text});
}

bool AddInTest::KeyIsLeft(const QString& nodeKey, int keyCode, int shift) {
    int code = keyCode;
    addIn_->CKV4Extensibility_NodeKeyDown({{}, nodeKey, {}}, code, shift);
    return code == keyCode;
}

QWidget* AddInTest::Editor() {
    return host_.container.findChild<QWidget*>(u"frmtabGrid"_s);
}

QTableView* AddInTest::Split(int index) {
    return host_.container.findChild<QTableView*>(u"tdbA.Splits(%1)"_s.arg(index));
}

int AddInTest::RowCount(int split) {
    QAbstractItemModel* model = Split(split)->model();
    while (model->canFetchMore({})) model->fetchMore({});
    return model->rowCount();
}

QString AddInTest::Cell(int split, int row, const QString& caption) {
    const QAbstractItemModel* model = Split(split)->model();
    if (row >= RowCount(split)) return u"(no row)"_s;
    for (int column = 0; column < model->columnCount(); ++column) {
        if (model->headerData(column, Qt::Horizontal).toString() == caption) {
            return model->index(row, column).data().toString();
        }
    }
    return u"(no column)"_s;
}

bool AddInTest::Hourglass() const {
    return QGuiApplication::overrideCursor() != nullptr;
}
