#pragma once

#include <QList>
#include <QString>

#include "commandset/OwnKeys.h"

namespace studio {

/// Which command has which keys while the user gives them others, each key with one meaning at each
/// place. Knows no window.
class KeyPlan {
public:
    struct Entry {
        QString name;                                  // of the command or action
        QString group;                                 // where it is found
        QString text;                                  // as menus call it
        QList<QKeyCombination> given;                  // each once
        const commandset::Command* command = nullptr;  // null: an action of the studio
        bool isFixed = false;                          // its keys stay
    };

    KeyPlan(QList<Entry> entries, commandset::OwnKeys own);

    [[nodiscard]] const QList<Entry>& Entries() const noexcept { return entries_; }
    [[nodiscard]] QList<QKeyCombination> KeysOf(int entry) const;
    [[nodiscard]] bool IsOwn(int entry) const { return own_.contains(entries_[entry].name); }
    [[nodiscard]] bool IsFixed(int entry) const;
    [[nodiscard]] bool CanHave(int entry, QKeyCombination key) const;
    /// The others that have the key where the command would have it.
    [[nodiscard]] QList<int> Owners(int entry, QKeyCombination key) const;
    /// In place of the first key, which menus show; the owners lose it. REQUIRES: CanHave.
    void Give(int entry, QKeyCombination key);
    void TakeAway(int entry);
    /// Those of its given keys that others have by now, with the owners.
    [[nodiscard]] QList<int> OwnersOfGiven(int entry) const;
    /// Its given keys again; who has one of them by now loses it.
    void Reset(int entry);
    void ResetAll() { own_.clear(); }

    /// What is to be kept.
    [[nodiscard]] const commandset::OwnKeys& Own() const noexcept { return own_; }

private:
    [[nodiscard]] QList<commandset::Place> PlacesOf(int entry, QKeyCombination key) const;
    [[nodiscard]] bool Meet(int one, int other, QKeyCombination key) const;
    void Set(int entry, const QList<QKeyCombination>& keys);
    void Lose(const QList<int>& owners, QKeyCombination key);

    QList<Entry> entries_;
    commandset::OwnKeys own_;
};

}  // namespace studio
