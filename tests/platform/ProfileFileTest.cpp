#include "platform/ProfileFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <QDir>
#include <QFile>
#include <QStringEncoder>
#include <QTemporaryDir>

#include "platform/detail/ProfileText.h"
#include "platform/Error.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using platform::ProfileEntry;
using platform::ProfileFile;

QByteArray Utf16(const QString& text, bool bigEndian = false) {
    const auto form = bigEndian ? QStringEncoder::Utf16BE : QStringEncoder::Utf16LE;
    return (bigEndian ? "\xFE\xFF" : "\xFF\xFE") + QByteArray(QStringEncoder(form)(text));
}

class ProfileFileTest : public testing::Test {
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
    /// What stands in the folder: a write may leave nothing but the file.
    QStringList Folder() {
        return QDir(folder_.path())
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    }
    void ExpectError(int number, const QString& cause, const std::function<void()>& work) {
        try {
            work();
            ADD_FAILURE() << "no error";
        } catch (const platform::Error& error) {
            EXPECT_EQ(error.Number(), number) << error.what();
            EXPECT_TRUE(error.Description().contains(path_)) << error.what();
            EXPECT_TRUE(error.Description().contains(cause)) << error.what();
        }
    }

    QTemporaryDir folder_;
    QString path_ = folder_.filePath(u"KVEditors.ini"_s);
};

