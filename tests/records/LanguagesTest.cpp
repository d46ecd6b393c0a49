#include <gtest/gtest.h>

#include <array>
#include <QComboBox>
#include <QFile>
#include <QLocale>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "platform/Registry.h"
#include "project/CreateProject.h"
#include "records/CDBLanguages.h"
#include "texts/Language.h"
#include "texts/MResources.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr platform::Lcid kGerman = 1031;
constexpr platform::Lcid kEnglish = 1033;
constexpr platform::Lcid kFrench = 1036;

/// Languages on a copy of a project.
class LanguagesTest : public testing::Test {
protected:
    LanguagesTest() {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
        texts::SetInterfaceLanguage(kEnglish);
    }

    void OpenCopy(const QString& source) {
        path_ = folder_.filePath(u"Projekt.kvs"_s);
        ASSERT_TRUE(QFile::copy(source, path_));
        QFile::setPermissions(path_, QFile::ReadOwner | QFile::WriteOwner);
        Open();
    }
    void OpenNew(std::span<const std::uint32_t> lcids) {
        path_ = folder_.filePath(u"Neu.kvs"_s);
        project::CreateProject(path_.toStdString(), lcids);
        Open();
    }
    void Open() {
        connection_.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path_.toStdString() +
                         ";Mode=Read|Write|Share Deny None;");
    }
    void Init(const char* languages = "TcfgLanguages") {
        texts_.Open("TidxTexts", connection_, ado::CommandType::Table);
        records_.Open(languages, connection_, ado::CommandType::Table);
        languages_.Init(texts_, records_, path_);
    }
    /// Adds a record to the project's languages.
    void AddRecord(const ado::Value& lcid, const ado::Value& font) {
        ado::Recordset records;
        records.Open("TcfgLanguages", connection_, ado::CommandType::Table);
        records.AddNew();
        records.Set("LCID", lcid);
        records.Set("Font", font);
        records.Update();
    }
    [[nodiscard]] std::string NameOfTextColumn(const CDBLanguage& language) {
        ado::Recordset texts;
        texts.Open("TidxTexts", connection_, ado::CommandType::Table);
        return texts.Fields().at(language.textColumn.value()).name;
    }
    [[nodiscard]] std::vector<platform::Lcid> Lcids() const {
        std::vector<platform::Lcid> lcids;
        for (const CDBLanguage& language : languages_) lcids.push_back(language.lcid);
        return lcids;
    }

    QTemporaryDir folder_;
    QString path_;
    ado::Connection connection_;
    ado::Recordset texts_;
    ado::Recordset records_;
    platform::Registry registry_{{folder_.filePath(u"machine.reg"_s), {}}};
    CDBLanguages languages_{registry_};
};

TEST_F(LanguagesTest, AProjectsLanguagesInTheOrderOfTheTable) {
    OpenCopy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"));
    registry_.WriteDword(MResources::kStudioKey, u"LCID", kEnglish);
    Init();
    ASSERT_EQ(Lcids(), (std::vector{kGerman, kEnglish}));
    EXPECT_EQ(languages_.InterfaceLanguage(), kEnglish);
    EXPECT_EQ(texts_.State(), ado::ObjectState::Closed);
    EXPECT_EQ(records_.State(), ado::ObjectState::Closed);

    const CDBLanguage& german = *languages_.Item(kGerman);
    EXPECT_EQ(NameOfTextColumn(german), "L1031");
    EXPECT_EQ(NameOfTextColumn(*languages_.Item(kEnglish)), "L1033");
    EXPECT_EQ(ado::ToText(german.keyboardLayout), u"00000407");
    EXPECT_EQ(german.font.family(), u"Arial"_s);
    EXPECT_EQ(german.font.pointSizeF(), 8);
    EXPECT_EQ(german.font.weight(), QFont::Normal);
    EXPECT_EQ(german.displayName, u"German (Germany)"_s);
    EXPECT_EQ(languages_.Item(kFrench), nullptr);
}

