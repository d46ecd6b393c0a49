#include <gmock/gmock.h>

#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStatusBar>

#include "addin/EditorTest.h"
#include "support/SmallDisk.h"
#include "templates/TemplateFile.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;

/// Settings that are kept for new archives and trends.
class EditorTemplatesTest : public EditorTest {
protected:
    [[nodiscard]] QString Hint() { return Editor()->findChild<QStatusBar*>()->currentMessage(); }
    [[nodiscard]] QString FileName() const { return project_ + u"-templates"_s; }
    [[nodiscard]] QByteArray File() const {
        QFile file(FileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void WriteFile(const QByteArray& bytes) const {
        QFile file(FileName());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    /// Ctrl+Shift+F8.
    void Keep(const QString& name) {
        AnswerDialog([this] { Key(Qt::Key_F8, Qt::ControlModifier | Qt::ShiftModifier); },
                     [&](QDialog& dialog) {
                         dialog.findChild<QLineEdit*>()->setText(name);
                         dialog.accept();
                     });
    }
    /// Shift+F8; `work` closes the dialog.
    void InTemplates(const std::function<void(QDialog&)>& work) {
        bool isShown = false;
        AnswerDialog([this] { Key(Qt::Key_F8, Qt::ShiftModifier); },
                     [&](QDialog& dialog) {
                         isShown = dialog.objectName() == u"FTemplates"_s;
                         work(dialog);
                     });
        EXPECT_TRUE(isShown);
    }
    static QListWidget& List(QDialog& dialog) {
        return *dialog.findChild<QListWidget*>(u"lstTemplates"_s);
    }
    static QStringList Entries(QDialog& dialog) {
        QStringList entries;
        for (int row = 0; row < List(dialog).count(); ++row) {
            entries += List(dialog).item(row)->text();
        }
        return entries;
    }
    void Use(int row) {
        InTemplates([row](QDialog& dialog) {
            List(dialog).setCurrentRow(row);
            QTest::keyClick(&List(dialog), Qt::Key_Return);
            if (dialog.isVisible()) dialog.findChild<QPushButton*>(u"cmdUse"_s)->click();
        });
    }
    /// F8; the name of the trend that it has made.
    QString NewTrend() {
        Key(Qt::Key_F8);
        Key(Qt::Key_Escape);
        return CurrentName();
    }
};

TEST_F(EditorTemplatesTest, NewTrendsHaveTheSettingsOfTheChosenOne) {
    project_ = Brewery();
    Open();
    const QStringList before = Names();
    const QString model = before[1];
    ClickCell(1, u"Name"_s);
    Keep(u"16 bar"_s);  // the settings file would take it for a number
    EXPECT_TRUE(Hint().contains(u"16 bar"_s)) << Hint().toStdString();
    EXPECT_TRUE(File().contains("\"Unit\""));
    EXPECT_FALSE(File().contains("TrendVar")) << "which belongs to the one trend";

    const auto made = [&] {
        const QString name = NewTrend();
        EXPECT_TRUE(Hint().contains(u"16 bar"_s)) << Hint().toStdString();
        for (const char* column :
             {"Unit", "Factor", "Filter", "VMax", "VLineColor", "VDrawMode", "Maximum"}) {
            EXPECT_EQ(Stored(name, column), Stored(model, column)) << column;
        }
        EXPECT_NE(Stored(name, "TrendVar"), Stored(model, "TrendVar"));
        Key(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(Names(), before) << "one step";
    };
    Use(1);
    made();
    // Another day.
    CloseProject();
    Open();
    made();
    Use(0);
    EXPECT_NE(Stored(NewTrend(), "Unit"), Stored(model, "Unit"));
}

TEST_F(EditorTemplatesTest, ArchivesHaveTemplatesOfTheirOwn) {
    Open();
    TurnTo(0);
    Keep(u"Files"_s);
    InTemplates([](QDialog& dialog) {
        EXPECT_EQ(Entries(dialog), QStringList({u"(none)"_s, u"Files"_s}));
        List(dialog).setCurrentRow(1);
        dialog.findChild<QPushButton*>(u"cmdUse"_s)->click();
    });
    Key(Qt::Key_F8);
    Elsewhere([](projectdb::ProjectRows& rows) {
        ASSERT_TRUE(rows.SeekArchive(1));
        std::map<std::string, ado::Value> of;
        const std::vector<std::string> same = {"Type",       "SampleMode", "ScanTime",
                                               "MaxSamples", "NewFile",    "CacheSize"};
        for (const std::string& column : same) of[column] = rows.Archives().Get(column);
        const ado::Value file = rows.Archives().Get("FileName");
        rows.Archives().SetFilter({});
        rows.Archives().MoveLast();
        EXPECT_EQ(project::NameOf(rows.Archives()), u"New Archive");
        for (const std::string& column : same) {
            EXPECT_TRUE(rows.Archives().Get(column) == of[column]) << column;
        }
        EXPECT_FALSE(rows.Archives().Get("FileName") == file);
    });
    TurnTo(1);
    InTemplates([](QDialog& dialog) {
        EXPECT_EQ(Entries(dialog), QStringList(u"(none)"_s));
        dialog.reject();
    });
}

/// From another project, or another version.
TEST_F(EditorTemplatesTest, WhatAProjectDoesNotTakeIsLeftOutAndNamed) {
    Open();
    WriteFile(R"({"trends": [{"name": "Foreign", "settings":
        {"Unit": "mbar", "Unknown": 1, "Factor": "no number", "Name": "mine", "VMax": 12.5}}]})");
    Use(1);
    messages_.clear();
    const QString name = NewTrend();
    EXPECT_THAT(messages_, testing::IsEmpty());
    EXPECT_EQ(Stored(name, "Unit"), u"mbar"_s);
    EXPECT_EQ(Stored(name, "VMax"), u"12.5"_s);
    EXPECT_EQ(Stored(name, "Factor"), u"1"_s);
    for (const QString& column : {u"Unknown"_s, u"Factor"_s, u"Name"_s}) {
        EXPECT_TRUE(Hint().contains(column)) << Hint().toStdString();
    }
    EXPECT_FALSE(Hint().contains(u"Unit"_s));
}

TEST_F(EditorTemplatesTest, TheyAreRenamedReplacedAndDeleted) {
    Open();
    for (const QString& name : {u"A"_s, u"B"_s}) Keep(name);
    Use(1);
    InTemplates([this](QDialog& dialog) {
        List(dialog).setCurrentRow(1);
        AnswerDialog([&] { QTest::keyClick(&List(dialog), Qt::Key_F2); },
                     [](QDialog& name) {
                         name.findChild<QLineEdit*>()->setText(u"C"_s);
                         name.accept();
                     });
        EXPECT_EQ(Entries(dialog), QStringList({u"(none)"_s, u"C"_s, u"B"_s}));
        List(dialog).setCurrentRow(2);
        QTest::keyClick(&List(dialog), Qt::Key_Delete);
        EXPECT_EQ(Entries(dialog), QStringList({u"(none)"_s, u"C"_s}));
        dialog.reject();
    });
    // The one in use has been renamed, and is in use.
    std::ignore = NewTrend();
    EXPECT_TRUE(Hint().contains(u"'C'"_s)) << Hint().toStdString();
    // One of the same name is replaced after a question.
    messages_.clear();
    Keep(u"C"_s);
    EXPECT_EQ(messages_.size(), 1);
    // Renamed to another's name it takes its place, once, after the same question.
    Keep(u"B"_s);
    messages_.clear();
    InTemplates([this](QDialog& dialog) {
        List(dialog).setCurrentRow(2);
        AnswerDialog([&] { QTest::keyClick(&List(dialog), Qt::Key_F2); },
                     [](QDialog& name) {
                         name.findChild<QLineEdit*>()->setText(u"C"_s);
                         name.accept();
                     });
        EXPECT_EQ(Entries(dialog), QStringList({u"(none)"_s, u"C"_s}));
        // One that is deleted is chosen no more.
        List(dialog).setCurrentRow(1);
        QTest::keyClick(&List(dialog), Qt::Key_Delete);
        EXPECT_EQ(Entries(dialog), QStringList(u"(none)"_s));
        EXPECT_TRUE(List(dialog).item(0)->font().bold());
        dialog.reject();
    });
    EXPECT_EQ(messages_.size(), 1);
    // What is no file of templates is neither used nor written over.
    const QByteArray damaged = "<<<<<<< mine";
    WriteFile(damaged);
    messages_.clear();
    Keep(u"D"_s);
    EXPECT_EQ(messages_.size(), 1);
    EXPECT_EQ(File(), damaged);
    std::ignore = NewTrend();
    EXPECT_EQ(messages_.size(), 1) << "as without a template";
}

// What cannot be written is told of, and nothing looks as if it had been.
TEST_F(EditorTemplatesTest, AFileThatCannotBeWrittenKeepsItsTemplates) {
    templates::TemplateFile first(folder_.filePath(u"a.kvs"_s));
    templates::TemplateFile second(folder_.filePath(u"a.kvs"_s));
    const project::Values settings{{"Unit", std::u16string(u"bar")}, {"VMax", ado::Null()}};
    EXPECT_EQ(first.Keep(templates::Kind::Trend, {u"A"_s, settings}), QString());
    EXPECT_EQ(second.Keep(templates::Kind::Trend, {u"B"_s, {}}), QString());
    templates::TemplateFile read(folder_.filePath(u"a.kvs"_s));
    ASSERT_EQ(read.Names(templates::Kind::Trend), QStringList({u"A"_s, u"B"_s}));
    EXPECT_EQ(read.Find(templates::Kind::Trend, u"A"_s)->settings.size(), 1U)
        << "what is Null says nothing";
    {
        const SmallDisk disk(10);
        EXPECT_FALSE(read.Rename(templates::Kind::Trend, u"A"_s, u"Z"_s).isEmpty());
    }
    ASSERT_EQ(templates::TemplateFile(folder_.filePath(u"a.kvs"_s)).Names(templates::Kind::Trend),
              QStringList({u"A"_s, u"B"_s}));
    QFile file(first.Path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<<<<<<< mine");
    file.close();
    EXPECT_FALSE(read.Rename(templates::Kind::Trend, u"A"_s, u"Z"_s).isEmpty());
    EXPECT_FALSE(read.Remove(templates::Kind::Trend, u"B"_s).isEmpty());
}

// Another studio may take a template away between two looks at the file.
TEST_F(EditorTemplatesTest, ARenamingOfWhatHasGoneTakesNothingAway) {
    Open();
    templates::TemplateFile mine(project_);
    for (const auto* name : {u"A", u"B"}) {
        EXPECT_EQ(mine.Keep(templates::Kind::Trend, {QString::fromUtf16(name), {}}), QString());
    }
    templates::TemplateFile theirs(project_);
    EXPECT_EQ(theirs.Remove(templates::Kind::Trend, u"A"_s), QString());
    EXPECT_EQ(mine.Rename(templates::Kind::Trend, u"A"_s, u"B"_s), QString());
    EXPECT_EQ(mine.Names(templates::Kind::Trend), QStringList(u"B"_s));
}

}  // namespace
