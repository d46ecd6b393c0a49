#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>

#include "platform/Registry.h"
#include "report/Wording.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using report::ArchiveRow;
using report::Line;
using report::TrendRow;

class WordingTest : public testing::Test {
protected:
    report::ReportTexts Texts(unsigned lcid) {
        QFile::remove(qEnvironmentVariable("KV_REGISTRY"));
        platform::Registry registry;
        registry.WriteDword(MResources::kStudioKey, u"LCID", lcid);
        return report::ReportTexts(registry);
    }
    static report::Cell Value(int number) { return {ado::Value(std::int32_t(number))}; }
    static report::Cell Value(const char16_t* text) { return {ado::Value(std::u16string(text))}; }
    static QString Words(const report::Lines& lines) {
        QStringList texts;
        for (const Line& line : lines) texts += line.text;
        return texts.join(u'|');
    }
    static QString FactNamed(const QList<report::Fact>& facts, const QString& name) {
        for (const report::Fact& fact : facts) {
            if (fact.name == name) return Words(fact.lines);
        }
        return u"-"_s;
    }
};

TEST_F(WordingTest, SaysWhatAnArchiveDoes) {
    struct Case {
        int type, mode, scan, samples;
        const char16_t* newFile;
        const char* kind;
        const char* storage;
        const char* recording;
        const char* change;
        const char* cache;
    };
    const Case cases[] = {
        {0, 1, 500, 36000, u"", "Circular buffer of 36000 records", "on hard disk, saved fast",
         "asynchronous (absolute time base), every 500 ms", "-", "64"},
        {9, 0, 4, 0, u"$Day", "Continuation file", "in main memory (RAM)",
         "synchronous to the process cycle, every 4 process cycles", "-", "-"},
        {17, 3, 0, 0, u"$Jahr", "Continuation file", "on hard disk, saved safely",
         "by the trigger Filler.Clock", "at the change of the year", "64"},
        {1, 5, 0, 500, u"", "Continuation file", "on hard disk, saved fast",
         "no recording (trend viewer)", "after 500 records", "64"},
        {33, 9, 0, 0, u"$minute", "Continuation file|further type bits: 32",
         "on hard disk, saved fast", "unknown code 9", "when the trigger variable $minute is set",
         "64"},
        {3, 6, 0, 0, u"", "unknown archive type 3", "on hard disk, saved fast",
         "manual recording only", "-", "64"},
        {1, 2, 0, 0, u"", "Continuation file", "on hard disk, saved fast",
         "on change of the X variable (not given)", "never", "64"},
    };
    const report::ReportTexts texts = Texts(1033);
    const report::Wording wording(texts);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.type);
        ArchiveRow row;
        row["Type"] = Value(c.type);
        row["SampleMode"] = Value(c.mode);
        row["ScanTime"] = Value(c.scan);
        row["MaxSamples"] = Value(c.samples);
        row["NewFile"] = Value(c.newFile);
        row["Trigger"] = Value(u"Filler.Clock");
        row["CacheSize"] = Value(64);
        const QList<report::Fact> facts = wording.Archive(row);
        EXPECT_EQ(FactNamed(facts, u"Archive type"_s), QLatin1String(c.kind));
        EXPECT_EQ(FactNamed(facts, u"Storage"_s), QLatin1String(c.storage));
        EXPECT_EQ(FactNamed(facts, u"Recording"_s), QLatin1String(c.recording));
        EXPECT_EQ(FactNamed(facts, u"File change"_s), QLatin1String(c.change));
        EXPECT_EQ(FactNamed(facts, u"Cache size"_s), QLatin1String(c.cache));
    }
}

