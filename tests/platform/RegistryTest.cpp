#include "platform/Registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QStringEncoder>
#include <QTemporaryDir>

#include "platform/Error.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using platform::Registry;
using platform::RegistryFiles;

const QString kKey = u"SOFTWARE\\Brantor GmbH\\Korvala\\4.0"_s;
const QString kVersion5 = u"Windows Registry Editor Version 5.00\r\n\r\n"_s;
const QString kSection = u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0]\r\n"_s;

QByteArray Utf16(const QString& text) {
    return "\xFF\xFE" + QByteArray(QStringEncoder(QStringEncoder::Utf16LE)(text));
}

class RegistryTest : public testing::Test {
protected:
    void Put(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray Get(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }

    QTemporaryDir folder_;
    QString user_ = folder_.filePath(u"user/machine.reg"_s);
    QString system_ = folder_.filePath(u"system.reg"_s);
    QString named_ = folder_.filePath(u"named.reg"_s);
    Registry registry_{RegistryFiles{named_, {}}};
};

TEST_F(RegistryTest, ReadsEveryWrittenFormOfAValue) {
    struct Case {
        const char* what;
        QString body;  // behind the header, in section 4.0
        QString name;
        QString expected;  // of ReadString with the default "-"
        int problems;
    };
    const Case cases[] = {
        {"string", u"\"Path\"=\"D:\\\\Projekte\\\\Süd\""_s, u"path"_s, u"D:\\Projekte\\Süd"_s, 0},
        {"escaped quote", u"\"a\\\"b\"=\"x\\\"y\""_s, u"A\"B"_s, u"x\"y"_s, 0},
        {"text that ends in a backslash", u"\"a\"=\"D:\\\\\"\r\n\"b\"=\"2\""_s, u"b"_s, u"2"_s, 0},
        {"empty string", u"\"a\"=\"\""_s, u"a"_s, u""_s, 0},
        {"number", u"\"LCID\"=dword:00000409"_s, u"lcid"_s, u"1033"_s, 0},
        {"default value", u"@=\"base\""_s, u""_s, u"base"_s, 0},
        {"expandable text in hex over two lines",
         u"\"Common\"=hex(2):44,00,3a,00,\\\r\n  5c,00,4b,00,00,00\r\n\"b\"=\"2\""_s, u"Common"_s,
         u"D:\\K"_s, 0},
        {"number as bytes", u"\"LCID\"=hex(4):09,04,00,00"_s, u"lcid"_s, u"1033"_s, 0},
        {"binary is no text", u"\"a\"=hex:01,02,\\\r\n  03"_s, u"a"_s, u"-"_s, 0},
        {"value behind a binary", u"\"a\"=hex:01,\\\r\n  02\r\n\"b\"=\"2\""_s, u"b"_s, u"2"_s, 0},
        {"blanks and a comment", u"  \"a\" = \"1\" ; one"_s, u"a"_s, u"1"_s, 0},
        {"the last one counts", u"\"a\"=\"1\"\r\n\"A\"=\"2\""_s, u"a"_s, u"2"_s, 0},
        {"deleted value", u"\"a\"=\"1\"\r\n\"a\"=-"_s, u"a"_s, u"-"_s, 0},
        {"deleted key", u"\"a\"=\"1\"\r\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\brantor gmbh]"_s, u"a"_s,
         u"-"_s, 0},
        {"another hive",
         u"[HKEY_CURRENT_USER\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0]\r\n\"a\"=\"1\""_s, u"a"_s,
         u"-"_s, 0},
        {"where 32-bit programs are",
         u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Brantor GmbH\\Korvala\\4.0]\r\n\"a\"=\"w\""_s,
         u"a"_s, u"w"_s, 0},
        {"open quote", u"\"a\"=\"1\r\n\"b\"=\"2\""_s, u"b"_s, u"2"_s, 1},
        {"no value at all", u"nonsense\r\n\"b\"=\"2\""_s, u"b"_s, u"2"_s, 1},
        {"number too long", u"\"a\"=dword:123456789\r\n\"b\"=\"2\""_s, u"a"_s, u"-"_s, 1},
        {"header without its end", u"[HKEY_LOCAL_MACHINE\\X\r\n\"a\"=\"1\""_s, u"a"_s, u"-"_s, 1},
    };
    for (const Case& c : cases) {
        const QString text = kVersion5 + kSection + c.body + u"\r\n"_s;
        for (const QByteArray& bytes :
             {Utf16(text), text.toUtf8(), "\xEF\xBB\xBF" + text.toUtf8()}) {
            SCOPED_TRACE(c.what);
            Put(named_, bytes);
            Registry registry(RegistryFiles{named_, {}});
            EXPECT_EQ(registry.ReadString(kKey.toUpper(), c.name, u"-"_s), c.expected);
            EXPECT_EQ(registry.Problems().size(), c.problems);
        }
    }
}

