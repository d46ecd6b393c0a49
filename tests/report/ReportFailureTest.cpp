#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <vector>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "messages/MessageBox.h"
#include "platform/Registry.h"
#include "report/ReportWindow.h"
#include "support/SmallDisk.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using report::ReportWindow;
using report::Section;

class ReportFailureTest : public testing::Test {
protected:
    ReportFailureTest()
        : project_(folder_.filePath(u"Projekt.kvs"_s)),
          answer_([this](const messages::Message& message) {
              messages_ += message.text;
              return messages::MessageResult::Ok;
          }) {
        registry_.WriteDword(MResources::kStudioKey, u"LCID", MResources::kEnglish);
    }

    void CopyProject(const QString& source) {
        ASSERT_TRUE(QFile::copy(source, project_));
        QFile::setPermissions(project_, QFile::ReadOwner | QFile::WriteOwner);
    }
    /// Changes the project as another program would.
    void Change(const char* table, const std::function<void(ado::Recordset&)>& change) {
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + project_.toStdString());
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        connection.BeginTrans();
        change(rows);
        connection.CommitTrans();
    }
    /// Takes away the definition of the table that has this column.
    void DamageTableWith(QStringView column) {
        constexpr qint64 kPage = 4096;
        QFile file(project_);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        const QByteArray name(reinterpret_cast<const char*>(column.utf16()), 2 * column.size());
        for (qint64 at = 0; at < file.size(); at += kPage) {
            file.seek(at);
            const QByteArray page = file.read(kPage);
            if (page.at(0) != 2 || !page.contains(name)) continue;
            file.seek(at);
            file.putChar('\x77');
            return;
        }
        FAIL() << "there is no such table";
    }
    void Read() {
        window_ = std::make_unique<ReportWindow>(registry_, project_);
        ASSERT_TRUE(window_->Read());
        ASSERT_TRUE(Done());
    }
    bool Done() {
        if (!window_->IsBusy()) return true;
        QSignalSpy ended(window_.get(), &ReportWindow::TaskEnded);
        return ended.wait(30000) && ended.first().first().toBool();
    }
    QString Shown(Section section) {
        window_->Show(section);
        return window_->findChild<QTextBrowser*>(u"txtReport"_s)->toPlainText();
    }

    QTemporaryDir folder_;
    QString project_;
    platform::Registry registry_;
    QStringList messages_;
    messages::MessageAnswer answer_;
    std::unique_ptr<ReportWindow> window_;
};

// Whether the first bytes find no room or the last: what was there stays, and nothing else.
TEST_F(ReportFailureTest, AFileThatCannotBeWrittenIsToldOfAndLeavesTheOldOne) {
    CopyProject(QStringLiteral(KV_TEST_DATA "/Leer.kvs"));
    Read();
    const struct {
        const char16_t* name;
        void (ReportWindow::*write)(const QString&);
    } kinds[] = {{u"report.html", &ReportWindow::ExportHtml},
                 {u"report.pdf", &ReportWindow::ExportPdf}};
    for (const auto& kind : kinds) {
        SCOPED_TRACE(QString::fromUtf16(kind.name).toStdString());
        const QString target = folder_.filePath(QString::fromUtf16(kind.name));
        const auto write = [&](const QString& file) { (window_.get()->*kind.write)(file); };
        write(target);
        ASSERT_TRUE(Done());
        const qint64 size = QFile(target).size();
        ASSERT_GT(size, 0);
        ASSERT_TRUE(QFile(target).resize(1));
        const QStringList before = QDir(folder_.path()).entryList();
        for (const qint64 room : {qint64{0}, size / 2, size - 1}) {
            messages_.clear();
            {
                const SmallDisk disk(static_cast<rlim_t>(room));
                write(target);
                EXPECT_FALSE(Done());
            }
            ASSERT_EQ(messages_.size(), 1) << room;
            EXPECT_TRUE(messages_[0].contains(QFileInfo(target).fileName()));
            EXPECT_TRUE(messages_[0].contains(u"full"_s)) << messages_[0].toStdString();
            EXPECT_EQ(QFile(target).size(), 1);
            EXPECT_EQ(QDir(folder_.path()).entryList(), before);
        }
        messages_.clear();
        write(folder_.filePath(u"no/such/"_s) + QFileInfo(target).fileName());
        EXPECT_FALSE(Done());
        ASSERT_EQ(messages_.size(), 1);
        EXPECT_TRUE(messages_[0].contains(u"folder"_s)) << messages_[0].toStdString();
    }
}

