#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextTable>
#include <QXmlStreamReader>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "colours/Contrast.h"
#include "messages/MessageBox.h"
#include "platform/ComponentRegistry.h"
#include "platform/Registry.h"
#include "project/CheckSettings.h"
#include "report/ReportWindow.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using report::ReportWindow;
using report::Section;

/// What a browser would make of an exported report.
struct Exported {
    int archives = 0;
    int trends = 0;
    int curves = 0;
    QString error;
    QString text;
    QStringList missingAnchors;
};

Exported ReadHtml(const QString& path) {
    Exported result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.error = file.errorString();
        return result;
    }
    QXmlStreamReader xml(&file);
    QSet<QString> ids;
    QStringList links;
    int columns = 0;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::Characters) result.text += xml.text();
        if (token == QXmlStreamReader::EndElement && xml.name() == u"tr" && columns == 9) {
            ++result.trends;
        }
        if (token != QXmlStreamReader::StartElement) continue;
        if (xml.name() == u"tr") columns = 0;
        if (xml.name() == u"td") ++columns;
        if (xml.name() == u"svg") ++result.curves;
        const QString id = xml.attributes().value("id"_L1).toString();
        if (id.startsWith(u"s1-"_s)) ++result.archives;
        if (!id.isEmpty()) ids += id;
        if (xml.name() == u"a") links += xml.attributes().value("href"_L1).mid(1).toString();
    }
    if (xml.hasError()) result.error = xml.errorString();
    for (const QString& link : links) {
        if (!ids.contains(link)) result.missingAnchors += link;
    }
    return result;
}

class ReportTest : public testing::Test {
protected:
    ReportTest()
        : answer_([this](const messages::Message& message) {
              messages_ += message.text;
              return messages::MessageResult::Ok;
          }) {}

    QString Copy(const QString& source) {
        const QString path = folder_.filePath(source.section(u'/', -1));
        QFile::remove(path);
        EXPECT_TRUE(QFile::copy(source, path));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        return path;
    }
    QString Brewery() { return Copy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs")); }
    QString Cases() { return Copy(QStringLiteral(KV_TEST_DATA "/Grenzfaelle.kvs")); }

    platform::Registry& Language(unsigned lcid) {
        registry_.WriteDword(MResources::kStudioKey, u"LCID", lcid);
        return registry_;
    }
    /// Waits for the task that runs at present.
    static bool Done(ReportWindow& window) {
        if (!window.IsBusy()) return true;
        QSignalSpy ended(&window, &ReportWindow::TaskEnded);
        return ended.wait(30000) && ended.first().first().toBool();
    }
    static QString Shown(ReportWindow& window) {
        return window.findChild<QTextBrowser*>(u"txtReport"_s)->toPlainText();
    }
    static QSet<QString> Links(ReportWindow& window) {
        QSet<QString> links;
        const auto* page = window.findChild<QTextBrowser*>(u"txtReport"_s);
        for (QTextBlock block = page->document()->begin(); block.isValid(); block = block.next()) {
            for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
                links += piece.fragment().charFormat().anchorHref();
            }
        }
        return links;
    }
    /// Keeps a picture of the window where the environment variable KV_SCREENSHOTS names a folder.
    static void KeepPicture(QWidget& window, const QString& name) {
        const QString folder = qEnvironmentVariable("KV_SCREENSHOTS");
        if (!folder.isEmpty()) window.grab().save(folder + u'/' + name);
    }

    QTemporaryDir folder_;
    platform::Registry registry_;
    QStringList messages_;
    messages::MessageAnswer answer_;
};

