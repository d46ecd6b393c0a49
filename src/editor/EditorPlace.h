#pragma once

#include <array>
#include <QList>
#include <QString>
#include <utility>

#include "controls/GridSource.h"
#include "settings/InitValue.h"

/// Where the user is in the editor window and how it looks, so that a window made anew for the same
/// project goes on from there: after the connection has been refreshed, and after the interface has
/// changed its language. A plain value; it holds nothing of the window.
struct EditorPlace {
    struct Split {
        QString sortField;  // empty: unsorted
        Qt::SortOrder sortOrder = Qt::AscendingOrder;
        GridRowId row = kNoGridRow;
        QString column;  // field of the current cell
    };

    QString nodeKey;                                // of what was open
    QList<std::pair<QString, InitValue>> settings;  // all that are in force, by path
    std::array<Split, 2> splits;
    int split = 1;          // that has, or last had, the keyboard
    bool keyboard = false;  // the window had it
};
