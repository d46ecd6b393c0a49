#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "project/ProjectTesting.h"
#include "replace/Hits.h"
#include "replace/Matcher.h"
#include "replace/ProjectFields.h"
#include "support/PrintQt.h"

namespace replace {
namespace {

using namespace Qt::Literals::StringLiterals;
using Refusal = Hits::Refusal;
using testing::ElementsAre;

QString Of(QStringView text, const Term& term, const QString& by) {
    const Matcher matcher(term);
    return matcher.Replace(text, Replacement(by, matcher.Groups())).text;
}

TEST(MatcherTest, ATermIsFoundAsItsOptionsSay) {
    struct Case {
        QString text;
        Term term;
        QString by;
        QString replaced;
    };
    const Case cases[] = {
        {u"Tank 1, tank 2"_s, {u"tank"_s}, u"Kessel"_s, u"Kessel 1, Kessel 2"_s},
        {u"Tank 1, tank 2"_s, {.text = u"tank"_s, .isCase = true}, u"T"_s, u"Tank 1, T 2"_s},
        {u"Öl Ölstand Erdöl Öl_1"_s,
         {.text = u"öl"_s, .isWord = true},
         u"X"_s,
         u"X Ölstand Erdöl Öl_1"_s},
        {u"a.b axb"_s, {u"a.b"_s}, u"\\1"_s, u"\\1 axb"_s},
        {u"a.b"_s, {.text = u"a"_s, .isWhole = true}, u"X"_s, u"a.b"_s},
        {u"A.B"_s, {.text = u"a.b"_s, .isWhole = true}, u"X"_s, u"X"_s},
        {u"P07_V3"_s,
         {.text = u"P(\\d+)_V(\\d+)"_s, .isExpression = true},
         u"\\2\\\\Pumpe\\1"_s,
         u"3\\Pumpe07"_s},
        {u"Druck"_s, {.text = u"^"_s, .isExpression = true}, u"Alt_"_s, u"Alt_Druck"_s},
        {u"ab"_s, {.text = u"a|b"_s, .isWhole = true, .isExpression = true}, u"X"_s, u"ab"_s},
        {u"abba"_s, {.text = u"b"_s}, u""_s, u"aa"_s},
    };
    for (const Case& c : cases) EXPECT_EQ(Of(c.text, c.term, c.by), c.replaced);

    const Matcher matcher({.text = u"k+"_s, .isExpression = true});
    EXPECT_THAT(matcher.PartsOf(u"Druckk k"), ElementsAre(Part{4, 2}, Part{7, 1}));
    EXPECT_THAT(matcher.Replace(u"Druckk k", Replacement(u"xyz", 0)).parts,
                ElementsAre(Part{4, 3}, Part{8, 3}));
}

TEST(MatcherTest, WhatIsWrongIsToldAtItsPlace) {
    // What is put around an expression must not make up for what it lacks.
    const Matcher half({.text = u"a)(b"_s, .isWord = true, .isExpression = true});
    ASSERT_TRUE(half.Wrong());
    EXPECT_EQ(half.Wrong()->at, 1);
    EXPECT_FALSE(half.IsIn(u"a)(b"));
    EXPECT_FALSE(Matcher({u"a)(b"_s}).Wrong());
    const Replacement by(u"x\\1\\\\2\\2", 1);
    ASSERT_TRUE(by.Wrong());
    EXPECT_EQ(by.Wrong()->at, 6);
    EXPECT_EQ(by.Wrong()->group, 2);
    EXPECT_FALSE(Replacement(u"\\2", std::nullopt).Wrong()) << "no expression";
}

/// Of a project with the archives "Öfen" (trends "A" and "B") and "Walze".
class HitsTest : public testing::Test {
protected:
    HitsTest() { project_.AddInOrder(); }

    void Find(const Term& term, const std::optional<QString>& by = {}, unsigned kinds = kAllKinds) {
        fields_.Read(project_.connection);
        hits_.Search(term, kinds);
        hits_.SetReplacement(by);
        Work();
    }
    void Work() {
        while (hits_.SearchOn(QDeadlineTimer(0))) {
        }
        while (hits_.CheckOn(project_.connection, QDeadlineTimer(0))) {
        }
    }
    /// "archive/trend/column=text", and behind it what is wrong.
    [[nodiscard]] QStringList Found() const {
        QStringList found;
        for (std::size_t hit = 0; hit < hits_.Count(); ++hit) {
            const auto& field = hits_.FieldOf(hit);
            QString text = u"%1/%2/%3=%4"_s.arg(
                fields_.ArchiveName(field), fields_.TrendName(field),
                QString::fromStdString(fields_.ColumnOf(field).name), fields_.TextOf(field));
            if (hits_.IsUnchanged(hit)) text += u" same"_s;
            if (const auto refusal = hits_.RefusalOf(hit)) {
                text += u" refused %1"_s.arg(static_cast<int>(*refusal));
            }
            found += text;
        }
        return found;
    }
    [[nodiscard]] static QString Refused(Refusal cause) {
        return u" refused %1"_s.arg(static_cast<int>(cause));
    }

