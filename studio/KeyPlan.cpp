#include "studio/KeyPlan.h"

#include <algorithm>
#include <utility>

namespace studio {

using commandset::Place;

KeyPlan::KeyPlan(QList<Entry> entries, commandset::OwnKeys own)
    : entries_(std::move(entries)), own_(std::move(own)) {}

QList<QKeyCombination> KeyPlan::KeysOf(int entry) const {
    const Entry& asked = entries_[entry];
    return IsFixed(entry) ? asked.given : own_.value(asked.name, asked.given);
}

bool KeyPlan::IsFixed(int entry) const {
    const commandset::Command* command = entries_[entry].command;
    return entries_[entry].isFixed || (command != nullptr && commandset::IsFixed(command->id));
}

bool KeyPlan::CanHave(int entry, QKeyCombination key) const {
    return commandset::CanBeGiven(key) || entries_[entry].given.contains(key);
}

/// Empty: everywhere.
QList<Place> KeyPlan::PlacesOf(int entry, QKeyCombination key) const {
    const Entry& asked = entries_[entry];
    QList<Place> places;
    if (asked.command == nullptr) return places;
    for (const commandset::Key& each :
         commandset::KeysOf(*asked.command, {{asked.name, QList<QKeyCombination>{key}}})) {
        places += each.place;
    }
    return places;
}

/// Whether the key would mean both at one place. Given keys may share theirs: the cells that are
/// selected have some of the trends' keys for what concerns several rows.
bool KeyPlan::Meet(int one, int other, QKeyCombination key) const {
    if (entries_[one].given.contains(key) && entries_[other].given.contains(key)) return false;
    const QList<Place> here = PlacesOf(one, key);
    const QList<Place> there = PlacesOf(other, key);
    if (here.isEmpty() || there.isEmpty()) return true;
    const auto row = [](Place place) { return place == Place::Cells ? Place::Trends : place; };
    return std::any_of(here.begin(), here.end(), [&](Place place) {
        return std::any_of(there.begin(), there.end(),
                           [&](Place known) { return row(place) == row(known); });
    });
}

QList<int> KeyPlan::Owners(int entry, QKeyCombination key) const {
    QList<int> owners;
    for (int other = 0; other < entries_.size(); ++other) {
        if (other != entry && KeysOf(other).contains(key) && Meet(entry, other, key)) {
            owners += other;
        }
    }
    return owners;
}

void KeyPlan::Set(int entry, const QList<QKeyCombination>& keys) {
    const Entry& changed = entries_[entry];
    if (keys == changed.given) {
        own_.remove(changed.name);
    } else {
        own_[changed.name] = keys;
    }
}

void KeyPlan::Lose(const QList<int>& owners, QKeyCombination key) {
    for (const int owner : owners) {
        QList<QKeyCombination> keys = KeysOf(owner);
        keys.removeAll(key);
        Set(owner, keys);
    }
}

void KeyPlan::Give(int entry, QKeyCombination key) {
    Lose(Owners(entry, key), key);
    QList<QKeyCombination> keys = KeysOf(entry);
    // One that it has already comes to the front.
    if (!keys.removeOne(key) && !keys.isEmpty()) keys.removeFirst();
    keys.prepend(key);
    Set(entry, keys);
}

void KeyPlan::TakeAway(int entry) {
    Set(entry, {});
}

QList<int> KeyPlan::OwnersOfGiven(int entry) const {
    QList<int> owners;
    for (const QKeyCombination key : entries_[entry].given) {
        for (const int owner : Owners(entry, key)) {
            if (!owners.contains(owner)) owners += owner;
        }
    }
    return owners;
}

void KeyPlan::Reset(int entry) {
    const QList<QKeyCombination> given = entries_[entry].given;
    for (const QKeyCombination key : given) Lose(Owners(entry, key), key);
    Set(entry, given);
}

}  // namespace studio
