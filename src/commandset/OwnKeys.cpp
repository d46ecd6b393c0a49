#include "commandset/OwnKeys.h"

#include <algorithm>
#include <QCoreApplication>
#include <QDynamicPropertyChangeEvent>
#include <QVariantMap>

namespace commandset {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr char kProperty[] = "kvOwnKeys";  // name to list of numbers

/// Host and add-ins each hold a copy of this library, so what they share is kept on the application
/// object; on a child of it, for a filter there sees every event of the program. Null without an
/// application.
QObject* Holder() {
    QCoreApplication* application = QCoreApplication::instance();
    if (application == nullptr) return nullptr;
    const QString name = u"kvKeys"_s;
    if (auto* known = application->findChild<QObject*>(name, Qt::FindDirectChildrenOnly)) {
        return known;
    }
    auto* holder = new QObject(application);
    holder->setObjectName(name);
    return holder;
}

bool IsLetter(Qt::Key key) {
    return key >= Qt::Key_A && key <= Qt::Key_Z;
}

bool IsDigit(Qt::Key key) {
    return key >= Qt::Key_0 && key <= Qt::Key_9;
}

}  // namespace

OwnKeys CurrentOwnKeys() {
    OwnKeys own;
    const QObject* holder = Holder();
    if (holder == nullptr) return own;
    const QVariantMap kept = holder->property(kProperty).toMap();
    for (auto one = kept.begin(); one != kept.end(); ++one) {
        QList<QKeyCombination>& keys = own[one.key()];
        for (const QVariant& key : one.value().toList()) {
            keys += QKeyCombination::fromCombined(key.toInt());
        }
    }
    return own;
}

void SetOwnKeys(const OwnKeys& keys) {
    QVariantMap kept;
    for (auto one = keys.begin(); one != keys.end(); ++one) {
        QVariantList numbers;
        for (const QKeyCombination key : one.value()) numbers += key.toCombined();
        kept.insert(one.key(), numbers);
    }
    if (QObject* holder = Holder()) holder->setProperty(kProperty, kept);
}

bool CanBeGiven(QKeyCombination keys) {
    const Qt::KeyboardModifiers held = keys.keyboardModifiers();
    const Qt::Key key = keys.key();
    const Qt::KeyboardModifiers known = Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier;
    if (held & ~known) return false;
    // Ctrl with Alt is how some platforms report the key that types third characters.
    if (IsLetter(key) || IsDigit(key)) {
        if (IsDigit(key) && held == Qt::AltModifier) return true;
        const bool isSelectAll = key == Qt::Key_A && held == Qt::ControlModifier;
        return held.testFlag(Qt::ControlModifier) && !held.testFlag(Qt::AltModifier) &&
               !isSelectAll;
    }
    if (key == Qt::Key_Insert) return true;
    if (key == Qt::Key_Delete) return held != Qt::NoModifier;
    if (key < Qt::Key_F1 || key > Qt::Key_F12) return false;
    const bool isAlone = (held & ~Qt::KeyboardModifiers(Qt::ShiftModifier)) == Qt::NoModifier;
    switch (key) {
        case Qt::Key_F1:  // in the tree with whatever else is held down
            return false;
        case Qt::Key_F4:
            return held != Qt::AltModifier;
        case Qt::Key_F2:
        case Qt::Key_F6:
        case Qt::Key_F10:
            return !isAlone;
        default:
            return true;
    }
}

bool IsFixed(Id id) {
    return id == Id::Help || id == Id::Clear || id == Id::SelectAll;
}

QList<Key> GivenKeys(const Command& command) {
    return {command.keys.begin(), command.keys.end()};
}

QList<Key> KeysOf(const Command& command, const OwnKeys& own) {
    const auto found = own.find(command.name.toString());
    if (found == own.end() || IsFixed(command.id)) return GivenKeys(command);
    QList<Key> keys;
    for (const QKeyCombination key : found.value()) {
        const bool isGiven = std::any_of(command.keys.begin(), command.keys.end(),
                                         [&](const Key& given) { return given.keys == key; });
        for (const Key& given : command.keys) {
            if (given.keys == (isGiven ? key : command.keys.front().keys)) {
                keys += Key{given.place, key, given.isListed};
            }
        }
        if (!command.keys.empty()) continue;
        for (const Place place : {Place::Tree, Place::Archives, Place::Trends}) {
            keys += Key{place, key};
        }
    }
    return keys;
}

KeyWatch::KeyWatch(QObject* parent) : QObject(parent) {
    if (QObject* holder = Holder()) holder->installEventFilter(this);
}

bool KeyWatch::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::DynamicPropertyChange) emit Changed();
    return QObject::eventFilter(watched, event);
}

}  // namespace commandset
