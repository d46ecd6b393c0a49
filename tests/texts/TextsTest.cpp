#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <QFile>
#include <QMetaEnum>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include "platform/Registry.h"
#include "support/PrintQt.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using MResources::TextTable;
using texts::Language;
using texts::ReadLanguage;

constexpr int kSwedish = 1053;
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

/// The given numbers, as ranges with both ends.
constexpr std::pair<int, int> kGivenNumbers[] = {
    {10, 12},   {20, 21},   {30, 32},   {101, 128}, {130, 138}, {140, 142}, {144, 146},
    {151, 156}, {162, 163}, {171, 178}, {181, 182}, {201, 231}, {240, 243}, {250, 262},
    {301, 319}, {399, 399}, {401, 431}, {435, 438}, {450, 453}, {501, 519}, {521, 524},
    {526, 532}, {550, 550}, {701, 704}, {901, 907}};

struct Name {
    int number;
    std::string cpp;  // as the code has it
    QString key;      // as the files have it
    bool isGiven;
};

/// The list of names.
std::vector<Name> Names() {
    std::vector<Name> names;
    const QMetaObject& lists = MResourceTable::staticMetaObject;
    for (int i = 0; i < lists.enumeratorCount(); ++i) {
        const QMetaEnum list = lists.enumerator(i);
        for (int entry = 0; entry < list.keyCount(); ++entry) {
            const QString key = QString::fromLatin1(list.key(entry));
            if (key == u"kLastGivenNumber"_s) continue;
            const int number = list.value(entry);
            const bool isGiven = !list.isScoped() && number <= MResourceTable::kLastGivenNumber;
            names.push_back({number, key.toStdString(),
                             isGiven           ? QString::number(number)
                             : list.isScoped() ? QString::fromLatin1(list.name()) + u'.' + key
                                               : key.mid(QStringLiteral("kText").size()),
                             isGiven});
        }
    }
    return names;
}

TEST_F(TextsTest, EveryGivenNumberAndEveryNameHasATextInEachLanguage) {
    std::set<int> given;
    for (const auto& [first, last] : kGivenNumbers) {
        for (int id = first; id <= last; ++id) given.insert(id);
    }
    ASSERT_EQ(given.size(), 218U);
    ASSERT_GE(texts::Languages().size(), 2U);
    std::set<int> numbers;
    for (const Name& name : Names()) {
        EXPECT_TRUE(numbers.insert(name.number).second) << name.cpp << ": its number is taken";
        EXPECT_EQ(name.isGiven, given.contains(name.number)) << name.cpp;
        for (const Language* language : texts::Languages()) {
            EXPECT_FALSE(language->texts.value(name.number).isEmpty())
                << name.cpp << " in " << language->name.toStdString();
        }
    }
    EXPECT_TRUE(std::includes(numbers.begin(), numbers.end(), given.begin(), given.end()));
}

TEST_F(TextsTest, TheFilesHoldNothingElseAndNothingTwice) {
    for (const QString& file : {u":/texts/de.texts"_s, u":/texts/en.texts"_s}) {
        QFile texts(file);
        ASSERT_TRUE(texts.open(QIODevice::ReadOnly));
        QStringList problems;
        const Language language = ReadLanguage(QString::fromUtf8(texts.readAll()), problems);
        EXPECT_EQ(problems, QStringList()) << file.toStdString();
        EXPECT_FALSE(language.name.isEmpty() || language.locale.isEmpty() ||
                     language.help.isEmpty());
    }
}

/// The names of texts in the sources of a folder: kText... as they are, others as "Text::Name";
/// those of the project check as its rules, "Rule::Name", or their keys, and so what goes into
/// files.
std::set<std::string> NamesUsed(const char* folder) {
    namespace fs = std::filesystem;
    static const QRegularExpression use(
        u"\\b(kText\\w+|(Text|Reason|Check|Rule|Keys)::\\w+|(FindingRow|Exchange)\\.\\w+)"_s);
    std::set<std::string> used;
    for (const fs::path& path : fs::recursive_directory_iterator(fs::path(folder))) {
        const std::string extension = path.extension().string();
        if (extension != ".cpp" && extension != ".h") continue;
        if (path.filename() == "MResourceTable.h") continue;
        std::ostringstream code;
        code << std::ifstream(path).rdbuf();
        for (auto uses = use.globalMatch(QString::fromStdString(code.str())); uses.hasNext();) {
            used.insert(uses.next().captured().toStdString());
        }
    }
    return used;
}

