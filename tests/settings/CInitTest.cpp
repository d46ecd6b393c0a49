#include "settings/CInit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "platform/Error.h"
#include "platform/ProfileFile.h"
#include "SampleForm.h"
#include "settings/CInitItem.h"

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kDefault = u"FKVARCHIVDBSERVER"_s;

/// Runs in the user's locale of a station.
class LocaleScope {
public:
    explicit LocaleScope(const QLocale& locale) { QLocale::setDefault(locale); }
    ~LocaleScope() { QLocale::setDefault(before_); }
    LocaleScope(const LocaleScope&) = delete;
    LocaleScope& operator=(const LocaleScope&) = delete;

private:
    QLocale before_;
};

class CInitTest : public testing::Test {
protected:
    void Put(const QByteArray& bytes) {
        QFile file(path_);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray Get() {
        QFile file(path_);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }

    QTemporaryDir folder_;
    QString path_ = folder_.filePath(u"KVEditors.ini"_s);
    CInit init_;
};

TEST_F(CInitTest, BuiltInDefaultIsComplete) {
    init_.LoadDefaultInit(kDefault);
    struct Case {
        const char* key;
        InitValue value;
    };
    const Case cases[] = {
        {"Me.WindowState", 2},
        {"Me.Width", 6000},
        {"Me.Font.Name", u"Arial"_s},
        {"tdbA.Font.Size", 8.25},
        {"tdbA.Splits(0).Columns(\"Name\").Order", 1},
        {"tdbA.splits(1).Columns(\"trendvar\").Visible", true},
        {"tdbA.Splits(1).Columns(VUnitID).Width", 1995.024},
        {"tdbA.Splits(1).Columns(\"Comment\").Width", 3000.189},
        {"SaveOnExit", true},
        {"CurrentLCID", 1031},
        {"sb.Visible", true},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(init_.ReadAValueFromCInits(QString::fromLatin1(c.key)) == c.value) << c.key;
    }
    EXPECT_TRUE(init_.ReadAValueFromCInits(u"TDBAColOrders").AsText().startsWith(u",8,10,36,0,9,"));
    EXPECT_EQ(init_.Items().Item(u"tdbA")->Items().Item(u"Splits(1)")->Items().Count(), 23U);
    EXPECT_TRUE(init_.ParamExist(u"tdbA.splits(1).Columns(\"Comment\").AllowSizing"));
    EXPECT_FALSE(init_.ParamExist(u"tdbA.splits(1).Columns(\"Factor\").AllowSizing"));
    EXPECT_TRUE(init_.ParamExist(u"tdbA.Splits(1)"));
    EXPECT_FALSE(init_.ParamExist(u""));
    try {
        init_.LoadDefaultInit(u"NONE"_s);
        ADD_FAILURE();
    } catch (const platform::Error& error) {
        EXPECT_EQ(error.Number(), platform::ErrorNumber::kResourceNotFound);
    }
}

TEST_F(CInitTest, ValuesByKey) {
    EXPECT_EQ(init_.ReadAValueFromCInits(u"a.b", 7).AsNumber(), 7);
    init_.WriteAValueToCInits(u"a.b.c"_s, 1);
    init_.WriteAValueToCInits(u"A.B.D"_s, u"x"_s);
    EXPECT_EQ(init_.ReadAValueFromCInits(u"A.b.C", 7).AsNumber(), 1);
    EXPECT_EQ(init_.ReadAValueFromCInits(u"a.b", 7).AsNumber(), 7) << "an inner node has no value";
    init_.DeleteAValueInCInits(u"a.b");  // no leaf
    init_.DeleteAValueInCInits(u"a.b.c");
    EXPECT_FALSE(init_.ParamExist(u"a.b.c"));
    EXPECT_TRUE(init_.ParamExist(u"a.b.d"));
    init_.DeleteAValueInCInits(u"a.b.d");
    EXPECT_FALSE(init_.ParamExist(u"a")) << "it would have become a leaf";
    for (const QString& key : {u""_s, u"a=b"_s, u"a\nb"_s, u";a"_s}) {
        init_.WriteAValueToCInits(key, 1);
        EXPECT_FALSE(init_.ParamExist(key)) << key.toStdString();
    }
}

TEST_F(CInitTest, FileOverridesTheDefaultAndKeepsWhatIsForeign) {
    init_.LoadDefaultInit(kDefault);
    Put("; mine\r\n[Other]\r\nSaveOnExit=False\r\n[fkvarchivdbserver]\r\nsaveonexit=False\r\n"
        "TDBAColOrders=\",1,2\"\r\nMe.Font.Size=9.75pt\r\nMe.PosLeft=-5\r\nunknown=5\r\n"
        "CurrentLCID=a=b\r\n");
    init_.LoadInits(path_);
    EXPECT_TRUE(init_.ReadAValueFromCInits(u"SaveOnExit") == InitValue(false));
    EXPECT_TRUE(init_.ReadAValueFromCInits(u"RequestOnDelete") == InitValue(true));
    EXPECT_TRUE(init_.ReadAValueFromCInits(u"TDBAColOrders") == InitValue(u",1,2"_s));
    EXPECT_TRUE(init_.ReadAValueFromCInits(u"Me.Font.Size") == InitValue(9.75));
    EXPECT_TRUE(init_.ReadAValueFromCInits(u"Me.PosLeft") == InitValue(u"-5"_s));
    EXPECT_TRUE(init_.ReadAValueFromCInits(u"CurrentLCID") == InitValue(u"a=b"_s));
    EXPECT_FALSE(init_.ParamExist(u"unknown"));

    init_.WriteToIni(u"SaveOnExit"_s, true);
    EXPECT_TRUE(Get().contains("saveonexit=True\r\n"));
    EXPECT_FALSE(Get().contains("RequestOnDelete"));
    init_.SaveInits();
    const QByteArray saved = Get();
    EXPECT_TRUE(
        saved.startsWith("; mine\r\n[Other]\r\nSaveOnExit=False\r\n[fkvarchivdbserver]\r\n"
                         "saveonexit=False\r\nTDBAColOrders=\",1,2\"\r\n"));
    EXPECT_TRUE(saved.contains("\r\nunknown=5\r\n"));
    EXPECT_TRUE(saved.contains("\r\nRequestOnDelete=True\r\n"));
    init_.SaveInits();
    EXPECT_EQ(Get(), saved);

    CInit fresh;
    fresh.WriteAValueToCInits(u"a"_s, 1);
    EXPECT_THROW(fresh.SaveInits(), platform::Error) << "no file was named";
}

TEST_F(CInitTest, AnyFileIsHarmless) {
    SampleForm form;
    init_.SetMotherobject(&form);
    init_.LoadDefaultInit(kDefault);
    const QByteArray key = "[FKVARCHIVDBSERVER]\nMe.Width=";
    for (const QByteArray& bytes :
         {QByteArray("\xFF\xFE\x5B", 3), QByteArray(1000, '\0'), QByteArray(100'000, '['),
          key + QByteArray(1'000'000, '9'), key + QByteArray(1'000'000, '\xE4'),
          key + "1e99999\nMe.Height=-1\nMe.Font.Size=99999\ntdbA.Font.Name=\nMe.WindowState=99"}) {
        Put(bytes);
        init_.LoadInits(path_);
        init_.SetInitToMotherObject();
        init_.SetInitToControl(u"Me"_s);
        EXPECT_LE(form.width(), 2185);
    }
    init_.LoadInits(folder_.path());  // a folder: what was in force stays
    EXPECT_TRUE(init_.ReadAValueFromCInits(u"SaveOnExit").AsBoolean());
    EXPECT_THROW(init_.SaveInits(), platform::Error);
}

// They are put cut to 16 bits, and used to come back so.
TEST_F(CInitTest, ANumberThatDoesNotFitStaysUntilSomebodyChangesIt) {
    SampleForm form;
    init_.SetMotherobject(&form);
    init_.LoadDefaultInit(kDefault);
    init_.WriteAValueToCInits(u"Me.PosLeft"_s, 50000);
    init_.WriteAValueToCInits(u"Me.PosTop"_s, 50000);
    init_.SetInitToControl(u"Me"_s);
    EXPECT_EQ(form.posLeft, 32767);
    form.posTop = 120;
    init_.GetInitFromControl(u"Me"_s);
    EXPECT_EQ(init_.ReadAValueFromCInits(u"Me.PosLeft").AsNumber(), 50000);
    EXPECT_EQ(init_.ReadAValueFromCInits(u"Me.PosTop").AsNumber(), 120);
}

// A station in each locale: defaults, a changed layout, saved, and found again in a new window.
TEST_F(CInitTest, LayoutOfARealWindowComesBack) {
    for (const QLocale& locale : {QLocale(QLocale::German, QLocale::Germany),
                                  QLocale(QLocale::English, QLocale::UnitedStates)}) {
        SCOPED_TRACE(locale.name().toStdString());
        const LocaleScope scope(locale);
        QFile::remove(path_);
        {
            SampleForm form;
            form.show();
            CInit init;
            init.SetMotherobject(&form);
            init.LoadDefaultInit(kDefault);
            init.LoadInits(path_);
            init.SetInitToMotherObject();
            init.SetInitToControl(u"Me"_s);
            EXPECT_EQ(form.tdbA->font().family(), u"Arial"_s);
            EXPECT_EQ(form.tdbA->font().pointSize(), 8);
            EXPECT_TRUE(form.isMaximized());
            const SampleSplit& trends = form.tdbA->splits[1];
            EXPECT_EQ(trends[u"TrendVar"_s]->width, 1995);
            EXPECT_TRUE(trends[u"TrendVar"_s]->visible);
            EXPECT_FALSE(trends[u"Maximum"_s]->visible);

            form.setWindowState(Qt::WindowNoState);
            form.resize(500, 300);
            form.posLeft = -15;
            trends[u"TrendVar"_s]->width = 2500.5F;
            trends[u"Maximum"_s]->visible = true;
            form.tdbA->setFont(QFont(u"Courier"_s, 11));
            form.sb->hide();  // is not read back: only the window and its grid are
            init.GetInitFromControl(u"tdbA"_s);
            init.GetInitFromControl(u"Me"_s);
            init.WriteAValueToCInits(u"CurrentLCID"_s, 1033);
            init.SaveInits();
        }
        const QByteArray saved = Get();
        EXPECT_TRUE(saved.startsWith("[FKVARCHIVDBSERVER]\r\nMe.WindowState=0\r\n"));
        const QByteArray width = locale.decimalPoint() == u","_s ? "2500,5" : "2500.5";
        EXPECT_TRUE(
            saved.contains("\r\ntdbA.Splits(1).Columns(\"TrendVar\").Width=" + width + "\r\n"));
        EXPECT_TRUE(saved.contains("\r\nCurrentLCID=1033\r\nsb.Visible=True\r\n"));

        SampleForm form;
        CInit init;
        init.SetMotherobject(&form);
        init.LoadDefaultInit(kDefault);
        init.LoadInits(path_);
        init.SetInitToMotherObject();
        init.SetInitToControl(u"Me"_s);
        EXPECT_EQ(form.size(), QSize(500, 300));
        EXPECT_EQ(form.posLeft, -15) << "a number with a sign is text, and put as such";
        EXPECT_EQ(form.tdbA->splits[1][u"TrendVar"_s]->width, 2500);
        EXPECT_TRUE(form.tdbA->splits[1][u"Maximum"_s]->visible);
        EXPECT_EQ(form.tdbA->font().family(), u"Courier"_s);
        EXPECT_EQ(form.tdbA->font().pointSize(), 11);
    }
}

}  // namespace
