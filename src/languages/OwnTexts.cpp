#include "languages/detail/TextOrder.h"
#include "languages/MResourceTable.h"

namespace MResourceTable {
namespace {

// clang-format off: one text a line, however long
constexpr Entry kAll[] = {
    {1001, u"Die Hilfedatei '<file>' (Thema <topic>) kann nicht angezeigt werden.",
     u"The help file '<file>' (topic <topic>) cannot be shown."},
    {1002, u"... und <n> weitere", u"... and <n> more"},

    // Property dialogs
    {1100, u"Variable auswählen", u"Choose variable"},
    {1101, u"Ordner auswählen", u"Choose folder"},
    {1102, u"Text bearbeiten", u"Edit text"},
    {1103, u"...", u"..."},
    {1104, u"<n> von <max> Zeichen", u"<n> of <max> characters"},
};
// clang-format on

static_assert(detail::IsAscending(kAll) && kAll[0].id > kLastNumberOfOld);

}  // namespace

const std::span<const Entry> kOwnTexts(kAll);

}  // namespace MResourceTable
