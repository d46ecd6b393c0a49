#include "studio/TreeEvents.h"

#include <QKeyEvent>
#include <QPoint>
#include <span>

#include "studio/ProjectAddIns.h"

namespace studio {
namespace {

using KV4AddIn::CKV4Extensibility;
using KV4AddIn::Node;

struct KeyRow {
    int qtKey;
    int virtualKey;
};

// Keys that are neither letters, digits nor F1 to F24; those are computed.
constexpr KeyRow kKeys[] = {
    {Qt::Key_Backspace, 8},    {Qt::Key_Tab, 9},           {Qt::Key_Backtab, 9},
    {Qt::Key_Clear, 12},       {Qt::Key_Return, 13},       {Qt::Key_Enter, 13},
    {Qt::Key_Shift, 16},       {Qt::Key_Control, 17},      {Qt::Key_Alt, 18},
    {Qt::Key_AltGr, 18},       {Qt::Key_Pause, 19},        {Qt::Key_CapsLock, 20},
    {Qt::Key_Escape, 27},      {Qt::Key_Space, 32},        {Qt::Key_PageUp, 33},
    {Qt::Key_PageDown, 34},    {Qt::Key_End, 35},          {Qt::Key_Home, 36},
    {Qt::Key_Left, 37},        {Qt::Key_Up, 38},           {Qt::Key_Right, 39},
    {Qt::Key_Down, 40},        {Qt::Key_Select, 41},       {Qt::Key_Execute, 43},
    {Qt::Key_Print, 44},       {Qt::Key_Insert, 45},       {Qt::Key_Delete, 46},
    {Qt::Key_Help, 47},        {Qt::Key_Super_L, 91},      {Qt::Key_Super_R, 92},
    {Qt::Key_Meta, 91},        {Qt::Key_Menu, 93},         {Qt::Key_Asterisk, 106},
    {Qt::Key_NumLock, 144},    {Qt::Key_ScrollLock, 145},  {Qt::Key_Semicolon, 186},
    {Qt::Key_Udiaeresis, 186}, {Qt::Key_Equal, 187},       {Qt::Key_Plus, 187},
    {Qt::Key_Comma, 188},      {Qt::Key_Minus, 189},       {Qt::Key_Period, 190},
    {Qt::Key_Slash, 191},      {Qt::Key_NumberSign, 191},  {Qt::Key_QuoteLeft, 192},
    {Qt::Key_Odiaeresis, 192}, {Qt::Key_BracketLeft, 219}, {Qt::Key_ssharp, 219},
    {Qt::Key_Backslash, 220},  {Qt::Key_AsciiCircum, 220}, {Qt::Key_BracketRight, 221},
    {Qt::Key_Apostrophe, 222}, {Qt::Key_Adiaeresis, 222},  {Qt::Key_Less, 226},
};

// The numeric keypad has numbers of its own for what the other keys have too.
constexpr KeyRow kKeypad[] = {
    {Qt::Key_Asterisk, 106}, {Qt::Key_Plus, 107},   {Qt::Key_Comma, 110},
    {Qt::Key_Minus, 109},    {Qt::Key_Period, 110}, {Qt::Key_Slash, 111},
};

int Find(std::span<const KeyRow> rows, int qtKey) {
    for (const KeyRow& row : rows) {
        if (row.qtKey == qtKey) return row.virtualKey;
    }
    return 0;
}

}  // namespace

int VirtualKey(int qtKey, bool onKeypad) {
    if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) {
        return (onKeypad ? 96 : 48) + (qtKey - Qt::Key_0);
    }
    if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) return 65 + (qtKey - Qt::Key_A);
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24) return 112 + (qtKey - Qt::Key_F1);
    const int keypad = onKeypad ? Find(kKeypad, qtKey) : 0;
    return keypad != 0 ? keypad : Find(kKeys, qtKey);
}

