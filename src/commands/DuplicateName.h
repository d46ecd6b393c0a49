#pragma once

#include <functional>
#include <QString>

#include "texts/MResources.h"

/// The first free name of a copy: "Kopie von X", "Kopie(2) von X", "Kopie(3) von X" and so on. X is
/// cut where the name would be longer than `limit` UTF-16 units.
[[nodiscard]] QString DuplicateName(const QString& original, qsizetype limit,
                                    const MResources::TextTable& texts,
                                    const std::function<bool(const QString& name)>& isInUse);