TEST_F(RegistryTest, OldExportIsInTheSystemCodePage) {
    Put(named_,
        "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\X]\r\n\"a\"=\"\x80 f\xFCr\"\r\n"
        "\"b\"=hex(2):44,fc,00\r\n");
    EXPECT_EQ(registry_.ReadString(u"SOFTWARE\\X", u"a"), u"€ für"_s);
    EXPECT_EQ(registry_.ReadString(u"SOFTWARE\\X", u"b"), u"Dü"_s);
}

TEST_F(RegistryTest, TextInDecimalCountsAsNumber) {
    Put(named_, (kVersion5 + kSection + u"\"LCID\"=\" 1033\"\r\n\"x\"=\"english\"\r\n"_s).toUtf8());
    EXPECT_EQ(registry_.ReadDword(kKey, u"LCID", 1031), 1033U);
    EXPECT_EQ(registry_.ReadDword(kKey, u"x", 1031), 1031U);
    EXPECT_EQ(registry_.ReadDword(kKey, u"none", 1031), 1031U);
}

TEST_F(RegistryTest, ProblemsNameFileAndLine) {
    Put(named_, (kVersion5 + kSection + u"\"a\"=\"1\"\r\nnonsense\r\n"_s).toUtf8());
    EXPECT_THAT(registry_.Problems(), testing::ElementsAre(named_ + u":5: nonsense"_s));
}

TEST_F(RegistryTest, WritingTouchesItsOwnLineOnly) {
    const QString before = u"; mine\r\n"_s + kSection +
                           u"\"b\"=\"keep\"\r\n\"LCID\"=hex(4):07,04,\\\r\n  00,00\r\n; end\r\n\r\n"
                           "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Other]\r\nnonsense\r\n\"ä\"=\"ö\"\r\n"_s;
    Put(named_, Utf16(kVersion5 + before));

    registry_.WriteDword(kKey, u"lcid", 1033);
    QString after = before;
    after.replace(u"\"LCID\"=hex(4):07,04,\\\r\n  00,00"_s, u"\"lcid\"=dword:00000409"_s);
    EXPECT_EQ(Get(named_), Utf16(kVersion5 + after));

    registry_.WriteString(kKey, u"New", u"C:\\\"x\""_s);
    after.replace(u"dword:00000409\r\n"_s, u"dword:00000409\r\n\"New\"=\"C:\\\\\\\"x\\\"\"\r\n"_s);
    EXPECT_EQ(Get(named_), Utf16(kVersion5 + after));

    registry_.WriteString(u"SOFTWARE\\Third", u"", u"base"_s);
    after += u"\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Third]\r\n@=\"base\"\r\n"_s;
    EXPECT_EQ(Get(named_), Utf16(kVersion5 + after));
    EXPECT_EQ(registry_.ReadString(u"software\\third", u""), u"base"_s);
}

TEST_F(RegistryTest, WritingKeepsUnixLineEndsAndAnUnfinishedLastLine) {
    Put(named_,
        "Windows Registry Editor Version 5.00\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\X]\n\"a\"=\"1\"");
    registry_.WriteString(u"SOFTWARE\\X", u"b", u"2"_s);
    EXPECT_EQ(
        Get(named_),
        "Windows Registry Editor Version 5.00\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\X]\n\"a\"=\"1\"\n"
        "\"b\"=\"2\"\n");
}

TEST_F(RegistryTest, OldExportTakesCharactersBeyondItsCodePage) {
    Put(named_, "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\X]\r\n\"a\"=\"\xFC\"\r\n");
    registry_.WriteString(u"SOFTWARE\\X", u"b", u"Łódź"_s);
    Registry fresh(RegistryFiles{named_, {}});
    EXPECT_EQ(fresh.ReadString(u"SOFTWARE\\X", u"a"), u"ü"_s);
    EXPECT_EQ(fresh.ReadString(u"SOFTWARE\\X", u"b"), u"Łódź"_s);
}

TEST_F(RegistryTest, TextsWithLineEndsDoNotBreakTheFile) {
    for (const QByteArray& header : {kVersion5.toUtf8(), QByteArray("REGEDIT4\r\n\r\n")}) {
        Put(named_, header);
        registry_.WriteString(u"SOFTWARE\\X", u"a", u"ü\r\n[b]"_s);
        registry_.WriteString(u"SOFTWARE\\X", u"b", u"2"_s);
        Registry fresh(RegistryFiles{named_, {}});
        EXPECT_EQ(fresh.ReadString(u"SOFTWARE\\X", u"a"), u"ü\r\n[b]"_s);
        EXPECT_EQ(fresh.ReadString(u"SOFTWARE\\X", u"b"), u"2"_s);
    }
}

