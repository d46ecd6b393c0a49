#pragma once

namespace messages {

/// From now on every window of the program, whoever makes it, is shown within its screen and no
/// larger than that, whatever size it was made with or has kept from a larger screen. Does nothing
/// the second time. REQUIRES: an application object, whose end is the end of this.
void KeepWindowsOnScreen();

}  // namespace messages