TEST_F(ReportFailureTest, APdfThatIsGivenUpInTheMiddleGoesAway) {
    CopyProject(QStringLiteral(KV_TEST_DATA "/Leer.kvs"));
    Change("TchrArchives", [](ado::Recordset& rows) {
        for (int i = 0; i < 300; ++i) {
            rows.AddNew();
            rows.Set("Name", u"Archiv " + QString::number(i).toStdU16String());
            rows.Update();
        }
    });
    Read();
    const auto files = [&] { return QDir(folder_.path()).entryList(QDir::Files); };
    const QStringList before = files();
    window_->ExportPdf(folder_.filePath(u"report.pdf"_s));
    ASSERT_TRUE(QTest::qWaitFor([&] { return files() != before; }, 60000));
    ASSERT_TRUE(window_->IsBusy()) << "so many sections take more than one portion";
    QTest::keyClick(window_.get(), Qt::Key_Escape);
    EXPECT_FALSE(window_->IsBusy());
    EXPECT_EQ(files(), before);
    EXPECT_EQ(messages_, QStringList());
}

TEST_F(ReportFailureTest, SearchingOnLeavesTheSectionAndComesBack) {
    CopyProject(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"));
    Read();
    window_->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get(), 30000));
    // Three archives begin a new file then.
    window_->findChild<QLineEdit*>(u"txtFind"_s)->setText(u"change of the hour"_s);
    const auto* page = window_->findChild<QTextBrowser*>(u"txtReport"_s);
    const struct {
        Qt::KeyboardModifiers held;
        std::vector<std::size_t> archives;
    } cases[] = {{Qt::NoModifier, {7, 9, 11, 7}}, {Qt::ShiftModifier, {11, 9, 7, 11}}};
    for (const auto& each : cases) {
        window_->Show({});
        for (const std::size_t archive : each.archives) {
            const Section wanted{Section::Kind::Archive, archive};
            for (int i = 0; i < 20 && !(window_->Shown() == wanted); ++i) {
                QTest::keyClick(window_.get(), Qt::Key_F3, each.held);
                ASSERT_TRUE(Done());
            }
            EXPECT_EQ(window_->Shown().archive, archive);
            EXPECT_EQ(page->textCursor().selectedText(), u"change of the hour"_s);
        }
    }
    EXPECT_EQ((window_->Show({Section::Kind::Archive, 999}), window_->Shown().kind),
              Section::Kind::Overview);
    auto* list = window_->findChild<QListWidget*>(u"lstArchives"_s);
    window_->findChild<QLineEdit*>(u"txtFilter"_s)->setText(u"KELLER"_s);
    int visible = 0;
    for (int i = 0; i < list->count(); ++i) visible += list->item(i)->isHidden() ? 0 : 1;
    EXPECT_EQ(visible, 2);
    window_->CompareWith(project_);
    ASSERT_TRUE(Done());
    EXPECT_FALSE(list->item(list->count() - 1)->text().contains(u"KELLER"_s, Qt::CaseInsensitive));
    EXPECT_TRUE(list->item(list->count() - 1)->isHidden()) << "the new chapter is narrowed too";
}

