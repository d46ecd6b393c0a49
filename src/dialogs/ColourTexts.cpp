#include "dialogs/ColourTexts.h"

#include <span>

#include "languages/MResources.h"
#include "languages/MResourceTable.h"

ColorTexts ColourTexts(const MResources::TextTable& texts) {
    using namespace MResourceTable;
    ColorTexts words;
    words.choose = texts.GetText(kTextChooseColor);
    words.recent = texts.GetText(kTextRecentColors);
    words.more = texts.GetText(kTextMoreColors);
    words.none = texts.GetText(kTextNoColor);
    words.system = texts.GetText(kTextSystemColor);
    words.parts = texts.GetText(kTextColorParts);
    const auto fill = [&](std::span<QString> names, int first) {
        for (QString& name : names) name = texts.GetText(first++);
    };
    fill(words.hues, kTextFirstHue);
    fill(words.tints, kTextFirstTint);
    fill(words.greys, kTextFirstGrey);
    return words;
}