TEST_F(ReportTest, ShowsTheProjectInBothLanguages) {
    for (const unsigned lcid : {MResources::kGerman, MResources::kEnglish}) {
        const bool german = lcid == MResources::kGerman;
        ReportWindow window(Language(lcid), Brewery());
        window.setAttribute(Qt::WA_DeleteOnClose, false);
        ASSERT_TRUE(window.Read());
        window.show();
        ASSERT_TRUE(Done(window));
        auto* list = window.findChild<QListWidget*>(u"lstArchives"_s);
        EXPECT_EQ(list->count(), 16) << "the overview, fourteen archives, the findings";
        EXPECT_TRUE(Shown(window).contains(german ? u"Archive: 14, Trends: 228"_s
                                                  : u"Archives: 14, Trends: 228"_s));
        list->setCurrentRow(2);
        const QString text = Shown(window);
        EXPECT_TRUE(text.contains(german ? u"Archiv Gärkeller"_s : u"Archive Gärkeller"_s));
        EXPECT_TRUE(text.contains(german ? u"asynchron (absolute Zeitbasis), alle 10000 ms"_s
                                         : u"asynchronous (absolute time base), every 10000 ms"_s))
            << text.left(1500).toStdString();
        EXPECT_TRUE(text.contains(uR"(D:\Redundanz)"_s));
        list->setCurrentRow(1);
        EXPECT_TRUE(Shown(window).contains(u"Sudhaus.Maischbottich.Temperatur"_s));
        KeepPicture(window, german ? u"report-de.png"_s : u"report-en.png"_s);
    }
}

TEST_F(ReportTest, WritesHtmlThatIsWellFormedAndComplete) {
    struct Case {
        QString project;
        int archives, trends;
    };
    const Case cases[] = {{Brewery(), 14, 228},
                          {Cases(), 14, 7},
                          {Copy(QStringLiteral(KV_TEST_DATA "/Leer.kvs")), 0, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.project.toStdString());
        ReportWindow window(Language(MResources::kEnglish), c.project);
        ASSERT_TRUE(window.Read());
        ASSERT_TRUE(Done(window));
        const QString file = c.project + u".html"_s;
        window.ExportHtml(file);
        ASSERT_TRUE(Done(window));
        const Exported html = ReadHtml(file);
        EXPECT_EQ(html.error, QString());
        EXPECT_EQ(html.archives, c.archives);
        EXPECT_EQ(html.trends, c.trends);
        EXPECT_GE(html.curves, c.trends);
        EXPECT_EQ(html.missingAnchors, QStringList());
    }
}

TEST_F(ReportTest, ListsWhatIsWrongInsteadOfHidingIt) {
    const QString project = Cases();
    {
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + project.toStdString());
        ado::Recordset trends;
        trends.Open("TchrTrends", connection, ado::CommandType::Table);
        trends.Find("ID = 7");
        trends.Set("ArchiveID", std::int32_t(4711));
        trends.Set("Comment", std::u16string(u"<b>&\u0001\"</b>"));
        trends.Update();
    }
    ReportWindow window(Language(MResources::kEnglish), project);
    ASSERT_TRUE(window.Read());
    ASSERT_TRUE(Done(window));
    window.Show({Section::Kind::Problems});
    const QString problems = Shown(window);
    EXPECT_TRUE(problems.contains(u"TchrArchives 8 (Hängend)\nThere is no index text 99999."_s))
        << problems.toStdString();
    EXPECT_TRUE(problems.contains(u"TchrTrends 6 (TextFehlt)\nThere is no index text 88888."_s));
    EXPECT_TRUE(problems.contains(u"TchrTrends 7 (Einziger)\nThere is no archive 4711."_s));
    window.Show({Section::Kind::WithoutArchive});
    EXPECT_TRUE(Shown(window).contains(u"<b>&\uFFFD\"</b>"_s));

    const QString file = folder_.filePath(u"r.html"_s);
    window.ExportHtml(file);
    ASSERT_TRUE(Done(window));
    EXPECT_EQ(ReadHtml(file).error, QString());
    EXPECT_EQ(ReadHtml(file).trends, 7);
}

// Rows of which bytes are overwritten are told of, and the others are shown.
TEST_F(ReportTest, ShowsWhatCanBeReadOfADamagedProject) {
    const QString project = Brewery();
    QFile file(project);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QByteArray name = QByteArray("Maischbottich Temperatur");
    qint64 at = file.readAll().indexOf(QByteArray("\xff\xfe") + name);
    ASSERT_GT(at, 0) << "the trend's name as it is stored";
    at = at / 4096 * 4096;
    file.seek(at + 14);  // where the page says its first rows begin
    file.write(QByteArray("\xf0\xff\xf0\xff", 4));
    file.close();

    ReportWindow window(Language(MResources::kEnglish), project);
    ASSERT_TRUE(window.Read());
    ASSERT_TRUE(Done(window));
    window.Show({Section::Kind::Problems});
    EXPECT_TRUE(Shown(window).contains(u"TchrTrends"_s)) << Shown(window).toStdString();
    window.Show({Section::Kind::Archive, 1});
    EXPECT_TRUE(Shown(window).contains(u"Gärkeller"_s));
}