// In front of the first archive and behind the last there is none; neither is in between.
TEST_F(ReportFailureTest, ATrendOfNoArchiveIsShownUnderNone) {
    CopyProject(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"));
    Change("TchrArchives", [](ado::Recordset& rows) {
        rows.Find("ID=3");
        rows.Delete();
    });
    Change("TchrTrends", [](ado::Recordset& rows) {
        rows.Set("ArchiveID", std::int32_t{-1});
        rows.Set("Comment", std::u16string(u"\U0001F37A\xD83C"));
        rows.Update();
    });
    Read();
    const QString problems = Shown({Section::Kind::Problems});
    EXPECT_TRUE(problems.contains(u"There is no archive -1."_s)) << problems.toStdString();
    EXPECT_EQ(problems.count(u"There is no archive 3."_s), 18);
    const QString none = Shown({Section::Kind::WithoutArchive});
    EXPECT_TRUE(none.contains(u"Sudhaus.Maischbottich.Temperatur"_s));
    EXPECT_TRUE(none.contains(u"\U0001F37A\uFFFD"_s)) << "half a character is replaced";
    for (std::size_t archive = 0; archive < 13; ++archive) {
        EXPECT_FALSE(Shown({Section::Kind::Archive, archive}).contains(u"Lagerkeller."_s));
    }
}

// Of what cannot be read one problem is told, and not one for each row that names it.
TEST_F(ReportFailureTest, ATableThatCannotBeReadIsOneProblem) {
    const struct {
        QStringView column;
        QString table;
    } cases[] = {{u"L1031", u"TidxTexts"_s}, {u"kbLayout", u"TcfgLanguages"_s}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.table.toStdString());
        QFile::remove(project_);
        CopyProject(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"));
        DamageTableWith(each.column);
        Read();
        const QString problems = Shown({Section::Kind::Problems});
        EXPECT_TRUE(problems.contains(each.table)) << problems.toStdString();
        EXPECT_FALSE(problems.contains(u"There is no index text"_s)) << problems.toStdString();
        const QString archive = Shown({Section::Kind::Archive, 0});
        EXPECT_TRUE(archive.contains(u"Sudhaus.Maischbottich.Temperatur"_s));
        EXPECT_FALSE(archive.contains(u"There is no index text"_s));
    }
}

/// One archive with so many trends; the last one's comment may be long.
class LongReportTest : public ReportFailureTest {
protected:
    void MakeProject(int trends) {
        QFile::remove(project_);
        CopyProject(QStringLiteral(KV_TEST_DATA "/Leer.kvs"));
        std::int32_t archive = 0;
        Change("TchrArchives", [&](ado::Recordset& rows) {
            rows.AddNew();
            rows.Set("Name", std::u16string(u"A"));
            rows.Update();
            archive = ado::ToLong(rows.Get("ID"));
        });
        Change("TchrTrends", [&](ado::Recordset& rows) {
            for (int i = 0; i < trends; ++i) {
                rows.AddNew();
                rows.Set("ArchiveID", archive);
                rows.Set("Name", u"T" + QString::number(i).toStdU16String());
                rows.Update();
            }
        });
    }
    QSet<QString> Links() {
        QSet<QString> links;
        const auto* page = window_->findChild<QTextBrowser*>(u"txtReport"_s);
        for (QTextBlock block = page->document()->begin(); block.isValid(); block = block.next()) {
            for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
                const QString link = piece.fragment().charFormat().anchorHref();
                if (link.startsWith(u"section:"_s)) links += link;
            }
        }
        return links;
    }
};

TEST_F(LongReportTest, ATableIsCutWhereAPartIsFullAndNotBehindIt) {
    for (const int trends : {100, 101, 200}) {
        SCOPED_TRACE(trends);
        MakeProject(trends);
        Read();
        const auto part = [](std::size_t number) {
            return Section{Section::Kind::Archive, 0, number * 100};
        };
        const auto parts = static_cast<std::size_t>((trends + 99) / 100);
        for (std::size_t i = 0; i < parts; ++i) {
            window_->Show(part(i));
            EXPECT_EQ(window_->Shown(), part(i));
            QSet<QString> beside;
            if (i > 0) beside += part(i - 1).Address();
            if (i + 1 < parts) beside += part(i + 1).Address();
            EXPECT_EQ(Links(), beside);
        }
        window_->Show(part(parts));
        EXPECT_EQ(window_->Shown().kind, Section::Kind::Overview) << "there is no such part";
    }
}

TEST_F(LongReportTest, ProblemsAreListedUpToABoundAndCountedBeyondIt) {
    constexpr std::size_t kMost = report::ProjectReader::kMaximumProblems;
    MakeProject(static_cast<int>(kMost) + 3);
    Change("TchrArchives", [](ado::Recordset& rows) { rows.Delete(); });
    report::ProjectReader reader;
    reader.Open(project_);
    while (!reader.Collect(std::chrono::seconds(1))) continue;
    EXPECT_EQ(reader.TrendCount(), kMost + 3) << "those without an archive count";
    EXPECT_EQ(reader.Problems().size(), kMost);
    ASSERT_GE(reader.ProblemCount(), kMost + 3);
    Read();
    window_->Show({});
    EXPECT_TRUE(Links().contains(Section{Section::Kind::WithoutArchive}.Address()));
    const auto more = static_cast<qulonglong>(reader.ProblemCount() - kMost);
    EXPECT_TRUE(Shown({Section::Kind::Problems})
                    .contains(u"and %1 more"_s.arg(QLocale(QLocale::English).toString(more))));
}