// The written line was taken for the rest of the list, once even across a blank line.
TEST_F(RegistryTest, AnUnfinishedListDoesNotSwallowWhatIsWritten) {
    for (const QString& list : {u"\"a\"=hex:01,\\"_s, u"\"a\"=hex:01,\\\\"_s}) {
        for (const QString& rest : {u""_s, u"\r\n"_s}) {
            Put(named_, Utf16(kVersion5 + kSection + list + rest));
            registry_.WriteDword(kKey, u"b", 2);
            EXPECT_EQ(Registry(RegistryFiles{named_, {}}).ReadDword(kKey, u"b"), 2U);
        }
    }
}

TEST_F(RegistryTest, ManyDeletedKeysTakeTheirTimeOnly) {
    QString text = kVersion5;
    for (int i = 0; i < 30'000; ++i) {
        text += u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\K%1\\A]\r\n"_s.arg(i);
    }
    for (int i = 0; i < 30'000; ++i) text += u"[-HKEY_LOCAL_MACHINE\\NONE]\r\n"_s;
    text += u"[-HKEY_LOCAL_MACHINE\\SOFTWARE\\K1]\r\n"_s + kSection + u"\"a\"=\"1\"\r\n"_s;
    Put(named_, Utf16(text));
    EXPECT_EQ(registry_.ReadString(kKey, u"a"), u"1"_s);
}

TEST_F(RegistryTest, AValueOf32BitProgramsIsWrittenWhereItIs) {
    const QString section =
        u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Brantor GmbH\\Korvala\\4.0]\r\n"_s;
    Put(named_, (kVersion5 + section + u"\"LCID\"=dword:00000407\r\n"_s).toUtf8());
    registry_.WriteDword(kKey, u"LCID", 1033);
    EXPECT_EQ(Get(named_), (kVersion5 + section + u"\"LCID\"=dword:00000409\r\n"_s).toUtf8());
}

TEST_F(RegistryTest, UserFileBeginsAsACopyOfTheSystemFile) {
    Registry registry(RegistryFiles{user_, system_});
    EXPECT_EQ(registry.ReadString(kKey, u"a", u"-"_s), u"-"_s) << "no file is an empty registry";
    Put(system_, (kVersion5 + kSection + u"\"a\"=\"1\"\r\n"_s).toUtf8());
    EXPECT_EQ(registry.ReadString(kKey, u"a"), u"1"_s) << "a file that has appeared is read";

    const QByteArray systemBefore = Get(system_);
    registry.WriteDword(kKey, u"LCID", 1033);
    EXPECT_EQ(Get(system_), systemBefore);
    EXPECT_EQ(registry.ReadString(kKey, u"a"), u"1"_s);
    EXPECT_EQ(registry.ReadDword(kKey, u"LCID"), 1033U);
}

TEST_F(RegistryTest, ChangesOfOthersAreSeen) {
    Registry other(RegistryFiles{named_, {}});
    for (std::uint32_t number = 1; number <= 20; ++number) {
        other.WriteDword(kKey, u"n", number);
        ASSERT_EQ(registry_.ReadDword(kKey, u"n"), number);
    }
    QFile::remove(named_);
    EXPECT_EQ(registry_.ReadDword(kKey, u"n", 7), 7U);
}

TEST_F(RegistryTest, AFileThatCannotBeReadIsAnErrorWithItsName) {
    QDir().mkpath(named_);  // a folder in its place; permissions would not stop root
    try {
        (void)registry_.ReadString(kKey, u"a");
        FAIL() << "read a folder";
    } catch (const platform::Error& error) {
        EXPECT_EQ(error.Number(), platform::ErrorNumber::kPathNotUsable);
        EXPECT_TRUE(error.Description().contains(named_)) << error.what();
    }
}

TEST(RegistryFilesTest, EnvironmentNamesTheFile) {
    const QByteArray named = qgetenv("KV_REGISTRY");
    EXPECT_EQ(RegistryFiles::FromEnvironment().user, QString::fromUtf8(named));
    EXPECT_EQ(RegistryFiles::FromEnvironment().system, QString());
    qunsetenv("KV_REGISTRY");
    EXPECT_EQ(RegistryFiles::FromEnvironment().user,
              qEnvironmentVariable("XDG_CONFIG_HOME") + u"/korvala/machine.reg"_s);
    EXPECT_EQ(RegistryFiles::FromEnvironment().system, u"/etc/korvala/machine.reg"_s);
    qputenv("KV_REGISTRY", named);
}

}  // namespace
