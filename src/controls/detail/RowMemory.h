#pragma once

#include <QList>
#include <QVariant>

#include "controls/GridSource.h"

class GridRows;
class GridView;

/// Remembers across a rebuild which rows were current and selected and where the current row
/// stood on the screen, and finds them again by their ids. An empty model in between is waited
/// out: rows are often released first and read anew afterwards.
class RowMemory {
public:
    /// Both are borrowed and outlive the memory.
    RowMemory(GridView& view, GridRows& rows) : view_(view), rows_(rows) {}

    void Remember();
    /// `sourceReset`: only rows of the same content are looked for. Returns false while there are
    /// no rows yet.
    bool Restore(bool sourceReset, bool alwaysCurrent);
    /// Whether the source's rows belong to what was remembered.
    [[nodiscard]] bool SameContent() const;

private:
    void FetchWanted();
    bool RestoreCurrent();
    void RestoreSelection();

    GridView& view_;
    GridRows& rows_;
    bool waiting_ = false;
    QVariant key_;
    GridRowId current_ = kNoGridRow;
    int currentRow_ = -1;
    int currentColumn_ = -1;
    int currentTop_ = -1;  // pixels from the top of the viewport; -1: not in view
    int topRow_ = 0;
    int sideways_ = 0;  // pixels
    QList<GridRowId> selected_;
    GridRowId anchor_ = kNoGridRow;
};
