#include <QCoreApplication>
#include <QScopeGuard>

#include "projectdb/Failure.h"
#include "projectdb/ProjectRows.h"
#include "projectdb/ProjectTesting.h"
#include "texts/Language.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using reasons::Cause;
using reasons::Reason;

constexpr platform::Lcid kGerman = 1031;
constexpr platform::Lcid kEnglish = 1033;

TEST(FailureTest, AFieldBearsTheNameThatTheUserKnows) {
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    int count = 1;
    const QCoreApplication application(count, arguments);  // which knows the language
    const auto german = qScopeGuard([] { texts::SetInterfaceLanguage(kGerman); });
    const struct {
        platform::Lcid language;
        Reason reason;
        QString named;
    } cases[] = {
        {kGerman, {Cause::TextTooLong, {}, "Unit", 30}, u"'Einheit'"_s},
        {kEnglish, {Cause::NumberTooLarge, {}, "FilterDepth"}, u"'Filter Depth'"_s},
        {kGerman, {Cause::TextTooLong, {}, "FileName", 30}, u"'Dateiname'"_s},
        {kEnglish, {Cause::NumberTooLarge, {}, "CacheSize"}, u"'Cache Size'"_s},
        {kGerman, {Cause::TextTooLong, {}, "L1031", 255}, u"'Anzeigetext'"_s},
        {kGerman, {Cause::WrongType, {}, "Parameter"}, u"'Parameter'"_s},
        // What the file lacks is looked for under its own name.
        {kGerman, {Cause::ColumnMissing, {}, "Unit"}, u"'Unit'"_s},
    };
    for (const auto& [language, reason, named] : cases) {
        texts::SetInterfaceLanguage(language);
        const projectdb::Failure failure{0, {}, reason};
        EXPECT_TRUE(failure.Text().contains(named)) << failure.Text().toStdString();
    }
}

class NewRowFailureTest : public ProjectTest {
protected:
    /// What the user is told of the failure of `add`.
    static QString Told(const std::function<void()>& add) {
        try {
            add();
        } catch (...) {
            return projectdb::Failure::Current().Text();
        }
        return u"nothing"_s;
    }
};

TEST_F(NewRowFailureTest, ANewRowThatDoesNotFitNamesTheHeading) {
    OpenAltered([](ado::NewTable& form) {
        if (form.name != "TchrTrends" && form.name != "TchrArchives") return;
        for (ado::NewColumn& column : form.columns) {
            if (column.name == "Name") column.length = 2;
        }
    });
    projectdb::ProjectRows rows(Environment());
    const QString expected =
        u"Der Text ist zu lang: Das Feld 'Laufzeitname' fasst höchstens 2 Zeichen. Kürzen Sie ihn."_s;
    EXPECT_EQ(Told([&] { rows.AddArchive(u"Neues Archiv"); }), expected);
    project::NewTrend trend;
    EXPECT_EQ(Told([&] { rows.AddTrend(1, trend); }), expected);
}

TEST_F(NewRowFailureTest, NumbersThatAreUsedUpAreNoFullDisk) {
    OpenNew();
    expectedWarning_ = "few are left";
    Insert("TchrArchives", {{"ID", std::int32_t{INT32_MAX}}, {"Name", std::u16string(u"Letztes")}});
    projectdb::ProjectRows rows(Environment());
    const QString told = Told([&] { rows.AddArchive(u"Neues Archiv"); });
    EXPECT_TRUE(told.contains(u"letzte laufende Nummer"_s)) << told.toStdString();
    EXPECT_TRUE(told.contains(u"'kvs repair'"_s));
    EXPECT_TRUE(told.contains(u"Projekt.kvs"_s));
}

}  // namespace
