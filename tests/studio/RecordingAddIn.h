#pragma once

#include <functional>
#include <QLabel>
#include <QPointer>
#include <QSet>
#include <QStringList>

#include "KV4AddIn/KV4AddIn.h"

/// An add-in that writes down every event as one line of text, and behaves like an editor in small:
/// a root "SMP0" with numbered children, filled and given an editor window at its first use, which
/// fails as long as `failUse` is set.
class RecordingAddIn : public KV4AddIn::CKV4Extensibility {
public:
    QStringList events;
    QSet<int> usedKeys;             // key codes that NodeKeyDown uses up
    QSet<int> usedChars;            // the same for NodeKeyPress
    std::function<void()> onClick;  // runs in NodeClick
    bool failUse = false;
    bool recordMoves = false;
    bool comparesProjects = true;
    int childCount = 3;
    KV4AddIn::IHost* host = nullptr;
    QPointer<QLabel> editor;

    /// The events since the last call.
    QStringList Take() { return std::exchange(events, {}); }

    void CKV4Extensibility_Initialize(const QString& projectName, const QString& secondName,
                                      KV4AddIn::IHost* theHost,
                                      KV4AddIn::IHost* secondHost) override {
        events += QStringLiteral("Initialize %1 %2 %3")
                      .arg(projectName, secondName)
                      .arg(secondHost == nullptr ? 0 : 1);
        host = theHost;
        host->AddNode({}, QStringLiteral("Samples"), QStringLiteral("SMP0"), QStringLiteral("0"),
                      QStringLiteral("ico"), {true, true, true, false});
    }
    void CKV4Extensibility_StartupComplete() override {
        events += QStringLiteral("StartupComplete");
    }
    void CKV4Extensibility_Terminate() override {
        events += QStringLiteral("Terminate");
        if (host != nullptr) host->RemoveNode(QStringLiteral("SMP0"));
        delete editor;
        host = nullptr;
    }
    void CKV4Extensibility_Deactivate() override { events += QStringLiteral("Deactivate"); }
    void CKV4Extensibility_NodeClick(const KV4AddIn::Node& node) override {
        events += QStringLiteral("NodeClick ") + node.parentKey + u'/' + node.key;
        Use();
        if (editor) editor->setText(node.text);
        if (onClick) onClick();
    }
    void CKV4Extensibility_NodeDblClick(const KV4AddIn::Node& node) override {
        events += QStringLiteral("NodeDblClick ") + node.key;
    }
    void CKV4Extensibility_NodeExpand(const KV4AddIn::Node& node) override {
        events += QStringLiteral("NodeExpand ") + node.key;
        Use();
    }
    void CKV4Extensibility_NodeMouseDown(const KV4AddIn::Node& node, int button, int shift,
                                         double x, double y) override {
        NoteMouse(QStringLiteral("NodeMouseDown"), node, button, shift, x, y);
    }
    void CKV4Extensibility_NodeMouseMove(const KV4AddIn::Node& node, int button, int shift,
                                         double x, double y) override {
        if (recordMoves) {
            NoteMouse(QStringLiteral("NodeMouseMove"), node, button, shift, x, y);
        }
    }
    void CKV4Extensibility_NodeMouseUp(const KV4AddIn::Node& node, int button, int shift, double x,
                                       double y) override {
        NoteMouse(QStringLiteral("NodeMouseUp"), node, button, shift, x, y);
    }
    void CKV4Extensibility_NodeKeyDown(const KV4AddIn::Node& node, int& keyCode,
                                       int& shift) override {
        events += QStringLiteral("NodeKeyDown %1 %2 %3").arg(node.key).arg(keyCode).arg(shift);
        if (usedKeys.contains(keyCode)) keyCode = 0;
    }
    void CKV4Extensibility_NodeKeyPress(const KV4AddIn::Node& node, int& keyAscii) override {
        events += QStringLiteral("NodeKeyPress %1 %2").arg(node.key).arg(keyAscii);
        if (usedChars.contains(keyAscii)) keyAscii = 0;
    }
    void CKV4Extensibility_NodeKeyUp(const KV4AddIn::Node& node, int& keyCode,
                                     int& shift) override {
        events += QStringLiteral("NodeKeyUp %1 %2 %3").arg(node.key).arg(keyCode).arg(shift);
    }
    QVariant CKV4Extensibility_GetMessage(const QString& sender, const QString& message,
                                          const QVariant& value) override {
        if (message != KV4AddIn::kCompare) return {};
        events += QStringLiteral("%1 %2 %3").arg(sender, message, value.toStringList().join(u'|'));
        return comparesProjects;
    }

private:
    void NoteMouse(const QString& event, const KV4AddIn::Node& node, int button, int shift,
                   double /*x*/, double /*y*/) {
        events += QStringLiteral("%1 %2 %3 %4").arg(event, node.key).arg(button).arg(shift);
    }

    void Use() {
        if (editor || failUse) return;
        editor = new QLabel;
        editor->setObjectName(QStringLiteral("lblSample"));
        editor->setParent(host->EditorParent());
        for (int i = 1; i <= childCount; ++i) {
            host->AddNode(QStringLiteral("SMP0"), QStringLiteral("Sample %1").arg(i),
                          QStringLiteral("SMPL%1").arg(i), {}, QStringLiteral("ico"), {});
        }
        host->ExpandNode(QStringLiteral("SMP0"));
    }
};
