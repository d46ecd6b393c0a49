#pragma once

#include "KV4AddIn/KV4AddIn.h"

class QKeyEvent;
class QMouseEvent;
class QPoint;

namespace studio {

class ProjectAddIns;

/// The virtual-key number of a key; 0 for a key that has none.
[[nodiscard]] int VirtualKey(int qtKey, bool onKeypad);
/// KV4AddIn::ShiftState of Qt's modifiers.
[[nodiscard]] int ShiftOf(Qt::KeyboardModifiers modifiers);
/// Sum of the KV4AddIn::MouseButton of Qt's buttons.
[[nodiscard]] int ButtonsOf(Qt::MouseButtons buttons);
/// The character of a key press, 0 when it makes none.
[[nodiscard]] int KeyAscii(const QKeyEvent& event);

/// Turns the tree's Qt events into the add-in events and raises them in every add-in, one after
/// the other. The functions for keys return true when an add-in has used the key; the add-ins
/// behind it are not asked then.
class TreeEvents {
public:
    explicit TreeEvents(ProjectAddIns& addIns) noexcept : addIns_(addIns) {}

    void Click(const KV4AddIn::Node& node);
    void DblClick(const KV4AddIn::Node& node);
    void Expand(const KV4AddIn::Node& node);
    /// `position` is relative to the upper left corner of the tree, in pixels.
    void MouseDown(const KV4AddIn::Node& node, int button, int shift, const QPoint& position);
    void MouseMove(const KV4AddIn::Node& node, int buttons, int shift, const QPoint& position);
    void MouseUp(const KV4AddIn::Node& node, int button, int shift, const QPoint& position);

    [[nodiscard]] bool KeyDown(const KV4AddIn::Node& node, const QKeyEvent& event);
    [[nodiscard]] bool KeyPress(const KV4AddIn::Node& node, const QKeyEvent& event);
    [[nodiscard]] bool KeyUp(const KV4AddIn::Node& node, const QKeyEvent& event);

private:
    ProjectAddIns& addIns_;
};

}  // namespace studio