int ShiftOf(Qt::KeyboardModifiers modifiers) {
    int shift = KV4AddIn::kShiftNone;
    if (modifiers.testFlag(Qt::ShiftModifier)) shift += KV4AddIn::kShift;
    if (modifiers.testFlag(Qt::ControlModifier)) shift += KV4AddIn::kCtrl;
    if (modifiers.testFlag(Qt::AltModifier)) shift += KV4AddIn::kAlt;
    return shift;
}

int ButtonsOf(Qt::MouseButtons buttons) {
    int sum = 0;
    if (buttons.testFlag(Qt::LeftButton)) sum += KV4AddIn::kLeftButton;
    if (buttons.testFlag(Qt::RightButton)) sum += KV4AddIn::kRightButton;
    if (buttons.testFlag(Qt::MiddleButton)) sum += KV4AddIn::kMiddleButton;
    return sum;
}

int KeyAscii(const QKeyEvent& event) {
    // Qt gives it the text 127, which is the character of Ctrl+Backspace.
    if (event.key() == Qt::Key_Delete) return 0;
    const QString text = event.text();
    return text.size() == 1 ? text.front().unicode() : 0;
}

void TreeEvents::Click(const Node& node) {
    addIns_.ForEach("NodeClick",
                    [&](CKV4Extensibility& a) { a.CKV4Extensibility_NodeClick(node); });
}

void TreeEvents::DblClick(const Node& node) {
    addIns_.ForEach("NodeDblClick",
                    [&](CKV4Extensibility& a) { a.CKV4Extensibility_NodeDblClick(node); });
}

void TreeEvents::Expand(const Node& node) {
    addIns_.ForEach("NodeExpand",
                    [&](CKV4Extensibility& a) { a.CKV4Extensibility_NodeExpand(node); });
}

void TreeEvents::MouseDown(const Node& node, int button, int shift, const QPoint& position) {
    addIns_.ForEach("NodeMouseDown", [&](CKV4Extensibility& a) {
        a.CKV4Extensibility_NodeMouseDown(node, button, shift, position.x(), position.y());
    });
}

void TreeEvents::MouseMove(const Node& node, int buttons, int shift, const QPoint& position) {
    addIns_.ForEach("NodeMouseMove", [&](CKV4Extensibility& a) {
        a.CKV4Extensibility_NodeMouseMove(node, buttons, shift, position.x(), position.y());
    });
}

void TreeEvents::MouseUp(const Node& node, int button, int shift, const QPoint& position) {
    addIns_.ForEach("NodeMouseUp", [&](CKV4Extensibility& a) {
        a.CKV4Extensibility_NodeMouseUp(node, button, shift, position.x(), position.y());
    });
}

bool TreeEvents::KeyDown(const Node& node, const QKeyEvent& event) {
    // A key without a number is not offered: 0 would read as "used".
    int keyCode = VirtualKey(event.key(), event.modifiers().testFlag(Qt::KeypadModifier));
    if (keyCode == 0) return false;
    int shift = ShiftOf(event.modifiers());
    addIns_.ForEach("NodeKeyDown", [&](CKV4Extensibility& a) {
        if (keyCode != 0) a.CKV4Extensibility_NodeKeyDown(node, keyCode, shift);
    });
    return keyCode == 0;
}

bool TreeEvents::KeyPress(const Node& node, const QKeyEvent& event) {
    int keyAscii = KeyAscii(event);
    if (keyAscii == 0) return false;
    addIns_.ForEach("NodeKeyPress", [&](CKV4Extensibility& a) {
        if (keyAscii != 0) a.CKV4Extensibility_NodeKeyPress(node, keyAscii);
    });
    return keyAscii == 0;
}

bool TreeEvents::KeyUp(const Node& node, const QKeyEvent& event) {
    int keyCode = VirtualKey(event.key(), event.modifiers().testFlag(Qt::KeypadModifier));
    if (keyCode == 0) return false;
    int shift = ShiftOf(event.modifiers());
    addIns_.ForEach("NodeKeyUp", [&](CKV4Extensibility& a) {
        if (keyCode != 0) a.CKV4Extensibility_NodeKeyUp(node, keyCode, shift);
    });
    return keyCode == 0;
}

}  // namespace studio
