#pragma once

#include <QString>

namespace platform {

/// A name in the form in which names that do not tell capitals apart are compared: character by
/// character, as the stations do it. Full folding would make one name of "Maß" and "Mass".
[[nodiscard]] inline QString FoldName(QStringView name) {
    QString folded(name.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < name.size(); ++i) folded[i] = name[i].toUpper();
    return folded;
}

/// Whether two names are the same under FoldName.
[[nodiscard]] inline bool SameName(QStringView one, QStringView other) {
    if (one.size() != other.size()) return false;
    for (qsizetype i = 0; i < one.size(); ++i) {
        if (one[i] != other[i] && one[i].toUpper() != other[i].toUpper()) return false;
    }
    return true;
}

}  // namespace platform
