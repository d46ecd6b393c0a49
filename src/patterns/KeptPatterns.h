#pragma once

#include <QList>
#include <QString>

#include "patterns/TrendPlan.h"

/// The patterns that have been used in a project, the last one first, in a file beside it. They
/// help whoever makes the next trends; where the file cannot be read or written there are none.
namespace patterns::kept {

inline constexpr int kMost = 20;

/// Where those of a project stand: beside its file, with "-patterns" behind its name. Both are
/// native paths.
[[nodiscard]] QString FileOf(const QString& project);
[[nodiscard]] QList<TrendPatterns> Load(const QString& file);
/// Puts one in front; one with the same name goes. False: it has not been kept.
bool Keep(const QString& file, const TrendPatterns& patterns);

}  // namespace patterns::kept
