#pragma once

/// The texts that the grid itself needs; whoever shows it has them.
enum class GridText {
    SortedUpwards,
    SortedDownwards,
    Choose,
    CurrentRow,
    EditedRow,
    Filter,         // what a field under a heading is
    FilterChoices,  // and the button in it
};
