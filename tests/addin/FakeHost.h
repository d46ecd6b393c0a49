#pragma once

#include <KV4AddIn/KV4AddIn.h>

#include <functional>
#include <QHash>
#include <QList>
#include <QStringList>
#include <QWidget>

/// A host that keeps its tree in a list and writes down what it is asked to do.
class FakeHost final : public KV4AddIn::IHost, public KV4AddIn::IVariableHost {
public:
    struct Entry {
        KV4AddIn::Node node;
        QString position;
        QString iconKey;
        KV4AddIn::NodeFlags flags;
    };

    void RegisterIcon(const QString& iconKey, const QIcon& picture) override {
        Note(u"icon", iconKey);
        icons[iconKey] = picture;
    }
    bool AddNode(const QString& parentKey, const QString& text, const QString& key,
                 const QString& position, const QString& iconKey,
                 const KV4AddIn::NodeFlags& flags) override {
        Note(u"add", key);
        if (key.isEmpty() || Find(key) != nullptr) return false;
        if (!parentKey.isEmpty() && Find(parentKey) == nullptr) return false;
        nodes += Entry{{parentKey, key, text}, position, iconKey, flags};
        return true;
    }
    [[nodiscard]] std::optional<QStringList> ChildKeys(const QString& key) const override {
        QStringList keys;
        for (const Entry& entry : nodes) {
            if (entry.node.parentKey == key) keys += entry.node.key;
        }
        if (keys.isEmpty()) return std::nullopt;
        return keys;
    }
    bool RemoveNode(const QString& key) override {
        Note(u"remove", key);
        return nodes.removeIf([&](const Entry& entry) {
            return entry.node.key == key || entry.node.parentKey == key;
        }) > 0;
    }
    bool RefreshNode(const QString& key, const std::optional<QString>& text,
                     const std::optional<QString>& iconKey) override {
        Note(text || iconKey ? u"change" : u"refresh", key);
        return Find(key) != nullptr;
    }
    bool ExpandNode(const QString& key) override {
        Note(u"expand", key);
        return Find(key) != nullptr;
    }
    bool SelectNode(const QString& key) override {
        Note(u"select", key);
        selected = key;
        return Find(key) != nullptr;
    }
    [[nodiscard]] std::optional<KV4AddIn::Node> SelectedNode() const override {
        const Entry* entry = Find(selected);
        if (entry != nullptr) return entry->node;
        if (!selected.isEmpty()) return KV4AddIn::Node{{}, selected, selected};  // of others
        return std::nullopt;
    }
    [[nodiscard]] QWidget* EditorParent() override { return &container; }
    [[nodiscard]] std::optional<QString> ChooseVariable(QWidget*, const QString& current) override {
        Note(u"choose", current);
        return variable;
    }
    [[nodiscard]] std::optional<QStringList> ChooseVariables(
        QWidget* owner, const KV4AddIn::VariableChoice& choice) override {
        if (whileChoosing) whileChoosing(owner, choice);
        if (choice.several && !variables.isEmpty()) return variables;
        const auto chosen = ChooseVariable(owner, choice.current);
        if (!chosen) return std::nullopt;
        return QStringList{*chosen};
    }

    [[nodiscard]] const Entry* Find(const QString& key) const {
        for (const Entry& entry : nodes) {
            if (entry.node.key == key) return &entry;
        }
        return nullptr;
    }
    [[nodiscard]] QStringList ChildTexts(const QString& key) const {
        QStringList texts;
        for (const Entry& entry : nodes) {
            if (entry.node.parentKey == key) texts += entry.node.text;
        }
        return texts;
    }

    QList<Entry> nodes;
    QStringList calls;  // the operation and the key
    QHash<QString, QIcon> icons;
    QString selected;
    QWidget container;
    QWidget tree;                     // the host's own window beside the editor
    std::optional<QString> variable;  // what the user picks in the variable browser
    QStringList variables;            // where he may pick several
    std::function<void(QWidget* owner, const KV4AddIn::VariableChoice& choice)> whileChoosing;

private:
    void Note(QStringView operation, const QString& key) {
        calls += operation.toString() + QLatin1Char(' ') + key;
    }
};
