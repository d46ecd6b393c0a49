#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <random>
#include <tuple>

#include "help/ChmHelp.h"
#include "help/detail/ChmTables.h"
#include "help/detail/HtmlText.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using help::ChmHelp;

const QString kSample = QStringLiteral(KV_TEST_DATA "/Archivsystem.chm");

/// Null when it cannot be read.
std::unique_ptr<ChmHelp> ReadFile(const QString& path) {
    std::unique_ptr<ChmHelp> result;
    bool done = false;
    help::ChmReader reader(path, [&](std::unique_ptr<ChmHelp> chm) {
        result = std::move(chm);
        done = true;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return done; }, 30000));
    return result;
}

QByteArray Numbers(std::initializer_list<quint32> numbers) {
    QByteArray bytes;
    for (const quint32 number : numbers) {
        for (int i = 0; i < 4; ++i) bytes += static_cast<char>(number >> (8 * i));
    }
    return bytes;
}

TEST(ChmReaderTest, ReadsTopicsContentsAndPagesOfACompiledFile) {
    const std::unique_ptr<ChmHelp> chm = ReadFile(kSample);
    ASSERT_NE(chm, nullptr);
    EXPECT_EQ(chm->Title(), u"Archivsystem"_s);
    EXPECT_EQ(chm->TopicPage(30002), u"start.htm"_s);
    EXPECT_EQ(chm->TopicPage(30018), u"sub/archiv.htm"_s);
    EXPECT_EQ(chm->TopicPage(0), u"start.htm"_s);
    EXPECT_EQ(chm->TopicPage(1), QString());
    ASSERT_EQ(chm->Contents().size(), 2);
    EXPECT_EQ(chm->Contents()[1].level, 1);
    EXPECT_EQ(chm->Contents()[1].title, u"Ein Archiv"_s);
    EXPECT_EQ(chm->Contents()[1].page, u"sub/archiv.htm"_s);
    const QByteArray page = chm->Read(u"START.HTM"_s).value_or(QByteArray());
    EXPECT_EQ(help::HtmlTitle(page), u"Archive übersicht"_s) << "in the system code page";
    EXPECT_TRUE(chm->Read(u"sub/../dot.gif"_s));
    EXPECT_FALSE(chm->Read(u"../../etc/passwd"_s));
}

// Whatever the library that unpacks such files makes of a damaged one happens in another process.
TEST(ChmReaderTest, DamagedFilesAreHarmless) {
    EXPECT_EQ(ReadFile(u"/no/such/file.chm"_s), nullptr);
    QFile sample(kSample);
    ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
    const QByteArray good = sample.readAll();
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"x.chm"_s);
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        QByteArray bytes = good;
        if (round % 5 == 0) bytes.truncate(static_cast<qsizetype>(random()) % good.size());
        for (int i = 0; i < 1 + round % 12 && !bytes.isEmpty(); ++i) {
            // Most of what a reader trusts lies in the first part.
            const auto range = round % 2 == 0 ? bytes.size() : qMin<qsizetype>(bytes.size(), 400);
            bytes[static_cast<qsizetype>(random()) % range] = static_cast<char>(random());
        }
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
        file.close();
        const std::unique_ptr<ChmHelp> chm = ReadFile(path);
        if (!chm) continue;
        for (const QString& page : chm->Pages()) {
            std::ignore =
                help::HarmlessHtml(help::DecodeHtml(chm->Read(page).value_or(QByteArray())));
        }
    }
}

TEST(ChmTablesTest, TopicsOutsideOfTheirTablesAreLeftOut) {
    const QByteArray strings("\0start.htm\0sub\\archiv.htm#mode\0../out.htm\0open end", 50);
    const auto topics = help::ReadTopics(
        Numbers({48, 30002, 1, 30018, 11, 5, 31, 6, 42, 7, 4711, 8, 0xFFFFFFFF}), strings);
    EXPECT_EQ(topics.value(30002), u"start.htm"_s);
    EXPECT_EQ(topics.value(30018), u"sub/archiv.htm#mode"_s);
    EXPECT_EQ(topics.size(), 2);
    EXPECT_EQ(help::ReadTopics(Numbers({0xFFFFFFFF, 1, 1}), strings).size(), 1);
    EXPECT_TRUE(help::ReadTopics(Numbers({8, 1}), strings).isEmpty());
    EXPECT_TRUE(help::ReadTopics(QByteArray("\1", 1), {}).isEmpty());

    const QByteArray system = Numbers({3}) + QByteArray("\3\0\5\0Titel\0\0\xFF\xFFtoc.hhc", 20);
    EXPECT_EQ(help::ReadSystem(system).title, u"Titel"_s);
    EXPECT_EQ(help::ReadSystem(system).contentsFile, u"toc.hhc"_s) << "as far as it goes";
}

TEST(ChmTablesTest, PagesOfLinksStayInside) {
    const std::pair<QString, QString> cases[] = {
        {u"a.htm"_s, u"a.htm"_s},
        {u"/a\\b.htm#c"_s, u"a/b.htm#c"_s},
        {u"mk:@MSITStore:C:\\x.chm::/a/../b.htm"_s, u"b.htm"_s},
        {u"../a.htm"_s, QString()},
        {u"a/../../b"_s, QString()},
        {u"http://x/a.htm"_s, QString()},
        {u"file:///etc/passwd"_s, QString()},
        {u"javascript:x()"_s, QString()},
        {u"#c"_s, QString()},
    };
    for (const auto& [path, page] : cases) {
        EXPECT_EQ(help::CleanPagePath(path), page) << path.toStdString();
    }
}

// Elements nested this deep would exhaust the stack of a layout.
TEST(HtmlTextTest, PagesThatCouldHarmALayoutBecomeTheirWords) {
    QString deep = u"<html><body>"_s;
    for (int i = 0; i < 5000; ++i) deep += u"<table><tr><td>w%1 "_s.arg(i);
    const QString flat = help::HarmlessHtml(deep);
    EXPECT_FALSE(flat.contains(u"<table"_s));
    EXPECT_TRUE(flat.contains(u"w4999"_s));
    EXPECT_EQ(help::HarmlessHtml(u"<td colspan=\"99999\" width='1234567'>x</td>"_s),
              u"<td colspan=\" 1\" width=' 0'>x</td>"_s);
    EXPECT_EQ(help::HtmlToText(u"<head><title>t</title></head><p>a&amp;&#252;<!-- <b> --><i>b"_s),
              u"a&\u00FC b"_s);
    EXPECT_EQ(help::HtmlToText(u"<script>x<y</scr"_s), QString());
}

}  // namespace
