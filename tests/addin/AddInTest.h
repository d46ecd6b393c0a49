#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <QList>
#include <QTableView>
#include <QTemporaryDir>

#include "addin/FakeHost.h"
#include "messages/MessageBox.h"

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

/// Drives the real plugin as a host does, on a copy of a project in a folder of its own. Every
/// message box is answered with OK, or as the test says, and kept.
class AddInTest : public testing::Test {
protected:
    AddInTest();
    ~AddInTest() override;

    /// Copies a project into the test's folder; returns its native path.
    QString CopyProject(const QString& source, const QString& name);
    [[nodiscard]] QString Brewery() {
        return CopyProject(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"),
                           QStringLiteral("Brauerei.kvs"));
    }
    /// Replaces the registry file that the plugin reads.
    void WriteRegistry(const QString& body);
    /// Initialises the plugin with a native path in the form with backslashes.
    void Initialize(const QString& nativePath);
    void InitializeByName(const QString& project);

    void Click(const QString& key, const QString& text = {});
    /// Raises a key event; false when the add-in has used the key.
    [[nodiscard]] bool KeyIsLeft(const QString& nodeKey, int keyCode, int shift);

    [[nodiscard]] QWidget* Editor();
    [[nodiscard]] QTableView* Split(int index);
    /// Rows of a split, read to the end.
    [[nodiscard]] int RowCount(int split);
    [[nodiscard]] QString Cell(int split, int row, const QString& caption);
    [[nodiscard]] bool Hourglass() const;

    QTemporaryDir folder_;
    FakeHost host_;
    KV4AddIn::CKV4Extensibility* addIn_ = nullptr;
    QObject* root_ = nullptr;
    QList<messages::Message> messages_;
    messages::MessageResult yesOrNo_ = messages::MessageResult::Yes;
    messages::MessageAnswer answer_;
};
