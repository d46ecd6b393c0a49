#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>

#include "help/BuiltInHelp.h"
#include "help/detail/ChmTables.h"
#include "help/detail/HtmlText.h"
#include "platform/HelpTopics.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using help::BuiltInHelp;

/// What one page holds and asks for.
struct Page {
    QString error;
    QStringList wanted;  // pages, pictures and style sheets, from the page's own folder
    QSet<QString> places;
    int withoutAlternative = 0;
};

Page ReadPage(const BuiltInHelp& help, const QString& path) {
    Page page;
    const std::optional<QByteArray> bytes = help.Read(path);
    if (!bytes) {
        page.error = u"not there"_s;
        return page;
    }
    QXmlStreamReader xml(*bytes);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        for (const auto name : {"href"_L1, "src"_L1}) {
            if (attributes.hasAttribute(name)) page.wanted += attributes.value(name).toString();
        }
        if (attributes.hasAttribute("name"_L1))
            page.places += attributes.value("name"_L1).toString();
        if (xml.name() == u"img" && attributes.value("alt"_L1).isEmpty()) ++page.withoutAlternative;
    }
    if (xml.hasError()) page.error = xml.errorString();
    return page;
}

class BuiltInPagesTest : public testing::TestWithParam<const char*> {
protected:
    BuiltInPagesTest() : help_(QString::fromLatin1(GetParam())) {}

    /// The file and place that a link on `page` leads to; empty when there is none.
    QString Resolve(const QString& page, const QString& link) {
        const QString file = link.section(u'#', 0, 0);
        const QString target =
            file.isEmpty() ? page : QDir::cleanPath(page.section(u'/', 0, 0) + u'/' + file);
        if (!help_.Read(target)) return {};
        const QString place = link.section(u'#', 1);
        if (!place.isEmpty() && !ReadPage(help_, target).places.contains(place)) return {};
        return target;
    }

    BuiltInHelp help_;
};

TEST_P(BuiltInPagesTest, EveryTopicLeadsToAPageAndAPlace) {
    const QList<int> topics = BuiltInHelp::Topics();
    for (const int topic :
         {platform::kHelpContents, platform::kHelpArchives, platform::kHelpArchive,
          platform::kHelpArchiveFormat, platform::kHelpTrendTolerance,
          platform::kHelpOptionsTrendTable, platform::kHelpDrawModes}) {
        EXPECT_TRUE(topics.contains(topic)) << topic;
    }
    for (const int topic : topics) {
        const QString page = help_.TopicPage(topic);
        EXPECT_FALSE(Resolve(page.section(u'#', 0, 0), page.section(u'/', 1)).isEmpty())
            << topic << " " << page.toStdString();
    }
    EXPECT_EQ(QSet<int>(topics.begin(), topics.end()).size(), topics.size())
        << "two pages have one number: the second is never shown";
    EXPECT_EQ(help_.TopicPage(4711), QString());
}

TEST_P(BuiltInPagesTest, AllPagesAreWellFormedAndAllLinksAndPicturesResolve) {
    QSet<QString> reached;
    for (const help::ContentsEntry& entry : help_.Contents()) {
        const QString& path = entry.page;
        SCOPED_TRACE(path.toStdString());
        const Page page = ReadPage(help_, path);
        EXPECT_EQ(page.error, QString());
        EXPECT_EQ(page.withoutAlternative, 0)
            << "pictures have words for those who do not see them";
        for (const QString& link : page.wanted) {
            EXPECT_FALSE(Resolve(path, link).isEmpty()) << link.toStdString();
        }
        // What the viewer searches and lists.
        const QByteArray bytes = help_.Read(path).value_or(QByteArray());
        EXPECT_GT(help::HtmlToText(help::DecodeHtml(bytes)).size(), 200);
        EXPECT_FALSE(help::HtmlTitle(bytes).isEmpty());
        EXPECT_EQ(help::HarmlessHtml(help::DecodeHtml(bytes)), help::DecodeHtml(bytes));
    }
    EXPECT_EQ(help_.Contents().size(), help_.Pages().size() + 1) << "the index is not searched";
}

INSTANTIATE_TEST_SUITE_P(Languages, BuiltInPagesTest, testing::Values("de", "en"));

TEST(BuiltInHelpTest, LanguagesHaveTheSamePagesAndNoPageIsForgotten) {
    const BuiltInHelp german(u"de"_s);
    const BuiltInHelp english(u"en"_s);
    for (const BuiltInHelp* help : {&german, &english}) {
        const QString folder = help->HomePage().section(u'/', 0, 0);
        QStringList files;
        for (const QString& name : QDir(u":/kvhelp/"_s + folder).entryList()) {
            files += folder + u'/' + name;
        }
        QStringList pages;
        for (const help::ContentsEntry& entry : help->Contents()) pages += entry.page;
        pages.sort();
        EXPECT_EQ(files, pages);
    }
    for (const QString& page : german.Pages()) {
        EXPECT_NE(german.Read(page), english.Read(QString(page).replace(u"de/"_s, u"en/"_s)))
            << "not translated: " << page.toStdString();
    }
    EXPECT_FALSE(german.Read(u"../../etc/passwd"_s));
    EXPECT_FALSE(german.Read(u"de/../../x"_s));
}

}  // namespace
