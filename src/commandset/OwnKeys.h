#pragma once

#include <QKeyCombination>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

#include "commandset/CommandSet.h"

/// Keys that the user has given to commands instead of the given ones. They hold for the whole
/// process: the host, which keeps them, says what they are, and every editor obeys.
namespace commandset {

/// By the name of a command, or of an action of the host; an empty list: it has no key. What is not
/// in the map has its given keys.
using OwnKeys = QMap<QString, QList<QKeyCombination>>;

[[nodiscard]] OwnKeys CurrentOwnKeys();
void SetOwnKeys(const OwnKeys& keys);

/// Whether a user may give a key to a command: it types nothing, moves nothing and opens no menu,
/// and every place, the host's tree too, can tell it from others.
[[nodiscard]] bool CanBeGiven(QKeyCombination keys);
/// The command's keys stay as they are, since not only the command set knows them.
[[nodiscard]] bool IsFixed(Id id);

/// A key with all places at which a command has it. An own key that is one of the given ones means
/// the command where that does; any other where the first of the given keys does; a command without
/// any has its own one everywhere.
[[nodiscard]] QList<Key> KeysOf(const Command& command, const OwnKeys& own);
[[nodiscard]] QList<Key> GivenKeys(const Command& command);

/// Tells of every change of the keys.
class KeyWatch final : public QObject {
    Q_OBJECT
public:
    explicit KeyWatch(QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void Changed();
};

}  // namespace commandset
