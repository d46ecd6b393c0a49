#pragma once

#include <QIcon>

/// The picture of archives in the tree: a box of records with a curve on its front. Drawn for each
/// size, so that it is sharp at all of them; its colours stand out on light and on dark palettes.
[[nodiscard]] QIcon ArchiveIcon();