// A name that is not there does not compile; a text that nobody shows is found here.
TEST_F(TextsTest, EveryOwnTextIsUsed) {
    const std::set<std::string> bySrc = NamesUsed("src");
    const std::set<std::string> byReport = NamesUsed("report");
    const std::set<std::string> byStudio = NamesUsed("studio");
    for (const Name& name : Names()) {
        if (name.isGiven) continue;
        const std::string list = name.key.section(u'.', 0, -2).toStdString();
        const bool isAlias = list == "Help" || list == "Report" || list == "Replace" ||
                             list == "Patterns" || list == "Templates" || list == "Studio" ||
                             list == "Exchange" || list == "Compare";
        const std::set<std::string>& used = list == "Report"                     ? byReport
                                            : list == "Studio" || list == "Keys" ? byStudio
                                                                                 : bySrc;
        const bool isRules = list == "Finding" || list == "RuleMeaning" || list == "RuleAdvice";
        std::string use = name.cpp;
        if (list == "FindingRow") {
            // The rest of the key is the kind of the row.
            use =
                used.contains(name.key.toStdString()) ? name.key.toStdString() : "FindingRow.This";
        } else if (list == "Exchange" && used.contains(name.key.toStdString())) {
            use = name.key.toStdString();
        } else if (isRules) {
            use = "Rule::" + name.cpp.substr(0, name.cpp.find("IfEmpty"));
        } else if (!list.empty()) {
            use = (isAlias ? "Text" : list) + "::" + name.cpp;
        }
        EXPECT_TRUE(used.contains(use)) << use;
    }
}

std::set<QString> Placeholders(const QString& text) {
    std::set<QString> names;
    static const QRegularExpression placeholder(u"<[a-z]+>|%[0-9]"_s);
    for (auto found = placeholder.globalMatch(text); found.hasNext();) {
        names.insert(found.next().captured());
    }
    return names;
}

// A placeholder that one language lacks would leave its value out of the message.
TEST_F(TextsTest, PlaceholdersAreTheSameInEachLanguage) {
    const Language& german = *texts::Languages().front();
    for (const Language* language : texts::Languages()) {
        for (const Name& name : Names()) {
            const std::set<QString> here = Placeholders(language->texts.value(name.number));
            EXPECT_EQ(here, Placeholders(german.texts.value(name.number)))
                << name.cpp << " in " << language->name.toStdString();
            for (const QString& one : here) EXPECT_FALSE(one.startsWith(u'%')) << name.cpp;
        }
    }
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
    table.AddTexts(501, {u"neu", u"new"});
    EXPECT_EQ(table.GetText(700), u"one"_s);
    EXPECT_EQ(table.GetText(801), u"Resource 801 not found"_s);
    EXPECT_EQ(table.GetText(501), u"Archive Editor"_s);
    EXPECT_EQ(table.GetText(501).constData(), table.GetText(501).constData()) << "a copy was made";
}

TEST_F(TextsTest, ValuesStandForTheirPlaceholdersAndForNothingElse) {
    struct Case {
        QString text;
        QString filled;
    };
    const Case cases[] = {
        {u"<n> von <max>, <n>"_s, u"3 von <n>, 3"_s},
        {u"<b>, <unknown>, 5 < 6"_s, u"<b>, <unknown>, 5 < 6"_s},
        {u"Datei[ '<max>'] und[ '<empty>'] [ms]"_s, u"Datei '<n>' und [ms]"_s},
        {u"[<n> [<empty>"_s, u"[3 ["_s},
        {u"<"_s, u"<"_s},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(texts::Fill(c.text, {{u"n", u"3"_s}, {u"max", u"<n>"_s}, {u"empty", {}}}),
                  c.filled);
    }
}

TEST_F(TextsTest, AFileTellsWhatIsWrongWithItAndGivesTheRest) {
    QStringList problems;
    const Language language = ReadLanguage(
        u"# a comment\r\n"
        "language = 1053\r\n"
        "\r\n"
        "10=OK = bra\r\n"
        "399 = \\s\\s\r\n"
        "NoHelpFile = a\\n\\tb\\\\n \r\n"
        "10 = en gang till\r\n"
        "13 = inget\r\n"
        "NoSuchText = inget\r\n"
        "11 = a\\x\r\n"
        "12"_s,
        problems);
    EXPECT_EQ(language.lcid, kSwedish);
    EXPECT_EQ(language.texts.value(10), u"OK = bra"_s);
    EXPECT_EQ(language.texts.value(399), u"  "_s);
    EXPECT_EQ(language.texts.value(MResourceTable::kTextNoHelpFile), u"a\n\tb\\n"_s);
    EXPECT_EQ(language.texts.size(), 3);
    EXPECT_EQ(problems, (QStringList{u"line 7: 10 stands here a second time"_s,
                                     u"line 8: no text is called 13"_s,
                                     u"line 9: no text is called NoSuchText"_s,
                                     u"line 10: \\ stands only in \\n, \\t, \\s and \\\\"_s,
                                     u"line 11: no key and text with = between"_s}));
    problems.clear();
    EXPECT_EQ(ReadLanguage(u"10 = OK"_s, problems).lcid, 0U);
    EXPECT_EQ(problems, QStringList{u"no line says which language it is"_s});
}