TEST_F(LanguagesTest, LanguagesAreNamedInTheLanguageOfTheInterface) {
    texts::SetInterfaceLanguage(kGerman);
    OpenCopy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"));
    Init();
    ASSERT_EQ(languages_.Count(), 2U);
    EXPECT_EQ(languages_.begin()->displayName, u"Deutsch (Deutschland)"_s);
}

TEST_F(LanguagesTest, OddRecordsAreListedOrLeftOut) {
    OpenCopy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"));
    AddRecord(std::int32_t{kFrench}, u"");          // no column of that name
    AddRecord(std::int32_t{kGerman}, ado::Null());  // a second time
    AddRecord(ado::Null(), ado::Null());            // no language at all
    AddRecord(std::int32_t{0xFFFFF}, ado::Null());  // a language that nobody knows
    AddRecord(std::int32_t{-5}, u"Arial");
    Init();
    EXPECT_EQ(Lcids(),
              (std::vector<platform::Lcid>{kGerman, kEnglish, kFrench, 0xFFFFF, 0xFFFFFFFB}));
    EXPECT_EQ(languages_.Item(kGerman)->font.family(), u"Arial"_s) << "the first record counts";
    EXPECT_EQ(languages_.Item(kFrench)->textColumn, std::nullopt);
    EXPECT_EQ(languages_.Item(kFrench)->displayName, u"French (France)"_s);
    EXPECT_EQ(languages_.Item(0xFFFFF)->displayName, u"1048575"_s);
    EXPECT_EQ(languages_.Item(kFrench)->font, QFont());
    EXPECT_TRUE(ado::IsNull(languages_.Item(kFrench)->keyboardLayout));
}

TEST_F(LanguagesTest, ManyLanguagesHaveTheirOwnColumns) {
    std::vector<std::uint32_t> lcids;
    for (std::uint32_t i = 0; i < 251; ++i) lcids.push_back(2000 - i * 7);
    OpenNew(lcids);
    Init();
    ASSERT_EQ(Lcids(), lcids);
    for (const CDBLanguage& language : languages_) {
        EXPECT_EQ(NameOfTextColumn(language), "L" + std::to_string(language.lcid));
    }
}

TEST_F(LanguagesTest, NoRecordNoLanguage) {
    OpenCopy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"));
    Init();
    QComboBox combo;
    languages_.InitLanguageComboBox(combo, kGerman);
    ado::Recordset records;
    records.Open("TcfgLanguages", connection_, ado::CommandType::Table);
    for (records.MoveFirst(); !records.IsEOF(); records.MoveNext()) records.Delete();
    records.Close();

    Init();
    EXPECT_EQ(languages_.Count(), 0U);
    EXPECT_EQ(languages_.Current(), nullptr);
    languages_.InitLanguageComboBox(combo, kGerman);
    EXPECT_EQ(combo.count(), 0);
}

TEST_F(LanguagesTest, AFailureLeavesNoLanguageAndNothingOpen) {
    OpenCopy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"));
    Init();
    EXPECT_THROW(Init("TchrArchives"), ado::AdoError);
    EXPECT_EQ(languages_.Count(), 0U);
    EXPECT_EQ(texts_.State(), ado::ObjectState::Closed);
    EXPECT_EQ(records_.State(), ado::ObjectState::Closed);
}

