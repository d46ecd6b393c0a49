#pragma once

#include <QIcon>

/// The pictures of the editor's commands, see icons/Icons.h.
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
