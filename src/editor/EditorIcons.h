#pragma once

#include <QIcon>

/// The pictures of the editor's commands. Drawn at the size and in the colours that the palette
/// has when they are shown, so that they are sharp at any scaling and follow light and dark.
enum class EditorIcon {
    NewArchive,
    EditArchive,
    DeleteArchive,
    NewTrend,
    EditTrend,
    DeleteTrend,
    Duplicate,
    Copy,
    Paste,
    Refresh,
    Report,
    Options,
    Find,
    Help,
};

[[nodiscard]] QIcon MakeIcon(EditorIcon icon);