/// The letter behind a single "&", lower case; null when there is none.
QChar AccessKey(const QString& text) {
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != u'&') continue;
        if (text[i + 1] != u'&') return text[i + 1].toLower();
        ++i;
    }
    return {};
}

// Each row is what can be reached by one press of Alt and a letter.
TEST_F(TextsTest, AccessKeysAreUniqueWhereTheyStandTogether) {
    using MResourceTable::Report;
    using MResourceTable::Studio;
    const auto range = [](auto first, auto last) {
        return std::pair(static_cast<int>(first), static_cast<int>(last));
    };
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
        {"menu of a heading",
         {range(MResourceTable::kTextSortUpwards, MResourceTable::kTextReleaseColumns)},
         {}},
        {"report's menus and field",
         {range(Report::MenuReport, Report::MenuFind), range(Report::Help, Report::FindLabel)},
         {}},
        {"report's menu",
         {range(Report::Print, Report::Refresh), range(Report::Close, Report::Differences)},
         {}},
        {"studio's menus",
         {range(Studio::MenuFile, Studio::MenuFile), range(Studio::MenuView, Studio::MenuView),
          range(Studio::MenuSettings, Studio::MenuSettings),
          range(Studio::MenuHelp, Studio::MenuHelp)},
         {}},
        {"studio's file menu",
         {range(Studio::FileNew, Studio::FileQuit)},
         {static_cast<int>(Studio::FileRecentClear)}},
        {"studio's new project", {range(Studio::NewFile, Studio::NewOk)}, {}},
        {"studio's backups",
         {range(Studio::BackupRestore, Studio::BackupsFolder),
          range(Studio::NewBrowse, Studio::NewBrowse), range(Studio::Close, Studio::Close)},
         {}},
    };
    for (const Page& page : pages) {
        for (const Language* language : texts::Languages()) {
            std::map<QChar, std::string> owners;
            for (const Name& name : Names()) {
                const bool here =
                    std::any_of(page.ranges.begin(), page.ranges.end(), [&](const auto& part) {
                        return part.first <= name.number && name.number <= part.second;
                    });
                const QChar key = AccessKey(language->texts.value(name.number));
                if (!here || key.isNull() || page.sharing.contains(name.number)) continue;
                const auto [owner, added] = owners.emplace(key, name.cpp);
                EXPECT_TRUE(added) << page.name << ": " << name.cpp << " and " << owner->second;
                EXPECT_TRUE(key.isLetterOrNumber()) << page.name << ": " << name.cpp;
            }
        }
    }
}

/// The text read backwards; placeholders, optional parts and access keys stay what they are.
QString Reversed(const QString& text) {
    static const QRegularExpression piece(u"<[a-z/0-9]+>|&.|."_s,
                                          QRegularExpression::DotMatchesEverythingOption);
    QString reversed;
    for (auto pieces = piece.globalMatch(text); pieces.hasNext();) {
        QString part = pieces.next().captured();
        if (part == u"["_s) {
            part = u"]"_s;
        } else if (part == u"]"_s) {
            part = u"["_s;
        }
        reversed.prepend(part);
    }
    return reversed;
}

// Another language is one file; the programs need not be built anew for it.
TEST_F(TextsTest, AnotherLanguageIsOneFile) {
    const Language& german = *texts::Languages().front();
    QFile file(folder_.filePath(u"backwards.texts"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("language = 1053\nname = &Svenska\nlocale = sv_SE\n");
    for (const Name& name : Names()) {
        if (name.number == 550) continue;  // a text that has been forgotten
        QString text = Reversed(german.texts.value(name.number));
        text.replace(u' ', u"\\s"_s).replace(u'\n', u"\\n"_s).replace(u'\t', u"\\t"_s);
        file.write((name.key + u" = "_s + text + u'\n').toUtf8());
    }
    file.close();
    texts::AddLanguages(folder_.path());

    TextTable table;
    Start(table, kSwedish);
    EXPECT_EQ(table.GetText(501), u"rotidE vihcrA"_s);
    EXPECT_EQ(table.GetText(MResourceTable::kTextDeleteTrends, {{u"td", u"12"_s}}),
              u"? nehcsöl uz etkejbodnerT 12 negithcisbaeb eiS"_s);
    EXPECT_EQ(table.GetText(550), u"Archives"_s) << "what is not there is English";
    EXPECT_EQ(table.Language().help, u"en"_s);
    EXPECT_EQ(texts::InterfaceLanguage(), static_cast<unsigned>(kSwedish));
    texts::SetInterfaceLanguage(platform::kLcidGerman);
}

}  // namespace
