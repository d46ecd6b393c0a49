#pragma once

#include "languages/MResources.h"

namespace help {

/// Numbers of the viewer's own texts in the table of interface texts.
enum class Text : int {
    Folder = 41001,  // of the built-in pages in the interface language
    WindowTitle,
    Home,
    Back,
    Forward,
    Larger,
    Smaller,
    Search,
    SearchTip,
    Contents,
    Page,
    Matches,
    NoMatches,
    Loading,
    FileDamaged,
    NoSuchPage
};

/// Enters the texts where they are missing; the table is filled anew now and then.
void AddHelpTexts(MResources::TextTable& table);

[[nodiscard]] inline QString GetText(const MResources::TextTable& table, Text text) {
    return table.GetText(static_cast<int>(text));
}

}  // namespace help