TEST_F(ReportTest, FindsInAllSectionsAndComesRoundAgain) {
    ReportWindow window(Language(MResources::kEnglish), Brewery());
    ASSERT_TRUE(window.Read());
    window.show();
    ASSERT_TRUE(Done(window));
    auto* field = window.findChild<QLineEdit*>(u"txtFind"_s);
    auto* page = window.findChild<QTextBrowser*>(u"txtReport"_s);
    QTest::keyClicks(field, u"LAGERKELLER."_s);
    QTest::keyClick(field, Qt::Key_Return);
    ASSERT_TRUE(Done(window));
    EXPECT_EQ(window.Shown().archive, 2U);
    EXPECT_EQ(page->textCursor().selectedText().toUpper(), u"LAGERKELLER."_s);

    field->setText(u"Sudhaus.Maischbottich.Temperatur"_s);
    QTest::keyClick(&window, Qt::Key_F3);
    ASSERT_TRUE(Done(window));
    EXPECT_EQ(window.Shown().archive, 0U) << "behind the last section comes the first";

    QTest::keyClick(&window, Qt::Key_F1);
    const QWidget* help = nullptr;
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == u"frmHelp"_s) help = widget;
    }
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->findChild<QTextBrowser*>(u"txtPage"_s)->source().path(), u"/en/report.html"_s);

    field->setText(u"no such text"_s);
    QTest::keyClick(&window, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_FALSE(Done(window));
    EXPECT_TRUE(window.findChild<QLabel*>(u"lblState"_s)->text().contains(u"no such text"_s));
}

TEST_F(ReportTest, WritesPdfOrLeavesNothingBehind) {
    ReportWindow window(Language(MResources::kEnglish), Brewery());
    ASSERT_TRUE(window.Read());
    ASSERT_TRUE(Done(window));
    const QString kept = qEnvironmentVariable("KV_SCREENSHOTS", folder_.path()) + u"/report.pdf"_s;
    window.ExportPdf(kept);
    ASSERT_TRUE(Done(window));
    QFile pdf(kept);
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    EXPECT_TRUE(pdf.read(5) == "%PDF-");
    EXPECT_GE(pdf.readAll().count("/Type /Page\n"), 15);

    const QString cancelled = folder_.filePath(u"cancelled.pdf"_s);
    for (const QString& file : {cancelled, kept}) {
        const qint64 before = QFile(file).size();
        window.ExportPdf(file);
        window.findChild<QPushButton*>(u"cmdCancel"_s)->click();
        EXPECT_FALSE(window.IsBusy());
        EXPECT_EQ(QFile::exists(file), file == kept);
        EXPECT_EQ(QFile(file).size(), before) << "nothing has been drawn yet";
    }
    window.ExportHtml(folder_.filePath(u"no/such/folder.html"_s));
    EXPECT_FALSE(Done(window));
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].contains(u"folder.html"_s));
    EXPECT_TRUE(window.findChild<QAction*>(u"actPdf"_s)->isEnabled());
}

