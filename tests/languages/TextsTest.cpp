#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <QTemporaryDir>
#include <set>
#include <utility>
#include <vector>

#include "languages/MResources.h"
#include "languages/MResourceTable.h"
#include "platform/Registry.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using MResources::TextTable;

constexpr int kFrench = 1036;

class TextsTest : public testing::Test {
protected:
    /// Starts `table` with an interface language in the registry.
    void Start(TextTable& table, std::uint32_t lcid) {
        registry_.WriteDword(MResources::kStudioKey, u"LCID", lcid);
        table.Initialize(registry_);
    }

    QTemporaryDir folder_;
    platform::Registry registry_{{folder_.filePath(u"machine.reg"_s), {}}};
};

/// The numbers of old, as ranges with both ends.
constexpr std::pair<int, int> kNumbersOfOld[] = {
    {10, 12},   {20, 21},   {30, 32},   {101, 128}, {130, 138}, {140, 142}, {144, 146},
    {151, 156}, {162, 163}, {171, 178}, {181, 182}, {201, 231}, {240, 243}, {250, 262},
    {301, 319}, {399, 399}, {401, 431}, {435, 438}, {450, 453}, {501, 519}, {521, 524},
    {526, 532}, {550, 550}, {701, 704}, {901, 907}};

TEST_F(TextsTest, EveryNumberOfOldHasATextInBothLanguages) {
    std::set<int> expected;
    for (const auto& [first, last] : kNumbersOfOld) {
        for (int id = first; id <= last; ++id) expected.insert(id);
    }
    ASSERT_EQ(expected.size(), 218U);
    std::set<int> present;
    for (const auto& entries : {MResourceTable::kCommonWords, MResourceTable::kTexts}) {
        for (const MResourceTable::Entry& entry : entries) {
            present.insert(entry.id);
            EXPECT_FALSE(entry.german.empty()) << entry.id;
            EXPECT_FALSE(entry.english.empty()) << entry.id;
        }
    }
    EXPECT_EQ(present, expected);
}

struct Known {
    int id;
    const char16_t* german;
    const char16_t* english;
};

// The ones that a careful hand would mend: slips, inner and outer blanks, spellings of before the
// reform, texts that are the same or mean another thing in English.
constexpr Known kOddTexts[] = {
    {20, u"nein", u"false"},
    {30, u"Strg+", u"Ctrl+"},
    {107, u"Ersatzwert Fehler", u"Error Substitution Value"},
    {126, u"Sample Maximum", u"Maximum visual measuring Data"},
    {131, u"Absolut", u"absolute"},
    {134, u"kein Filter", u"No Filter"},
    {137, u"Max", u"Max"},
    {141, u"gestrichelt", u"---"},
    {142, u"gepunktet", u"..."},
    {144, u"Kurvenfarbe außerhalb der Toleranz wie Toleranzband",
     u"Curve color outside of tolerance area has same color as tolerance curve"},
    {145, u"Toleranzband als Linie", u"Tolerance curse as line"},
    {177, u"keine Aufzeichnung (Trendviewer)", u"No recording (Trendviewer)"},
    {178, u"nur manuelle Aufzeichnung", u"only manually recording"},
    {182, u"[ms]", u"[ms]"},
    {204, u"auf &Festplatte", u"on Hard Disk"},
    {205, u"im &Hauptspeicher (RAM)", u"in Main Memory (RAM)"},
    {207, u"Sicher", u"Save"},
    {225, u"Doppelter Name", u"Double Name"},
    {226, u"Das Feld 'TextID' der Gruppe zeigt auf einen nicht existenten Indextext",
     u"The Field 'TextID' of this Group is connected to a nonexisting Index Text"},
    {242, u"&Aufzeichnung", u"&Recording"},
    {252, u"Jahreswechsel", u"Year changed"},
    {303, u"EditorFont", u"Editor Font"},
    {308, u"Ausgesucht", u"Choosed"},
    {311, u"Ini-Datei...", u"Ini File ..."},
    {399, u"   ", u"   "},
    {422, u"Kurvenstärke (in Pixeln)", u"Curve Intensity"},
    {450, u"Standard", u"Standard"},
    {503, u"&Neu                    F8", u"&New                 F8"},
    {504, u"&Bearbeiten         F9", u"&Edit                  F9"},
    {505, u"&Löschen    Strg+Entf", u"&Delete     Ctrl+Del"},
    {507, u"&Neu                        F8", u"&New                 F8"},
    {508, u"&Bearbeiten              F9", u"&Edit                  F9"},
    {509, u"&Löschen       Strg+Entf", u"&Delete           Ctrl+Del"},
    {511, u"&Statistik", u"&Statistik"},
    {513, u"&Ansicht aktualisieren", u"&Actualize Database Connection"},
    {518, u"Archive:", u"Archives:"},
    {522, u"TDB-Fehler: ", u"TDB-Error: "},
    {523, u"Fehler: ", u"Error: "},
    {524, u", die Datenbank muß neu synchronisiert werden",
     u", the Database is in an unconsistent state and must be synchronized"},
    {528, u"Sie beabsichtigen, 1 Trendobjekt zu löschen ?",
     u"Do you really want to delete 1 trend object?"},
    {529, u"Sie beabsichtigen <td> Trendobjekte zu löschen ?",
     u"Do you really want to delete <td> trend objects?"},
    {530, u"Namensfeld muß einen eindeutigen Bezeichner angeben",
     u"Name field must have a unique identifier (name)"},
    {531, u"Doppelter Name", u"Name already in use"},
    {701, u"Kopie von ", u"Copy of"},
    {702, u") von ", u") of "},
    {703, u"Kopie(", u"Copy("},
    {902, u"Korvala Datenbank oder Schnittstelle wurde nicht gefunden",
     u"Korvala Databas of Connection not found"},
    {907, u"Fehler beim Initialiseren der Trendtabelle", u"Error. Initializing Trend Table"},
};