TEST_F(ProfileFileTest, ReadsValues) {
    struct Case {
        const char* what;
        QString file;
        QString expected;  // of key "Key" in section "Mine"; "-" is the default
    };
    const Case cases[] = {
        {"plain", u"[Mine]\r\nKey=value\r\n"_s, u"value"_s},
        {"capitals", u"[MINE]\r\nkEY=value\r\n"_s, u"value"_s},
        {"blanks", u" [ Mine ] ; x\r\n\t Key \t= a value \t\r\n"_s, u"a value"_s},
        {"no last line end", u"[Mine]\nKey=value"_s, u"value"_s},
        {"double quotes", u"[Mine]\nKey=\" value \"\n"_s, u" value "_s},
        {"single quotes", u"[Mine]\nKey=' value '\n"_s, u" value "_s},
        {"one pair only", u"[Mine]\nKey=\"\"a\"\"\n"_s, u"\"a\""_s},
        {"quotes that do not match", u"[Mine]\nKey=\"a'\n"_s, u"\"a'"_s},
        {"a lone quote", u"[Mine]\nKey=\"\n"_s, u"\""_s},
        {"a pair with nothing inside", u"[Mine]\nKey=\"\"\n"_s, u""_s},
        {"equals sign in the value", u"[Mine]\nKey=a=b\n"_s, u"a=b"_s},
        {"semicolon in the value", u"[Mine]\nKey=a;b\n"_s, u"a;b"_s},
        {"empty value", u"[Mine]\nKey=\n"_s, u""_s},
        {"comment", u"[Mine]\n;Key=a\nKey=b\n"_s, u"b"_s},
        {"first key counts", u"[Mine]\nKey=a\nKEY=b\n"_s, u"a"_s},
        {"first section counts", u"[Mine]\nx=1\n[Other]\n[mine]\nKey=a\n"_s, u"-"_s},
        {"other section", u"[Other]\nKey=a\n[Mine]\n[Third]\nKey=b\n"_s, u"-"_s},
        {"before any section", u"Key=a\n[Mine]\n"_s, u"-"_s},
        {"no equals sign", u"[Mine]\nKey\n"_s, u"-"_s},
        {"header that does not end", u"[Mine\nKey=a\n"_s, u"-"_s},
        {"empty", u""_s, u"-"_s},
        {"no-break space is text", u"[Mine]\nKey=\u00A0a\n"_s, u"\u00A0a"_s},
        {"umlauts", u"[Mine]\nKey=Gärkeller\n"_s, u"Gärkeller"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        for (const QByteArray& bytes :
             {c.file.toLatin1(), c.file.toUtf8(), "\xEF\xBB\xBF" + c.file.toUtf8(), Utf16(c.file),
              Utf16(c.file, true)}) {
            Put(bytes);
            EXPECT_EQ(ProfileFile(path_).Read(u"mine", u"key", u"-"_s), c.expected);
        }
    }
    QFile::remove(path_);
    EXPECT_EQ(ProfileFile(path_).Read(u"Mine", u"Key", u"-"_s), u"-"_s);
}

TEST_F(ProfileFileTest, WritesItsOwnLineAndNothingElse) {
    struct Case {
        const char* what;
        QString before;
        QString after;  // section "Mine" with Key=new and Second=2
    };
    const Case cases[] = {
        {"no file content", u""_s, u"[Mine]\r\nKey=new\r\nSecond=2\r\n"_s},
        {"other lines, blanks and capitals stay",
         u"; head\r\n[Other]\r\nKey=old\r\n\r\n[mine]\r\n; about\r\n KEY =  'old' \r\n?\r\n\r\n"
         "; about the next\r\n[Third]\r\nä=ö\r\n"_s,
         u"; head\r\n[Other]\r\nKey=old\r\n\r\n[mine]\r\n; about\r\n KEY =  new \r\n?\r\n"
         "Second=2\r\n\r\n; about the next\r\n[Third]\r\nä=ö\r\n"_s},
        {"Unix line ends", u"[Mine]\nKey=\nx=1"_s, u"[Mine]\nKey=new\nx=1\nSecond=2\n"_s},
        {"new section", u"[Other]\nä=1"_s, u"[Other]\nä=1\n\n[Mine]\nKey=new\nSecond=2\n"_s},
        {"section without keys", u"[Mine]\r\n[Other]\r\n"_s,
         u"[Mine]\r\nKey=new\r\nSecond=2\r\n[Other]\r\n"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const auto forms = {+[](const QString& text) { return text.toLatin1(); },
                            +[](const QString& text) { return text.toUtf8(); },
                            +[](const QString& text) { return "\xEF\xBB\xBF" + text.toUtf8(); },
                            +[](const QString& text) { return Utf16(text); },
                            +[](const QString& text) { return Utf16(text, true); }};
        for (const auto& form : forms) {
            Put(form(c.before));
            ProfileFile file(path_);
            file.Write(u"Mine"_s,
                       {{u"key"_s, u"old"_s}, {u"Key"_s, u"new"_s}, {u"Second"_s, u"2"_s}});
            EXPECT_EQ(Get().toStdString(), form(c.after).toStdString());
            EXPECT_EQ(file.Read(u"Mine", u"Key"), u"new"_s) << "what was written is known";
            EXPECT_EQ(Folder(), QStringList{u"KVEditors.ini"_s});
        }
    }
}

TEST_F(ProfileFileTest, WhatIsWrittenIsReadBack) {
    Put("[Mine]\r\nx=\xFC\r\n");
    const QStringList texts = {u""_s,        u"a"_s,    u" a "_s,       u"\"a\""_s, u"'a'"_s,
                               u"\"a"_s,     u"'"_s,    u"\""_s,        u"\"\""_s,  u"'\t"_s,
                               u"a=b"_s,     u";a"_s,   u"€"_s,         u"Ã¤"_s,    u"[a]"_s,
                               u"\"'a'\""_s, u"Łódź"_s, u"\U0001F37A"_s};
    for (const QString& text : texts) {
        ProfileFile(path_).Write(u"Mine"_s, u"Key"_s, text);
        EXPECT_EQ(ProfileFile(path_).Read(u"Mine", u"Key", u"-"_s), text) << text.toStdString();
        EXPECT_EQ(ProfileFile(path_).Read(u"Mine", u"x"), u"ü"_s);
    }
    ProfileFile(path_).Write(u"Mine"_s, u"Key"_s, u"a\r\nx=b"_s);
    EXPECT_EQ(ProfileFile(path_).Read(u"Mine", u"Key"), u"a  x=b"_s);
    for (const auto& [section, key] : {std::pair{u"Mine"_s, u""_s},
                                       {u"Mine"_s, u"a=b"_s},
                                       {u"Mine"_s, u";a"_s},
                                       {u"Mine"_s, u"[a"_s},
                                       {u"Mine"_s, u"a\nb"_s},
                                       {u"a]b"_s, u"k"_s}}) {
        EXPECT_THROW(ProfileFile(path_).Write(section, key, u"1"_s), platform::Error);
    }
}

TEST_F(ProfileFileTest, BytesThatAreNoTextStay) {
    for (const QByteArray& rest :
         {QByteArray("\xEF\xBB\xBFx=\xFC\xC0\x80\r\n\xEF\xBB\xBF"),
          QByteArray("\xFF\xFE\x00\xD8\x0A\x00\x00\xDC\x41", 9), QByteArray("[Mine]\nx=\xC3"),
          QByteArray("\xC3\xA4\x1A\x81\xFF\n")}) {
        Put(rest);
        ProfileFile(path_).Write(u"Mine"_s, u"Key"_s, u"1"_s);
        const QByteArray after = Get();
        EXPECT_TRUE(after.startsWith(rest.left(rest.size() - 1))) << after.toHex(' ').toStdString();
        EXPECT_EQ(ProfileFile(path_).Read(u"Mine", u"Key"), u"1"_s);
    }
}

TEST_F(ProfileFileTest, NoChangeIsNotWritten) {
    Put("[Mine]\nKey='a'\n");
    struct stat before {
    }, after{};
    stat(path_.toUtf8().constData(), &before);
    ProfileFile(path_).Write(u"Mine"_s, u"KEY"_s, u"a"_s);
    stat(path_.toUtf8().constData(), &after);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(Get(), "[Mine]\nKey='a'\n");
}

TEST_F(ProfileFileTest, AccessRightsAndLinksStay) {
    const QString elsewhere = folder_.filePath(u"real.ini"_s);
    QFile::link(elsewhere, path_);
    Put("[Mine]\n");
    chmod(elsewhere.toUtf8().constData(), 0640);
    ProfileFile(path_).Write(u"Mine"_s, u"Key"_s, u"1"_s);
    EXPECT_EQ(Get(), "[Mine]\nKey=1\n");
    EXPECT_EQ(QFile::symLinkTarget(path_), elsewhere);
    struct stat status {};
    stat(path_.toUtf8().constData(), &status);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(ProfileFileTest, ProjectPathsAreUnderstood) {
    ProfileFile(u"D:"_s + QString(path_).replace(u'/', u'\\')).Write(u"Mine"_s, u"Key"_s, u"1"_s);
    EXPECT_EQ(Get(), "[Mine]\r\nKey=1\r\n");
    EXPECT_EQ(ProfileFile(QString(path_).replace(u'/', u'\\').toUpper()).Read(u"Mine", u"Key"),
              u"1"_s);
}

// Each program writes its own section many times; with a stale copy one of them would put back
// what the other has just changed.
TEST_F(ProfileFileTest, ProgramsLoseNothingOfEachOthers) {
    constexpr int kPrograms = 4;
    constexpr int kWrites = 40;
    Put("; head\r\n");
    for (int program = 0; program < kPrograms; ++program) {
        if (fork() != 0) continue;
        const QString section = u"S%1"_s.arg(program);
        for (int i = 0; i < kWrites;) {
            try {
                ProfileFile(path_).Write(section, u"K%1"_s.arg(i), u"v"_s);
                ++i;
            } catch (const platform::Error& error) {
                // On a busy machine the others may keep the file for longer than one waits.
                if (error.Number() != platform::ErrorNumber::kPermissionDenied) _exit(1);
            }
        }
        _exit(0);
    }
    for (int program = 0; program < kPrograms; ++program) {
        int status = -1;
        ASSERT_GT(wait(&status), 0);
        EXPECT_EQ(status, 0) << "a write was refused";
    }
    ProfileFile file(path_);
    for (int program = 0; program < kPrograms; ++program) {
        for (int i = 0; i < kWrites; ++i) {
            EXPECT_EQ(file.Read(u"S%1"_s.arg(program), u"K%1"_s.arg(i)), u"v"_s);
        }
    }
    EXPECT_TRUE(Get().startsWith("; head\r\n"));
    EXPECT_EQ(Folder(), QStringList{u"KVEditors.ini"_s});
}

TEST_F(ProfileFileTest, AFailedWriteLeavesTheOldFile) {
    Put("[Mine]\nKey=old\n");
    ProfileFile file(path_);

    // A limit on the size of files stands in for a full disk.
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit none{8, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
    ExpectError(platform::ErrorNumber::kDiskFull, u"written"_s,
                [&] { file.Write(u"Mine"_s, u"Key"_s, u"new"_s); });
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(Folder(), QStringList{u"KVEditors.ini"_s});

    // Root may write everywhere, so somebody else tries.
    const bool root = geteuid() == 0;
    chmod(folder_.path().toUtf8().constData(), 0555);
    ASSERT_EQ(seteuid(root ? 65534 : geteuid()), 0);
    ExpectError(platform::ErrorNumber::kPermissionDenied, u"Permission denied"_s,
                [&] { file.Write(u"Mine"_s, u"Key"_s, u"new"_s); });
    ASSERT_EQ(seteuid(root ? 0 : geteuid()), 0);
    chmod(folder_.path().toUtf8().constData(), 0755);

    EXPECT_EQ(Get(), "[Mine]\nKey=old\n");
    EXPECT_EQ(file.Read(u"Mine", u"Key"), u"old"_s) << "what could not be written is not known";
    file.Write(u"Mine"_s, u"Key"_s, u"new"_s);
    EXPECT_EQ(Get(), "[Mine]\nKey=new\n");

    Put(QByteArray("\0\1\0\0Database\n[Mine]\nKey=1\n", 26));
    EXPECT_EQ(ProfileFile(path_).Read(u"Mine", u"Key", u"-"_s), u"-"_s);
    ExpectError(platform::ErrorNumber::kInvalidArgument, u"not a text file"_s,
                [&] { ProfileFile(path_).Write(u"Mine"_s, u"Key"_s, u"2"_s); });

    QFile::remove(path_);
    QDir().mkdir(path_);
    ExpectError(platform::ErrorNumber::kPathNotUsable, u"not a file"_s,
                [&] { (void)ProfileFile(path_).Read(u"Mine", u"Key"); });
    path_ = folder_.filePath(u"none/KVEditors.ini"_s);
    ExpectError(platform::ErrorNumber::kPathNotUsable, u"No such file"_s,
                [&] { ProfileFile(path_).Write(u"Mine"_s, u"Key"_s, u"new"_s); });
}

// Four megabytes of keys, many of them alike: what grows with the square takes hours here.
TEST_F(ProfileFileTest, LargeFilesTakeTheirTimeOnly) {
    QByteArray bytes = "[Mine]\n";
    for (int i = 0; bytes.size() < 4'000'000; ++i) {
        bytes += "key" + QByteArray::number(i % 200'000) + "=value\n[\n";
    }
    Put(bytes);
    QList<ProfileEntry> entries;
    for (int i = 0; i < 1000; ++i) entries += {u"key%1"_s.arg(i * 300), u"new"_s};
    ProfileFile file(path_);
    EXPECT_EQ(file.Read(u"Mine", u"key199999"), u"value"_s);
    file.Write(u"Mine"_s, entries);
    EXPECT_EQ(file.Read(u"Mine", u"key299700"), u"new"_s);
}

}  // namespace