// What the check finds, and what has changed since a backup, on the screen and in the files.
TEST_F(ReportTest, HasFindingsAndDifferencesAsChapters) {
    const QString project = Brewery();
    const QString backup = folder_.filePath(u"Sicherung.kvs"_s);
    ASSERT_TRUE(QFile::copy(project, backup));
    std::vector<project::Finding> found;
    {
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + project.toStdString());
        ado::Recordset trends;
        trends.Open("TchrTrends", connection, ado::CommandType::Table);
        trends.Find("ID = 5");
        trends.Set("Unit", std::u16string(u"K"));
        trends.Update();
        trends.Find("ID = 6");
        trends.Delete();
        found = project::CheckProject(connection).findings;
    }
    ASSERT_GT(found.size(), 1U);
    project::Acceptance why;
    why.rule = project::InfoOf(found[0].rule).id;
    why.place = project::PlaceOf(found[0]);
    why.fingerprint = project::FingerprintOf(found[0]);
    why.reason = "agreed with operations";
    why.by = "HS";
    project::Acceptance over = why;
    over.place = project::PlaceOf(found[1]);
    over.fingerprint = project::FingerprintOf(found[1]);
    over.rule = project::InfoOf(found[1].rule).id;
    over.until = "2001-01-01";
    project::AddAcceptances(project::CheckSettings::FileOf(project.toStdString()), {why, over});

    ReportWindow window(Language(MResources::kEnglish), project);
    ASSERT_TRUE(window.Read());
    ASSERT_TRUE(Done(window));
    window.Show({Section::Kind::Findings});
    EXPECT_TRUE(Shown(window).contains(u"Accepted: agreed with operations (HS)\n"_s))
        << Shown(window).toStdString();
    EXPECT_EQ(Shown(window).count(u"Accepted: "_s), 1) << "the other one has expired";
    const auto withField = std::find_if(found.begin(), found.end(),
                                        [](const auto& each) { return !each.column.empty(); });
    ASSERT_NE(withField, found.end());
    EXPECT_TRUE(Links(window).contains(
        report::RowAddress(withField->table, withField->id, withField->column)));

    window.CompareWith(backup);
    ASSERT_TRUE(Done(window));
    EXPECT_EQ(window.Shown().kind, Section::Kind::Differences);
    const QString differences = Shown(window);
    EXPECT_TRUE(differences.contains(u"Differences to Sicherung"_s));
    EXPECT_TRUE(differences.contains(u"Unit: pH → K"_s)) << differences.toStdString();
    EXPECT_TRUE(Links(window).contains(report::RowAddress("TchrTrends", 5)));
    EXPECT_FALSE(Links(window).contains(report::RowAddress("TchrTrends", 6))) << "it has gone";

    const QString file = folder_.filePath(u"r.html"_s);
    window.ExportHtml(file);
    ASSERT_TRUE(Done(window));
    const Exported html = ReadHtml(file);
    EXPECT_EQ(html.error, QString());
    EXPECT_EQ(html.missingAnchors, QStringList());
    EXPECT_TRUE(html.text.contains(u"Unit: pH → K"_s));
    EXPECT_TRUE(html.text.contains(u"agreed with operations"_s));

    window.CompareWith(folder_.filePath(u"missing.kvs"_s));
    EXPECT_FALSE(Done(window));
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].contains(u"missing.kvs"_s)) << messages_[0].toStdString();
}

TEST_F(ReportTest, AClickOnATrendAsksForItsRow) {
    ReportWindow window(Language(MResources::kEnglish), Brewery());
    ASSERT_TRUE(window.Read());
    ASSERT_TRUE(Done(window));
    window.Show({Section::Kind::Archive, 0});
    auto* page = window.findChild<QTextBrowser*>(u"txtReport"_s);
    QTextCursor cursor = page->document()->find(u"Maischbottich Temperatur"_s);
    ASSERT_FALSE(cursor.isNull());
    QSignalSpy chosen(&window, &ReportWindow::RowChosen);
    emit page->anchorClicked(QUrl(cursor.charFormat().anchorHref()));
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen[0][0].toString(), u"TchrTrends"_s);
    EXPECT_GT(chosen[0][1].toInt(), 0);
    EXPECT_EQ(window.Shown().archive, 0U);
}

TEST_F(ReportTest, EverythingIsReachedByKeys) {
    for (const unsigned lcid : {MResources::kGerman, MResources::kEnglish}) {
        ReportWindow window(Language(lcid), Brewery());
        QSet<QKeySequence> keys;
        for (const QString& name :
             {u"actPrint"_s, u"actPdf"_s, u"actHtml"_s, u"actDifferences"_s, u"actRefresh"_s,
              u"actFindNext"_s, u"actFindPrevious"_s, u"actHelp"_s, u"actFind"_s, u"actClose"_s}) {
            const auto* action = window.findChild<QAction*>(name);
            ASSERT_NE(action, nullptr) << name.toStdString();
            EXPECT_FALSE(action->shortcut().isEmpty()) << name.toStdString();
            EXPECT_FALSE(keys.contains(action->shortcut())) << name.toStdString();
            keys += action->shortcut();
        }
        // One letter after Alt for each menu and for the field.
        QSet<QChar> letters;
        QStringList captions = {window.findChild<QLabel*>(u"lblFind"_s)->text()};
        for (const QAction* menu : window.menuBar()->actions()) captions += menu->text();
        for (const QString& caption : captions) {
            const QChar letter = caption.at(caption.indexOf(u'&') + 1).toLower();
            EXPECT_FALSE(letters.contains(letter)) << caption.toStdString();
            letters += letter;
        }
    }
}