TEST_F(WordingTest, SaysWhatATrendDoesAndWhatItCannotRead) {
    const report::ReportTexts texts = Texts(1031);
    const report::Wording wording(texts);
    TrendRow row;
    row["Name"] = Value(u"Druck %1");
    row["Minimum"] = Value(u"0");
    row["Maximum"] = Value(u"Kessel.Grenze");
    row["Unit"] = Value(u"bar");
    row["Factor"] = {ado::Value(0.5)};
    row["Offset"] = {ado::Value(-1.25e-07)};
    row["Hysteresis"] = Value(u"5");
    row["HysteresisMode"] = Value(1);
    row["Filter"] = Value(7);
    row["VDrawMode"] = Value(4);
    row["VLineColor"] = Value(0x0080FF);
    row["VLineWidth"] = Value(3);
    row["VLineStyle"] = {{}, true};
    row["VUpper"] = {ado::Value(8.5)};
    row["VUpperColor"] = Value(0xFF0000);
    row["VLower"] = Value(2);
    row["VLowerColor"] = Value(0x0000FF);
    row["VConfig"] = Value(1);
    row.textMissing = true;

    const report::TrendCells cells = wording.Trend(row);
    QStringList words;
    for (const report::Lines& lines : cells) words += Words(lines);
    EXPECT_EQ(words.join(u'\n').toStdString(),
              u"Druck %1|kein Indextext \nnicht angegeben\n"
              "0 bis Kessel.Grenze bar|Wert × 0,5 + -1,25E-07\n\n"
              "5 ‰ von Maximum − Minimum\nunbekannter Code 7\nBalken\n"
              "|#ff8000|3 px, beschädigt\noben 8,5|unten 2|Band als Linie"_s.toStdString());
    const Line& curve = cells[7].front();
    ASSERT_TRUE(curve.curve);
    EXPECT_EQ(curve.curve->Colour(), QColor(0xFF, 0x80, 0x00));
    EXPECT_EQ(cells[5].front().look, Line::Look::Warning);
    EXPECT_EQ(cells[8][0].curve->Colour(), QColor(Qt::blue));
    EXPECT_EQ(cells[8][1].curve->Colour(), QColor(Qt::red));

    // The mode is limited to its list, as in the dialog.
    const std::pair<report::Cell, QString> modes[] = {
        {Value(7), u"keine"_s}, {Value(-1), u"5 absolut"_s}, {{}, u"5 absolut"_s}};
    for (const auto& [mode, shown] : modes) {
        row["HysteresisMode"] = mode;
        EXPECT_EQ(Words(wording.Trend(row)[4]), shown);
    }
    // Without an amount there is no hysteresis, whatever the mode says.
    row["Hysteresis"] = {};
    EXPECT_EQ(Words(wording.Trend(row)[4]), u"keine"_s);
}

TEST_F(WordingTest, LeavesOutWhatNoPageCanHold) {
    EXPECT_EQ(report::PlainText({ado::Value(std::u16string(1, u'\0'))}), QString());
    EXPECT_EQ(report::PlainText({ado::Value(std::u16string(u"a\u0007\xD800z"))}),
              u"a\uFFFD\uFFFDz"_s);
    EXPECT_EQ(report::PlainText({ado::Value(std::u16string(u"\U0001F37A"))}), u"\U0001F37A"_s);
}

TEST_F(WordingTest, DrawsCurvesAsTheyAreStored) {
    const QImage dashed = report::Curve{0x0000FF, 3, 1}.Picture(1);
    int inked = 0;
    int changes = 0;
    bool before = false;
    for (int x = 4; x < report::Curve::kSampleWidth - 4; ++x) {
        const bool ink = dashed.pixelColor(x, report::Curve::kSampleHeight / 2) == QColor(Qt::red);
        inked += ink ? 1 : 0;
        changes += ink != before ? 1 : 0;
        before = ink;
    }
    EXPECT_GT(inked, 15);
    EXPECT_GT(changes, 5) << "a dashed line has gaps";
    EXPECT_NE(report::Curve({0xFFFFFF, 1, 0}).Ground(), QColor(Qt::white));
    EXPECT_EQ(report::Curve::FromPictureName(report::Curve{0x12AB, 2, 1}.PictureName())->colour,
              0x12ABU);
    EXPECT_FALSE(report::Curve::FromPictureName(u"file:///etc/passwd"_s));
}

}  // namespace
