#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

#include "commandset/CommandSet.h"
#include "help/BuiltInHelp.h"
#include "help/detail/HtmlText.h"
#include "project/CheckRules.h"
#include "project/Schema.h"
#include "texts/Language.h"

// What a user meets in the program stands in the help, in every language that has pages.

namespace {

using namespace Qt::Literals::StringLiterals;
using help::BuiltInHelp;

class CoverageTest : public testing::TestWithParam<const char*> {
protected:
    CoverageTest() : folder_(QString::fromLatin1(GetParam())), help_(folder_) {
        for (const texts::Language* language : texts::Languages()) {
            if (language->help == folder_) language_ = language;
        }
    }

    /// The page as it is written, with its marks.
    [[nodiscard]] QString Source(const QString& page) const {
        QFile file(u":/kvhelp/"_s + folder_ + u'/' + page);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    /// Its words as they are read.
    [[nodiscard]] QString Words(const QString& page) const {
        return help::HtmlToText(
            help::DecodeHtml(help_.Read(folder_ + u'/' + page).value_or(QByteArray())));
    }
    [[nodiscard]] QString Caption(int number) const {
        return QString(language_->texts.value(number)).remove(u'&').trimmed();
    }

    QString folder_;
    BuiltInHelp help_;
    const texts::Language* language_ = nullptr;
};

TEST_P(CoverageTest, EveryCommandIsExplained) {
    const QString page = Source(u"commands.html"_s);
    for (const commandset::Command& command : commandset::Commands()) {
        EXPECT_TRUE(page.contains(u"<!-- command: %1 -->"_s.arg(command.name)))
            << "help/" << GetParam() << "/commands.html lacks "
            << command.name.toString().toStdString();
    }
}

TEST_P(CoverageTest, EveryColumnIsExplained) {
    const QString page = Source(u"columns.html"_s);
    for (const project::Column& column : project::TrendColumns()) {
        if (column.caption == 0) continue;
        EXPECT_TRUE(page.contains(u"<td><!-- text: %1 --></td>"_s.arg(column.caption)))
            << "help/" << GetParam() << "/columns.html lacks " << column.name;
    }
}

TEST_P(CoverageTest, EveryFieldOfADialogIsExplained) {
    const QString archive = Words(u"archive-dialog.html"_s);
    for (const project::Column& column : project::ArchiveColumns()) {
        EXPECT_TRUE(archive.contains(Caption(column.caption), Qt::CaseInsensitive)) << column.name;
    }
    const QString trend = Words(u"trend-dialog.html"_s);
    for (const project::Column& column : project::TrendColumns()) {
        // A key has no field.
        if (column.kind == project::Kind::Key) continue;
        EXPECT_TRUE(trend.contains(Caption(column.dialogCaption), Qt::CaseInsensitive))
            << column.name;
    }
}

TEST_P(CoverageTest, EveryRuleStandsUnderItsSeverity) {
    const QStringList parts = Source(u"rules.html"_s).split(u"<h2><a name=\""_s);
    for (const project::RuleInfo& rule : project::Rules()) {
        const QString mark =
            u"<!-- rule: %1 -->"_s.arg(QString::fromStdString(project::TextKeyOf(rule.rule)));
        QStringList severities;
        for (const QString& part : parts) {
            if (part.contains(mark)) severities += part.section(u'"', 0, 0);
        }
        const std::string_view severity = project::SeverityName(rule.severity);
        EXPECT_EQ(severities, QStringList(QString::fromStdString(std::string(severity))))
            << "help/" << GetParam() << "/rules.html, " << rule.id;
        EXPECT_TRUE(Words(u"rules.html"_s).contains(QString::fromStdString(std::string(rule.id))));
    }
}

TEST_P(CoverageTest, MessagesStandAsTheProgramShowsThem) {
    const QString words = Words(u"messages.html"_s);
    // With dots for names and files, and without what is there at times only.
    const QString damaged =
        Caption(texts::NumberOf(u"Reason.FileDamaged"_s)).replace(u"<file>"_s, u"…"_s);
    EXPECT_TRUE(words.contains(damaged.section(u". "_s, 1))) << damaged.toStdString();
    EXPECT_TRUE(words.contains(Caption(texts::NumberOf(u"HintNoArchive"_s))));
    EXPECT_FALSE(words.contains(u"<td>"_s));
    EXPECT_TRUE(
        Words(u"keys.html"_s).contains(folder_ == u"de" ? u"Strg+Umsch+T"_s : u"Ctrl+Shift+T"_s));
}

TEST_P(CoverageTest, EveryMarkIsUnderstood) {
    static const QRegularExpression kMark(u"<!-- (?!picture: \\S+ \\| ).*"_s);
    for (const QString& page : help_.Pages()) {
        const QString html = QString::fromUtf8(help_.Read(page).value_or(QByteArray()));
        EXPECT_EQ(kMark.match(html).captured().left(60).toStdString(), "") << page.toStdString();
    }
}

TEST_P(CoverageTest, TheIndexLeadsToPlaces) {
    const QList<help::IndexEntry> index = help_.Index();
    QStringList terms;
    for (const help::IndexEntry& entry : index) {
        terms += entry.term;
        const QString page = QString::fromUtf8(help_.Read(entry.page.section(u'#', 0, 0)).value());
        const QString place = entry.page.section(u'#', 1);
        EXPECT_TRUE(place.isEmpty() || page.contains(u"<a name=\"%1\">"_s.arg(place)))
            << entry.page.toStdString();
        EXPECT_FALSE(entry.term.contains(u'+')) << entry.term.toStdString();
    }
    const bool isGerman = folder_ == u"de";
    EXPECT_TRUE(terms.contains(isGerman ? u"Abtastzeit"_s : u"Scan Time"_s));
    EXPECT_TRUE(terms.contains(isGerman ? u"wiederherstellen"_s : u"restore"_s));
    EXPECT_TRUE(terms.contains(u"range-inverted"_s));
    if (isGerman) {
        // As a dictionary has it, not behind Z.
        EXPECT_LT(terms.indexOf(u"Überschriften"_s), terms.indexOf(u"Zellen leeren"_s));
        EXPECT_GT(terms.indexOf(u"Überschriften"_s), terms.indexOf(u"Toleranzband"_s));
    }
    EXPECT_TRUE(help_.Read(folder_ + u"/words.html"_s).value().contains("sample-modes.html"));
}

INSTANTIATE_TEST_SUITE_P(Languages, CoverageTest, testing::Values("de", "en"));

}  // namespace
