#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QSet>
#include <QStringList>
#include <QTemporaryDir>

#include "dialogs/DialogServices.h"
#include "languages/MResources.h"
#include "platform/MessageBox.h"
#include "platform/Registry.h"

/// The editor window's lists, and what the dialogs did to them.
class FakeNames final : public INameRegistry {
public:
    bool TestNameInGroup(QStringView group, const QString& name) override {
        asked << QStringLiteral("%1 %2").arg(group, name);
        return inUse.contains(name);
    }
    void ChangeNameInGroup(QStringView group, const QString& oldName,
                           const QString& newName) override {
        changed << QStringLiteral("%1 %2>%3").arg(group, oldName, newName);
    }

    QSet<QString> inUse;
    QStringList asked;
    QStringList changed;
};

/// What a dialog borrows, in one interface language. Message boxes are answered and kept.
class DialogSurroundings {
public:
    explicit DialogSurroundings(std::uint32_t language = MResources::kGerman)
        : answer_([this](const platform::Message& message) {
              messages << message.text;
              return platform::MessageResult::Ok;
          }) {
        platform::Registry registry({folder.filePath(QStringLiteral("machine.reg")), {}});
        registry.WriteDword(MResources::kStudioKey, u"LCID", language);
        texts.Initialize(registry);
        services.projectFolder = folder.path().replace(u'/', u'\\');
        services.showHelp = [this](int topic, QWidget*) { topics << topic; };
    }

    QTemporaryDir folder;
    MResources::TextTable texts;
    FakeNames names;
    DialogServices services{texts, names, {}, {}, {}, {}, {}};
    QStringList messages;
    QList<int> topics;

private:
    platform::MessageAnswer answer_;
};