TEST_F(TextsTest, OddTextsStayAsTheyAre) {
    TextTable german;
    TextTable english;
    Start(german, MResources::kGerman);
    Start(english, MResources::kEnglish);
    for (const Known& text : kOddTexts) {
        EXPECT_EQ(german.GetText(text.id).toStdU16String(), text.german) << text.id;
        EXPECT_EQ(english.GetText(text.id).toStdU16String(), text.english) << text.id;
    }
}

TEST_F(TextsTest, OtherLanguagesLeaveTheOneBeforeInForce) {
    TextTable table;
    Start(table, kFrench);
    EXPECT_EQ(table.GetText(308), u"Ausgesucht"_s);
    Start(table, MResources::kEnglish);
    Start(table, kFrench);
    EXPECT_EQ(table.GetText(308), u"Choosed"_s);
    Start(table, MResources::kGerman);
    EXPECT_EQ(table.GetText(308), u"Ausgesucht"_s);
}

TEST_F(TextsTest, MissingNumbersShowThemselves) {
    TextTable table;
    for (const std::uint32_t lcid : {MResources::kGerman, MResources::kEnglish}) {
        Start(table, lcid);
        for (const int id : {999, 0, -5, 2147483647}) {
            EXPECT_EQ(table.GetText(id), u"Resource %1 not found"_s.arg(id)) << "LCID " << lcid;
        }
    }
}

TEST_F(TextsTest, TheFirstTextOfANumberStays) {
    TextTable table;
    Start(table, MResources::kEnglish);
    table.AddTexts(700, {u"eins", u"one"});
    table.AddTexts(700, {u"zwei", u"two"});
    table.AddTexts(801, {u"nur deutsch"});
    EXPECT_EQ(table.GetText(700), u"one"_s);
    EXPECT_EQ(table.GetText(801), u"Resource 801 not found"_s);
    EXPECT_EQ(table.GetText(501).constData(), table.GetText(501).constData()) << "a copy was made";
}

/// The letter behind a single "&", lower case; null when there is none.
QChar AccessKey(std::u16string_view text) {
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != u'&') continue;
        if (text[i + 1] != u'&') return QChar(text[i + 1]).toLower();
        ++i;
    }
    return {};
}

// Each row is what can be reached by one press of Alt and a letter.
TEST_F(TextsTest, AccessKeysAreUniqueWhereTheyStandTogether) {
    struct Page {
        const char* name;
        std::vector<std::pair<int, int>> ranges;
        // Pairs that have always shared a key.
        std::set<int> sharing;
    };
    const Page pages[] = {
        {"archive dialog", {{12, 12}, {201, 231}, {240, 242}}, {204, 205}},
        {"trend dialog", {{12, 12}, {399, 453}}, {}},
        {"options dialog", {{301, 319}}, {}},
        {"menu bar", {{502, 502}, {506, 506}, {510, 510}}, {}},
        {"archive menu", {{503, 505}, {516, 516}}, {}},
        {"trend menu", {{507, 509}}, {}},
        {"extras menu", {{511, 515}}, {}},
    };
    const auto textOf = [](const MResourceTable::Entry& entry, bool german) {
        return german ? entry.german : entry.english;
    };
    for (const Page& page : pages) {
        for (const bool german : {true, false}) {
            std::map<QChar, int> owners;
            for (const MResourceTable::Entry& entry : MResourceTable::kTexts) {
                const bool here = std::any_of(
                    page.ranges.begin(), page.ranges.end(), [&entry](const auto& range) {
                        return range.first <= entry.id && entry.id <= range.second;
                    });
                const QChar key = AccessKey(textOf(entry, german));
                if (!here || key.isNull() || page.sharing.contains(entry.id)) continue;
                const auto [owner, added] = owners.emplace(key, entry.id);
                EXPECT_TRUE(added) << page.name << ": " << entry.id << " and " << owner->second;
                EXPECT_TRUE(key.isLetterOrNumber()) << page.name << ": " << entry.id;
            }
        }
    }
}

// A placeholder that one language lacks would leave its number out of the message.
TEST_F(TextsTest, PlaceholdersStandInBothLanguages) {
    for (const auto& entries : {MResourceTable::kTexts, MResourceTable::kOwnTexts}) {
        for (const MResourceTable::Entry& entry : entries) {
            for (const char16_t* placeholder :
                 {u"<td>", u"<n>", u"<max>", u"<file>", u"<topic>", u"<text>"}) {
                EXPECT_EQ(entry.german.find(placeholder) != entry.german.npos,
                          entry.english.find(placeholder) != entry.english.npos)
                    << entry.id;
            }
        }
    }
}

}  // namespace
