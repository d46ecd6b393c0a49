#pragma once

/// The texts that the grid itself needs; whoever shows it has them.
enum class GridText {
    SortedUpwards,
    SortedDownwards,
    Choose,
    CurrentRow,
    EditedRow,
    Filter,         // what a field under a heading is
    FillHandle,     // what dragging the corner of the selected cells does
    FilterChoices,  // and the button in it
};
