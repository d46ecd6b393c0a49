#pragma once

#include <QIcon>
#include <QStringView>

namespace icons {

/// The picture svg/NAME.svg, drawn at the size and in the colours that the palette has when it is
/// shown: sharp at any scaling, light and dark, faint where it is disabled. A name without a file
/// shows nothing.
[[nodiscard]] QIcon Icon(QStringView name);

/// The same as it looks now, in the usual sizes, for whoever may outlive this library: no code of
/// ours is needed to show it.
[[nodiscard]] QIcon FixedIcon(QStringView name);

}  // namespace icons