    project::TestProject project_;
    ProjectFields fields_;
    Hits hits_{fields_};
};

TEST_F(HitsTest, FieldsAreFoundByKindAndPlace) {
    project_.Set({{project::kTrendTable, 1, "Maximum", u"Pump.Speed"},
                  {project::kTrendTable, 1, "Minimum", u"10"},
                  {project::kTrendTable, 2, "Comment", u"10 bar"},
                  {project::kArchiveTable, 1, "Trigger", u"pump.speed"},
                  {project::kArchiveTable, 2, "NewFile", u"$Day"},
                  {project::kArchiveTable, 1, "FileName", u"Pump.Speed"}});
    Find({.text = u"pump.speed"_s, .isWhole = true}, {}, kVariables);
    EXPECT_EQ(Found(),
              QStringList({u"Öfen//Trigger=pump.speed"_s, u"Öfen/A/TrendVar=Pump.Speed"_s,
                           u"Öfen/A/Maximum=Pump.Speed"_s, u"Öfen/B/TrendVar=Pump.Speed"_s}));
    // A limit and an event of the clock are no variables.
    Find({u"10"_s});
    EXPECT_EQ(Found(), QStringList({u"Öfen/B/Comment=10 bar"_s}));
    Find({u"$day"_s});
    EXPECT_EQ(Found(), QStringList());
    Find({.text = u"walze"_s}, {}, kNames | kTexts);
    EXPECT_EQ(Found(), QStringList({u"Walze//Name=Walze"_s, u"Walze//L1031=Walze"_s}));
    EXPECT_EQ(hits_.WrittenCount(), 0U) << "nothing is replaced";
}

TEST_F(HitsTest, WhatCannotBeWrittenIsKnownBefore) {
    project_.Set({{project::kTrendTable, 1, "Name", u"Druck"},
                  {project::kTrendTable, 2, "Name", u"Druck1"},
                  {project::kTrendTable, 1, "Unit", u"1"}});
    const auto names = [this](const QString& text, const QString& by) {
        Find({.text = text, .isCase = true, .isExpression = true}, by, kNames);
        return Found();
    };
    EXPECT_EQ(names(u"Druck1?"_s, u"Druck1"_s),
              QStringList({u"Öfen/Druck/Name=Druck"_s + Refused(Refusal::NameDouble),
                           u"Öfen/Druck1/Name=Druck1 same"_s}));
    EXPECT_EQ(hits_.WrittenCount(), 0U);
    EXPECT_EQ(names(u"^Druck$"_s, u""_s),
              QStringList({u"Öfen/Druck/Name=Druck"_s + Refused(Refusal::NameEmpty)}));
    EXPECT_EQ(names(u"ruck1"_s, QString(80, u'x')),
              QStringList({u"Öfen/Druck1/Name=Druck1"_s + Refused(Refusal::DoesNotFit)}));
    EXPECT_EQ(names(u"Walze"_s, u"öfen"_s),
              QStringList({u"Walze//Name=Walze"_s + Refused(Refusal::NameDouble)}));

    // One that gives its name up makes room for the other, as long as it is ticked and shown.
    const QStringList both({u"Öfen/Druck/Name=Druck"_s, u"Öfen/Druck1/Name=Druck1"_s});
    EXPECT_EQ(names(u"Druck"_s, u"Druck1"_s), both);
    EXPECT_EQ(hits_.WrittenCount(), 2U);
    hits_.SetTicked(1, false);
    EXPECT_TRUE(hits_.IsChecking());
    Work();
    EXPECT_EQ(Found().front(), both.front() + Refused(Refusal::NameDouble));
    EXPECT_EQ(hits_.WrittenCount(), 0U);
    hits_.SetTicked(1, true);
    Work();
    EXPECT_EQ(Found(), both);
    hits_.SetShown(1, false);
    Work();
    EXPECT_EQ(hits_.WrittenCount(), 0U);
    EXPECT_TRUE(hits_.ToWrite().cells.empty());
    EXPECT_EQ(hits_.RefusedCount(), 1U);
    hits_.SetReplacement(u"Luft"_s);
    Work();
    EXPECT_EQ(hits_.WrittenCount(), 1U);
    EXPECT_EQ(hits_.RefusedCount(), 0U);
}

TEST_F(HitsTest, WhatIsWrittenIsWhatIsCounted) {
    project_.Set({{project::kTrendTable, 2, "Comment", u"A"}});
    Find({.text = u"A"_s, .isCase = true, .isWhole = true}, u"Ä"_s);
    EXPECT_EQ(Found(), QStringList({u"Öfen/A/Name=A"_s, u"Öfen/A/L1031=A"_s, u"Öfen/A/L1033=A"_s,
                                    u"Öfen/B/Comment=A"_s}));
    hits_.SetTicked(1, false);
    Work();
    const Hits::Changes changes = hits_.ToWrite();
    EXPECT_EQ(changes.cells.size(), hits_.WrittenCount());
    ASSERT_TRUE(project::WriteCells(project_.connection, changes.cells).isDone);
    Find({.text = u"Ä"_s, .isWhole = true});
    EXPECT_EQ(Found(),
              QStringList({u"Öfen/Ä/Name=Ä"_s, u"Öfen/Ä/L1033=Ä"_s, u"Öfen/B/Comment=Ä"_s}));
    // What has been found is not there any more.
    const auto written = project::WriteCells(project_.connection, changes.cells);
    EXPECT_FALSE(written.isDone);
    EXPECT_EQ(written.refusals.size(), changes.cells.size());
    // A text that is cleared is nothing, as in a cell.
    Find({.text = u"Ä"_s, .isWhole = true}, u""_s, kComments);
    ASSERT_EQ(hits_.ToWrite().cells.size(), 1U);
    EXPECT_TRUE(ado::IsNull(hits_.ToWrite().cells.front().is));
}

}  // namespace
}  // namespace replace