// A row that is longer than a page goes on over the next ones.
TEST_F(LongReportTest, ALongRowIsPrintedWhole) {
    const QString target = folder_.filePath(u"long.pdf"_s);
    const auto pages = [&](std::size_t letters) {
        MakeProject(1);
        const std::u16string text(letters, u'W');
        std::int32_t id = 0;
        Change("TidxTexts", [&](ado::Recordset& rows) {
            rows.AddNew();
            rows.Set("L1031", text);
            rows.Set("L1033", text);
            rows.Update();
            id = ado::ToLong(rows.Get("ID"));
        });
        Change("TchrTrends", [&](ado::Recordset& rows) {
            rows.Set("TextID", id);
            rows.Set("Comment", text);
            rows.Update();
        });
        Read();
        window_->ExportPdf(target);
        EXPECT_TRUE(Done());
        QFile file(target);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().count("/Type /Page\n");
    };
    const auto usual = pages(1);
    EXPECT_GT(pages(255), usual);
}

TEST_F(ReportFailureTest, NoTaskBeginsUnderAnother) {
    CopyProject(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"));
    Read();
    EXPECT_TRUE(window_->IsReady());
    ASSERT_TRUE(window_->Read());
    EXPECT_FALSE(window_->IsReady());
    ASSERT_TRUE(window_->Read()) << "begins again, and what has been begun is given up";
    ASSERT_TRUE(Done());
    const QString html = folder_.filePath(u"r.html"_s);
    const QString pdf = folder_.filePath(u"r.pdf"_s);
    const auto* page = window_->findChild<QTextBrowser*>(u"txtReport"_s);
    window_->ExportHtml(html);
    ASSERT_TRUE(window_->IsBusy());
    window_->ExportPdf(pdf);
    window_->CompareWith(project_);
    EXPECT_FALSE(window_->findChild<QListWidget*>(u"lstArchives"_s)->isEnabled());
    EXPECT_FALSE(page->isEnabled());
    const int revision = page->document()->revision();
    QEvent colours(QEvent::PaletteChange);
    QCoreApplication::sendEvent(window_.get(), &colours);
    EXPECT_EQ(page->document()->revision(), revision) << "rows are not read in between";
    ASSERT_TRUE(Done());
    EXPECT_NE(page->document()->revision(), revision) << "but behind the task";
    EXPECT_TRUE(QFile::exists(html));
    EXPECT_FALSE(QFile::exists(pdf));
    EXPECT_EQ(window_->Shown().kind, Section::Kind::Overview);
}

// Whoever stops a check or a comparison has not failed, and keeps what there was.
TEST_F(ReportFailureTest, WhatIsStoppedLeavesWhatWasThere) {
    CopyProject(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"));
    const QString other = folder_.filePath(u"Other.kvs"_s);
    ASSERT_TRUE(QFile::copy(project_, other));
    report::ProjectReader reader;
    reader.Open(project_);
    const auto goOn = [] { return true; };
    const auto stop = [] { return false; };
    reader.Check(goOn);
    const std::size_t found = reader.Findings().judgement.open.size();
    ASSERT_GT(found, 1U);
    reader.Check(stop);
    EXPECT_EQ(reader.Findings().judgement.open.size(), found);
    reader.CompareWith(other, goOn);
    reader.CompareWith(project_, stop);
    ASSERT_NE(reader.Differences(), nullptr);
    EXPECT_EQ(reader.ComparedWith(), u"Other"_s);
}

// A language without texts is passed over, and the others keep theirs.
TEST_F(ReportFailureTest, TextsStandUnderTheirOwnLanguage) {
    CopyProject(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"));
    Change("TcfgLanguages", [](ado::Recordset& rows) {
        rows.MoveFirst();
        ASSERT_EQ(ado::ToLong(rows.Get("LCID")), 1031);
        rows.Set("LCID", std::int32_t{1036});
        rows.Update();
    });
    Read();
    const QString archive = Shown({Section::Kind::Archive, 0});
    EXPECT_TRUE(archive.contains(u"en: "_s)) << archive.left(600).toStdString();
    EXPECT_FALSE(archive.contains(u"de: "_s));
    EXPECT_FALSE(archive.contains(u"1036: "_s));
}

}  // namespace
