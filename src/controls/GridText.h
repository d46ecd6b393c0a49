#pragma once

/// The texts that the grid itself needs; whoever shows it has them.
enum class GridText {
    SortedUpwards,
    SortedDownwards,
    Choose,
    CurrentRow,
    EditedRow,
};