TEST_F(LanguagesTest, OnlyTheUsersChoiceIsReported) {
    OpenCopy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"));
    AddRecord(std::int32_t{kFrench}, ado::Null());
    Init();
    QComboBox combo;
    std::vector<platform::Lcid> reported;
    QObject::connect(&languages_, &CDBLanguages::LanguageChanged, &languages_,
                     [&](const CDBLanguage& language) {
                         EXPECT_EQ(languages_.Current()->lcid, language.lcid);
                         reported.push_back(language.lcid);
                     });

    languages_.InitLanguageComboBox(combo, kEnglish);
    EXPECT_EQ(combo.currentText(), u"English (United States)"_s);
    EXPECT_EQ(combo.itemData(0).toUInt(), kGerman);
    EXPECT_EQ(languages_.Current()->lcid, kEnglish);
    languages_.InitLanguageComboBox(combo, kEnglish);  // again: still one connection, two entries
    EXPECT_EQ(combo.count(), 3);
    EXPECT_TRUE(reported.empty());

    combo.show();
    QTest::keyClick(&combo, Qt::Key_Up);
    QTest::keyClick(&combo, Qt::Key_Up);  // at the top already
    QTest::keyClick(&combo, Qt::Key_End);
    EXPECT_EQ(reported, (std::vector{kGerman, kFrench}));

    languages_.InitLanguageComboBox(combo, 4711);
    EXPECT_EQ(combo.currentIndex(), -1);
    EXPECT_EQ(languages_.Current(), nullptr);
}

// A project without the built-in default used to begin without any language.
TEST_F(LanguagesTest, BeginsWithTheStoredLanguageElseTheInterfacesElseTheFirst) {
    OpenCopy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"));  // German and English
    const struct {
        std::uint32_t interface;
        std::optional<platform::Lcid> stored;
        platform::Lcid start;
    } cases[] = {{kEnglish, kGerman, kGerman},  {kEnglish, std::nullopt, kEnglish},
                 {kEnglish, kFrench, kEnglish}, {kFrench, std::nullopt, kGerman},
                 {kFrench, kFrench, kGerman},   {kFrench, 0, kGerman}};
    for (const auto& each : cases) {
        registry_.WriteDword(MResources::kStudioKey, u"LCID", each.interface);
        Init();
        EXPECT_EQ(languages_.StartLanguage(each.stored), each.start);
    }
}

TEST_F(LanguagesTest, TheProjectMayBeLoadedAnewInTheMidstOfAChoice) {
    OpenCopy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"));
    Init();
    auto first = std::make_unique<QComboBox>();
    QComboBox second;
    languages_.InitLanguageComboBox(*first, kGerman);
    languages_.InitLanguageComboBox(second, kGerman);
    QSignalSpy changed(&languages_, &CDBLanguages::LanguageChanged);
    QTest::keyClick(first.get(), Qt::Key_Down);
    EXPECT_EQ(changed.size(), 0) << "the first combo box is no longer bound";
    first.reset();

    platform::Lcid seen = 0;
    QObject::connect(&languages_, &CDBLanguages::LanguageChanged, &languages_, [this] { Init(); });
    QObject::connect(&languages_, &CDBLanguages::LanguageChanged, &languages_,
                     [&seen](const CDBLanguage& language) { seen = language.lcid; });
    QTest::keyClick(&second, Qt::Key_Down);
    EXPECT_EQ(seen, kEnglish);
    EXPECT_EQ(languages_.Current()->lcid, kEnglish);
}

TEST_F(LanguagesTest, ProjectLanguageStandsInTheProjectsFile) {
    EXPECT_EQ(languages_.ProjectLanguage(), QString());
    OpenCopy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"));
    Init();
    EXPECT_EQ(languages_.ProjectLanguage(), QString()) << "a database has no section of that name";

    QFile profile(folder_.filePath(u"Projekt.txt"_s));
    ASSERT_TRUE(profile.open(QFile::WriteOnly));
    profile.write("[Other]\r\nLCID=1\r\n[global]\r\nlcid=1033\r\n");
    profile.close();
    texts_.Open("TidxTexts", connection_, ado::CommandType::Table);
    records_.Open("TcfgLanguages", connection_, ado::CommandType::Table);
    languages_.Init(texts_, records_, profile.fileName());
    EXPECT_EQ(languages_.ProjectLanguage(), u"1033"_s);
}

}  // namespace