TEST_F(ReportTest, FollowsADarkDesktop) {
    const QPalette before = QApplication::palette();
    ReportWindow window(Language(MResources::kEnglish), Brewery());
    ASSERT_TRUE(window.Read());
    window.show();
    ASSERT_TRUE(Done(window));
    window.Show({Section::Kind::Archive, 4});
    QPalette dark(QColor(0x2b, 0x2e, 0x31));
    dark.setColor(QPalette::Base, QColor(0x1e, 0x20, 0x22));
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        dark.setColor(role, QColor(0xdc, 0xdc, 0xdc));
    }
    QApplication::setPalette(dark);
    QCoreApplication::processEvents();
    EXPECT_EQ(window.Shown().archive, 4U) << "what is shown stays";
    auto* page = window.findChild<QTextBrowser*>(u"txtReport"_s);
    const QTextTable* table = nullptr;
    for (QTextFrame* frame : page->document()->rootFrame()->childFrames()) {
        if (table == nullptr) table = qobject_cast<QTextTable*>(frame);
    }
    ASSERT_NE(table, nullptr);
    EXPECT_LT(table->cellAt(0, 0).format().background().color().lightness(), 100);
    KeepPicture(window, u"report-dark.png"_s);
    // Contents and overview have the links.
    window.Show({});
    int links = 0;
    for (QTextBlock block = page->document()->begin(); block.isValid(); block = block.next()) {
        for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
            const QTextCharFormat format = piece.fragment().charFormat();
            if (format.foreground().style() == Qt::NoBrush) continue;
            if (format.isAnchor()) ++links;
            EXPECT_GE(colours::Contrast(format.foreground().color(), QColor(0x1e, 0x20, 0x22)),
                      colours::kForText)
                << piece.fragment().text().toStdString();
        }
    }
    EXPECT_GT(links, 0);
    QApplication::setPalette(before);
}

TEST_F(ReportTest, IsCalledByNameAndLateBound) {
    Language(MResources::kEnglish);
    const platform::ComponentRegistry registry({QStringLiteral(KV_REPORT_FOLDER)});
    const platform::ComponentRegistry::Instance loaded =
        registry.Load(u"KVProjectReport.Connect"_s);
    ASSERT_NE(loaded.root, nullptr) << loaded.reason.toStdString();
    const auto show = [&](WId handle, const QString& project, const QString& report) {
        return QMetaObject::invokeMethod(loaded.root, "Show", Q_ARG(qulonglong, handle),
                                         Q_ARG(QString, project), Q_ARG(QString, report));
    };
    auto owner = std::make_unique<QWidget>();
    QString project = Brewery();
    project.replace(u'/', u'\\');
    ASSERT_TRUE(show(owner->winId(), project, u"KVTrend"_s));
    QWidget* window = owner->findChild<QWidget*>(u"frmReport"_s);
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible() && window->isWindow());
    auto* page = window->findChild<QTextBrowser*>(u"txtReport"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return page->toPlainText().contains(u"228"_s); }));

    // The same project again: the same window.
    ASSERT_TRUE(show(owner->winId(), project, u"KVTrend"_s));
    EXPECT_EQ(owner->findChildren<QWidget*>(u"frmReport"_s).size(), 1);
    EXPECT_EQ(messages_, QStringList());
    ASSERT_TRUE(show(owner->winId(), project + u"x"_s, u"KVTrend"_s));
    EXPECT_EQ(owner->findChildren<QWidget*>(u"frmReport"_s), QList<QWidget*>{window})
        << "that project has no report, and this one keeps its own";
    ASSERT_TRUE(show(owner->winId(), project, u"KVOther"_s));
    ASSERT_EQ(messages_.size(), 2);
    EXPECT_TRUE(messages_[0].contains(project + u"x"_s));
    EXPECT_TRUE(messages_[1].contains(u"KVOther"_s));
    owner.reset();
}

}  // namespace
