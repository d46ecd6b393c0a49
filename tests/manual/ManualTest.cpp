#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <stdexcept>

#include "manual/HtmlManual.h"
#include "manual/PdfManual.h"
#include "texts/Language.h"

namespace {

using namespace Qt::Literals::StringLiterals;

class ManualTest : public testing::Test {
protected:
    ManualTest() {
        for (const quint32 lcid : {platform::kLcidGerman, platform::kLcidEnglish}) {
            manuals_ += manual::ReadManual(lcid);
        }
        // Stands in for each picture of a window.
        QImage picture(1150, 560, QImage::Format_RGB32);
        picture.fill(Qt::lightGray);
        static const QRegularExpression kPicture(u"pictures/([^\"]+)"_s);
        for (const manual::Manual& manual : manuals_) {
            for (const manual::Chapter& chapter : manual.chapters) {
                for (auto found = kPicture.globalMatch(chapter.body); found.hasNext();) {
                    pictures_ += found.next().captured(1);
                }
            }
        }
        QDir(folder_.path()).mkdir(u"pictures"_s);
        for (const QString& name : pictures_) picture.save(Pictures() + u'/' + name);
    }

    [[nodiscard]] QString Pictures() const { return folder_.filePath(u"pictures"_s); }
    [[nodiscard]] QByteArray Read(const QString& path) const {
        QFile file(folder_.filePath(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder_;
    QList<manual::Manual> manuals_;
    QStringList pictures_;
};

TEST_F(ManualTest, EveryPictureIsAmongThoseThatAreMade) {
    ASSERT_FALSE(pictures_.isEmpty());
    for (const QString& name : pictures_) {
        EXPECT_TRUE(QFileInfo::exists(u"" KV_PICTURES "/"_s + name)) << name.toStdString();
    }
}

TEST_F(ManualTest, ABrowserFindsAllThatThePagesAskFor) {
    manual::WriteHtml(manuals_, Pictures(), folder_.filePath(u"html"_s));
    static const QRegularExpression kAsked(u"(?:href|src)=\"([^\"]+)\""_s);
    int links = 0;
    QStringList pages{u"index.html"_s};
    for (const manual::Manual& manual : manuals_) {
        for (const manual::Chapter& chapter : manual.chapters) {
            pages += manual.folder + u'/' + chapter.file;
        }
    }
    for (const QString& page : pages) {
        const QString html = QString::fromUtf8(Read(u"html/"_s + page));
        EXPECT_FALSE(html.contains(u'@')) << "a place is not filled: " << page.toStdString();
        const QDir folder = QFileInfo(folder_.filePath(u"html/"_s + page)).dir();
        for (auto found = kAsked.globalMatch(html); found.hasNext(); ++links) {
            const QString asked = found.next().captured(1).section(u'#', 0, 0);
            EXPECT_TRUE(asked.isEmpty() || folder.exists(asked))
                << page.toStdString() << " asks for " << asked.toStdString();
        }
    }
    EXPECT_GT(links, 1000);

    const QByteArray script = Read(u"html/en/search-data.js"_s);
    const QByteArray json =
        script.mid(script.indexOf('{'), script.lastIndexOf('}') + 1 - script.indexOf('{'));
    const QJsonObject data = QJsonDocument::fromJson(json).object();
    EXPECT_EQ(data[u"pages"].toArray().size(), manuals_.back().chapters.size() - 1)
        << "all but the index";
    EXPECT_GT(data[u"index"].toArray().size(), 100);
}

TEST_F(ManualTest, PaperHasAllChapters) {
    const QString file = folder_.filePath(u"manual.pdf"_s);
    manual::WritePdf(manuals_.back(), Pictures(), file);
    const QByteArray pdf = Read(u"manual.pdf"_s);
    EXPECT_TRUE(pdf.startsWith("%PDF-"));
    // A page at least for each chapter, the contents and the index.
    EXPECT_GT(pdf.count("/Type /Page\n"), manuals_.back().chapters.size());

    // Bookmarks: the last table of the file names the places of objects, and each is there.
    EXPECT_EQ(pdf.count("/Title <FEFF"), manuals_.back().chapters.size());
    const qsizetype table =
        pdf.mid(pdf.lastIndexOf("startxref") + 9).simplified().split(' ').front().toLongLong();
    ASSERT_TRUE(pdf.mid(table).startsWith("xref\n"));
    int objects = 0;
    int number = 0;
    for (const QByteArray& line : pdf.mid(table, pdf.lastIndexOf("trailer") - table).split('\n')) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() == 2) number = words[0].toInt();
        if (words.size() != 3) continue;
        const QByteArray begins = QByteArray::number(number++) + " 0 obj";
        EXPECT_TRUE(pdf.mid(words[0].toLongLong()).startsWith(begins)) << begins.toStdString();
        ++objects;
    }
    EXPECT_EQ(objects, manuals_.back().chapters.size() + 2);
}

TEST_F(ManualTest, AMissingPictureIsNamed) {
    QFile::remove(Pictures() + u"/studio-en.png"_s);
    try {
        manual::WriteHtml(manuals_, Pictures(), folder_.filePath(u"html"_s));
        FAIL() << "written without its picture";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("studio-en.png"));
    }
}

}  // namespace
