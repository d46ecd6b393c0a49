#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QDialog>
#include <QDir>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QStringList>
#include <QTabWidget>
#include <QTemporaryDir>

#include "dialogs/DialogServices.h"
#include "messages/MessageBox.h"
#include "platform/Registry.h"
#include "texts/MResources.h"

/// The editor window's lists, and what the dialogs did to them.
class FakeNames final : public INameRegistry {
public:
    bool TestNameInGroup(QStringView group, const QString& name) override {
        asked << QStringLiteral("%1 %2").arg(group, name);
        return inUse.contains(name);
    }
    [[nodiscard]] bool IsSameName(const QString& a, const QString& b) const override {
        return a.compare(b, Qt::CaseInsensitive) == 0;
    }
    void ChangeNameInGroup(QStringView group, const QString& oldName,
                           const QString& newName) override {
        changed << QStringLiteral("%1 %2>%3").arg(group, oldName, newName);
    }

    QSet<QString> inUse;
    QStringList asked;
    QStringList changed;
};

/// The letters that lead to several controls of a page, or from there to a page or button, as
/// "page: letter"; "page: text" for a label or option without one.
inline QStringList AccessKeyFaults(const QDialog& dialog, const QTabWidget& tabs) {
    QStringList faults;
    for (int page = 0; page < tabs.count(); ++page) {
        QStringList texts;
        for (int i = 0; i < tabs.count(); ++i) texts << tabs.tabText(i);
        for (const auto* label : tabs.widget(page)->findChildren<QLabel*>()) {
            if (label->buddy() != nullptr) texts << label->text();
        }
        for (const auto* button : dialog.findChildren<QAbstractButton*>()) {
            const bool elsewhere =
                tabs.isAncestorOf(button) && !tabs.widget(page)->isAncestorOf(button);
            const bool isChoice = qobject_cast<const QPushButton*>(button) == nullptr;
            if (elsewhere || button->text().isEmpty()) continue;
            if (isChoice || button->text().contains(u'&')) texts << button->text();
        }
        QSet<QString> keys;
        for (const QString& text : texts) {
            const QString key = QKeySequence::mnemonic(text).toString();
            if (key.isEmpty() || keys.contains(key)) {
                faults << QStringLiteral("%1: %2").arg(page).arg(key.isEmpty() ? text
                                                                               : key.right(1));
            }
            keys.insert(key);
        }
    }
    return faults;
}

/// What a dialog borrows, in one interface language. Message boxes are answered and kept.
class DialogSurroundings {
public:
    explicit DialogSurroundings(std::uint32_t language = MResources::kGerman)
        : answer_([this](const messages::Message& message) {
              messages << message.text;
              return messages::MessageResult::Ok;
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
    messages::MessageAnswer answer_;
};
