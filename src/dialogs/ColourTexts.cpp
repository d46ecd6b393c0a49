#include "dialogs/ColourTexts.h"

#include <algorithm>
#include <initializer_list>

#include "texts/MResources.h"
#include "texts/MResourceTable.h"

ColorTexts ColourTexts(const MResources::TextTable& texts) {
    using namespace MResourceTable;
    ColorTexts words;
    words.choose = texts.GetText(kTextChooseColor);
    words.recent = texts.GetText(kTextRecentColors);
    words.more = texts.GetText(kTextMoreColors);
    words.none = texts.GetText(kTextNoColor);
    words.system = texts.GetText(kTextSystemColor);
    words.parts = texts.GetText(kTextColorParts);
    const auto fill = [&](auto& names, std::initializer_list<int> numbers) {
        std::transform(numbers.begin(), numbers.end(), names.begin(),
                       [&](int number) { return texts.GetText(number); });
    };
    fill(words.hues,
         {kTextRed, kTextOrange, kTextYellow, kTextGreen, kTextCyan, kTextBlue, kTextViolet});
    fill(words.tints, {kTextLightHue, kTextDarkHue, kTextVeryDarkHue});
    fill(words.greys, {kTextWhite, kTextLightGrey, kTextDarkGrey, kTextBlack});
    return words;
}
