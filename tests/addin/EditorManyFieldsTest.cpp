#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <set>

#include "addin/EditorTest.h"
#include "project/Schema.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using projectdb::ToQString;

/// A field of a row: "Table.Column" and the row's ID.
using Place = std::pair<std::string, std::int32_t>;
using Fields = std::map<Place, QString>;

/// Every field of the dialogs of several, by itself: what it writes, and nothing else.
class EditorManyFieldsTest : public EditorTest {
protected:
    static constexpr int kRows = 3;

    [[nodiscard]] Fields Dump() {
        Fields fields;
        const auto take = [&](std::string_view table, ado::Recordset& rows) {
            for (; !rows.IsEOF(); rows.MoveNext()) {
                const std::int32_t id = ado::ToLong(rows.Get("ID"));
                for (const ado::Field& field : rows.Fields()) {
                    const ado::Value value = rows.Get(field.name);
                    fields[{std::string(table) + "." + field.name, id}] =
                        ado::IsNull(value) ? u"(Null)"_s : ToQString(ado::ToText(value));
                }
            }
        };
        Elsewhere([&](projectdb::ProjectRows& rows) {
            take(project::kArchiveTable, rows.Archives());
            take(project::kTrendTable, rows.Trends());
            take(project::kTextTable, rows.Texts());
            take(project::kGroupTable, rows.Groups());
        });
        return fields;
    }

    /// Opens the dialog of several and works in it; split 0: archives.
    void Edit(int split, const std::function<void(QDialog&)>& work) {
        ClickCell(0, u"Name"_s, split);
        for (int i = 1; i < kRows; ++i) Key(Qt::Key_Down, Qt::ShiftModifier);
        ASSERT_EQ(SelectedRows(split).size(), kRows);
        bool isDone = false;
        AnswerDialog([this] { Key(Qt::Key_F9, Qt::ControlModifier); },
                     [&](QDialog& dialog) {
                         isDone = true;
                         work(dialog);
                     });
        ASSERT_TRUE(isDone) << "no dialog";
    }
    static QPushButton& Ok(QDialog& dialog) { return *dialog.findChild<QPushButton*>(u"cmdOk"_s); }
    [[nodiscard]] QByteArray Bytes() const {
        QFile file(project_);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static QLineEdit* LineOf(QWidget& control) {
        if (auto* list = qobject_cast<QComboBox*>(&control)) return list->lineEdit();
        return qobject_cast<QLineEdit*>(&control);
    }
    static void TypeOver(QWidget& control, const QString& text) {
        QLineEdit& line = *LineOf(control);
        line.setFocus();
        line.selectAll();
        QTest::keyClick(&line, Qt::Key_Delete);
        // As an input method does: a keyboard of a test has no umlauts.
        QInputMethodEvent typed;
        typed.setCommitString(text);
        QCoreApplication::sendEvent(&line, &typed);
    }
    /// Gives a control another value, as a user would; a text where it takes one.
    static void Change(QWidget& control, const QString& text) {
        if (LineOf(control) != nullptr) return TypeOver(control, text);
        if (auto* list = qobject_cast<QComboBox*>(&control)) {
            return list->setCurrentIndex(text.toInt());
        }
        if (auto* button = qobject_cast<QAbstractButton*>(&control);
            button != nullptr && button->isCheckable()) {
            return button->click();
        }
        control.setProperty("Color", text.toInt());
    }

    struct Case {
        QString control;
        QString value;                  // typed, or the entry of a list
        std::set<std::string> columns;  // that are written
        bool canBeCleared = false;
    };
    void ChangeAlone(int split, const Case& each);
    void ClearAlone(int split, const Case& each);
    void UntouchedWritesNothing(int split, const QStringList& controls);

    /// What has changed, by column, with the rows.
    [[nodiscard]] static std::map<std::string, std::set<std::int32_t>> Changed(
        const Fields& before, const Fields& after) {
        std::map<std::string, std::set<std::int32_t>> changed;
        EXPECT_EQ(before.size(), after.size());
        for (const auto& [place, value] : after) {
            const auto was = before.find(place);
            if (was == before.end() || was->second != value) {
                changed[place.first].insert(place.second);
            }
        }
        return changed;
    }
};

void EditorManyFieldsTest::ChangeAlone(int split, const Case& each) {
    SCOPED_TRACE(each.control.toStdString() + " changed");
    const Fields before = Dump();
    Edit(split, [&](QDialog& dialog) {
        auto* control = dialog.findChild<QWidget*>(each.control);
        ASSERT_NE(control, nullptr);
        EXPECT_TRUE(control->isEnabledTo(&dialog));
        const QString ok = Ok(dialog).text();
        Change(*control, each.value);
        EXPECT_TRUE(Ok(dialog).text().startsWith(u"Change 1 field in 3 "_s))
            << Ok(dialog).text().toStdString();
        // There and back again is untouched, and a second change counts.
        QTest::keyClick(control, Qt::Key_Backspace, Qt::AltModifier);
        EXPECT_EQ(Ok(dialog).text(), ok);
        Change(*control, each.value);
        Ok(dialog).click();
        EXPECT_FALSE(dialog.isVisible());
        if (dialog.isVisible()) dialog.reject();
    });
    const auto changed = Changed(before, Dump());
    EXPECT_FALSE(changed.empty());
    for (const auto& [column, rows] : changed) {
        EXPECT_TRUE(each.columns.contains(column)) << column;
        EXPECT_LE(rows.size(), std::size_t{kRows});
    }
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Changed(before, Dump()).empty()) << "one step back";
}

void EditorManyFieldsTest::ClearAlone(int split, const Case& each) {
    SCOPED_TRACE(each.control.toStdString() + " cleared");
    const Fields before = Dump();
    Edit(split, [&](QDialog& dialog) {
        auto* control = dialog.findChild<QWidget*>(each.control);
        TypeOver(*control, u"1"_s);
        QTest::keyClick(LineOf(*control), Qt::Key_Backspace);
        EXPECT_EQ(LineOf(*control)->text(), QString());
        EXPECT_EQ(LineOf(*control)->placeholderText(), u"(empty)"_s);
        Ok(dialog).click();
        EXPECT_FALSE(dialog.isVisible());
        if (dialog.isVisible()) dialog.reject();
    });
    const Fields after = Dump();
    const auto changed = Changed(before, after);
    for (const auto& [column, rows] : changed) {
        EXPECT_TRUE(each.columns.contains(column)) << column;
        EXPECT_EQ(rows.size(), std::size_t{kRows});
    }
    EXPECT_EQ(changed.size(), 1U);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Changed(before, Dump()).empty());
}

/// All fields say that they differ; none is touched by that.
void EditorManyFieldsTest::UntouchedWritesNothing(int split, const QStringList& controls) {
    const QByteArray before = Bytes();
    Edit(split, [&](QDialog& dialog) {
        for (const QString& name : controls) {
            SCOPED_TRACE(name.toStdString());
            auto* control = dialog.findChild<QWidget*>(name);
            ASSERT_NE(control, nullptr);
            if (QLineEdit* line = LineOf(*control)) {
                EXPECT_EQ(line->placeholderText(), u"(different)"_s);
                EXPECT_EQ(line->text(), QString());
            } else if (auto* list = qobject_cast<QComboBox*>(control)) {
                EXPECT_EQ(list->placeholderText(), u"(different)"_s);
                EXPECT_EQ(list->currentIndex(), -1);
            } else if (auto* check = qobject_cast<QCheckBox*>(control)) {
                EXPECT_EQ(check->checkState(), Qt::PartiallyChecked);
            } else if (auto* button = qobject_cast<QRadioButton*>(control)) {
                EXPECT_FALSE(button->isChecked());
            }
        }
        EXPECT_EQ(Ok(dialog).text(), u"OK"_s);
        Ok(dialog).click();
    });
    EXPECT_TRUE(Bytes() == before);
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled());
}

std::string Of(std::string_view table, std::string_view column) {
    return std::string(table) + "." + std::string(column);
}

/// The dialog has a field for it.
bool IsShown(const project::Column& column) {
    return column.dialogCaption != 0 && column.kind != project::Kind::Key;
}

/// Three trends that differ in every setting.
void MakeTrendsDiffer(projectdb::ProjectRows& rows) {
    std::ignore = rows.SeekTrendsOf(1);
    ado::Recordset& trends = rows.Trends();
    for (std::int32_t i = 1; !trends.IsEOF(); trends.MoveNext(), ++i) {
        for (const project::Column& column : project::TrendColumns()) {
            if (!IsShown(column) || column.name == "Name") continue;
            const bool isText =
                column.kind == project::Kind::Text || column.kind == project::Kind::Variable;
            if (isText) {
                trends.Set(column.name, ToQString(column.name).toStdU16String() +
                                            QString::number(i).toStdU16String());
            } else if (column.kind == project::Kind::Limit) {
                trends.Set(column.name, QString::number(i).toStdU16String());
            } else if (column.kind == project::Kind::Listed) {
                const std::size_t count = column.name == "HysteresisMode" ? 3 : column.codes.size();
                // Without a filter there is no depth of it.
                const std::size_t first = column.name == "Filter" ? 1 : 0;
                const auto at = first + static_cast<std::size_t>(i) % (count - first);
                trends.Set(column.name, column.codes[at].code);
            } else {
                trends.Set(column.name, i);
            }
        }
        trends.Update();
        if (!rows.SeekTextOf(trends)) continue;
        rows.Texts().Set("L1033", u"text " + QString::number(i).toStdU16String());
        rows.Texts().Update();
    }
}

TEST_F(EditorManyFieldsTest, EveryFieldOfTrends) {
    project_ = Brewery();
    Elsewhere(MakeTrendsDiffer);
    Open();
    std::vector<Case> cases;
    for (const project::Column& column : project::TrendColumns()) {
        if (!IsShown(column)) continue;
        const QString name = ToQString(column.name);
        const std::set<std::string> columns = {Of(project::kTrendTable, column.name)};
        if (column.name == "Name") {
            cases.push_back({u"txtName"_s,
                             u"Q{1..3}"_s,
                             {columns.begin()->data(), Of(project::kTextTable, "Name")}});
        } else if (column.kind == project::Kind::Listed) {
            cases.push_back({u"cmb"_s + name, u"1"_s, columns});
        } else if (column.kind == project::Kind::Colour) {
            cases.push_back({u"clr"_s + name, u"4711"_s, columns});
        } else {
            cases.push_back({u"txt"_s + name, u"77"_s, columns, true});
        }
    }
    cases.push_back({u"txtTextID"_s, u"New"_s, {Of(project::kTextTable, "L1033")}, true});
    QStringList controls;
    for (const Case& each : cases) controls.append(each.control);
    UntouchedWritesNothing(1, controls);
    for (const Case& each : cases) {
        ChangeAlone(1, each);
        if (each.canBeCleared) ClearAlone(1, each);
    }
}

/// What an archive gets, by its number.
using MakeArchive = void (*)(ado::Recordset& archive, std::int32_t number);

/// Continuation files, all of the settings that they have.
void MakeFile(ado::Recordset& archive, std::int32_t number) {
    using namespace project::ArchiveType;
    const std::u16string end = QString::number(number).toStdU16String();
    archive.Set("Type", kContinuationFile | kRedundancy);
    archive.Set("SampleMode", project::SampleMode::kOnTrigger);
    archive.Set("MaxSamples", 0);
    for (const char* column : {"FileName", "FilePath", "RedundancyFilePath", "Trigger", "NewFile",
                               "XVar", "StartStop", "Reset", "Comment"}) {
        archive.Set(column, u"v" + end);
    }
    for (const char* column : {"CacheSize", "AuthorizationLevel", "MaxFiles", "MaxSizeKb"}) {
        archive.Set(column, number);
    }
}

void MakeRing(ado::Recordset& archive, std::int32_t number) {
    archive.Set("Type", project::ArchiveType::kCircularBuffer);
    archive.Set("SampleMode", project::SampleMode::kMilliseconds);
    archive.Set("NewFile", u"");
    archive.Set("MaxSamples", 100 * number);
    archive.Set("ScanTime", 1000 * number);
}

/// No two of the choices of the first three go together.
void MakeMixture(ado::Recordset& archive, std::int32_t number) {
    using namespace project::ArchiveType;
    const bool isOdd = number % 2 != 0;
    MakeFile(archive, number);
    archive.Set("Type", isOdd ? kContinuationFile | kSaveSafe : kMainMemory | kRedundancy);
    archive.Set("SampleMode", number % 4);
    archive.Set("ScanTime", number);
    archive.Set("MaxSamples", isOdd ? 0 : 50);
    archive.Set("NewFile", isOdd ? u"$Day" : u"Var");
}

class EditorManyArchivesTest : public EditorManyFieldsTest {
protected:
    void OpenWith(MakeArchive make) {
        project_ = Brewery();
        Elsewhere([&](projectdb::ProjectRows& rows) {
            ado::Recordset& archives = rows.Archives();
            for (std::int32_t number = 1; !archives.IsEOF(); archives.MoveNext(), ++number) {
                make(archives, number);
                archives.Update();
                if (!rows.SeekTextOf(archives)) continue;
                rows.Texts().Set("L1033", u"text " + QString::number(number).toStdU16String());
                rows.Texts().Update();
            }
        });
        Open();
        ASSERT_GE(Names(0).size(), kRows);
    }
    static Case Of(const QString& control, const QString& value, std::string_view column,
                   bool canBeCleared = false) {
        return {control, value, {::Of(project::kArchiveTable, column)}, canBeCleared};
    }
    void Run(const std::vector<Case>& cases) {
        for (const Case& each : cases) {
            ChangeAlone(0, each);
            if (each.canBeCleared) ClearAlone(0, each);
        }
    }
};

TEST_F(EditorManyArchivesTest, EveryFieldOfFiles) {
    OpenWith(MakeFile);
    const QStringList different = {
        u"txtName"_s,      u"txtTextID"_s,    u"txtTrigger"_s,
        u"txtXVar"_s,      u"txtStartStop"_s, u"txtReset"_s,
        u"txtCacheSize"_s, u"txtComment"_s,   u"txtAuthorizationLevel"_s,
        u"txtMaxFiles"_s,  u"txtMaxSizekB"_s, u"txtFileName"_s,
        u"cboFilePath"_s,  u"txtNewFile"_s,   u"cboRedundancyFilePath"_s,
    };
    UntouchedWritesNothing(0, different);
    Case name = Of(u"txtName"_s, u"Q{1..3}"_s, "Name");
    name.columns.insert({::Of(project::kTextTable, "Name"), ::Of(project::kGroupTable, "Name")});
    Case count = Of(u"cboNewFile"_s, u"9"_s, "NewFile");
    count.columns.insert(::Of(project::kArchiveTable, "MaxSamples"));
    Run({name,
         {u"txtTextID"_s, u"New"_s, {::Of(project::kTextTable, "L1033")}, true},
         Of(u"txtTrigger"_s, u"New"_s, "Trigger", true),
         Of(u"txtXVar"_s, u"New"_s, "XVar", true),
         Of(u"txtStartStop"_s, u"New"_s, "StartStop", true),
         Of(u"txtReset"_s, u"New"_s, "Reset", true),
         Of(u"txtComment"_s, u"{A|B|C}"_s, "Comment", true),
         Of(u"txtFileName"_s, u"New"_s, "FileName", true),
         Of(u"cboFilePath"_s, u"New"_s, "FilePath", true),
         Of(u"cboRedundancyFilePath"_s, u"New"_s, "RedundancyFilePath", true),
         Of(u"txtNewFile"_s, u"New"_s, "NewFile", true),
         Of(u"txtCacheSize"_s, u"77"_s, "CacheSize", true),
         Of(u"txtAuthorizationLevel"_s, u"77"_s, "AuthorizationLevel", true),
         Of(u"txtMaxFiles"_s, u"77"_s, "MaxFiles", true),
         Of(u"txtMaxSizekB"_s, u"77"_s, "MaxSizeKb", true),
         Of(u"cmbSampleMode"_s, u"0"_s, "SampleMode"),
         count,
         Of(u"cmbType"_s, u"0"_s, "Type"),
         Of(u"optHDRAM(1)"_s, {}, "Type"),
         Of(u"optSaveFast(1)"_s, {}, "Type"),
         Of(u"chkRedundancy"_s, {}, "Type")});
}

TEST_F(EditorManyArchivesTest, EveryFieldOfCircularBuffers) {
    OpenWith(MakeRing);
    UntouchedWritesNothing(0, {u"txtMaxSamples"_s, u"txtScantime"_s});
    Run({Of(u"txtMaxSamples"_s, u"77"_s, "MaxSamples", true),
         Of(u"txtScantime"_s, u"77"_s, "ScanTime", true)});
}

/// Where the kinds differ, only the kind is chosen; what not all of them have cannot be changed.
TEST_F(EditorManyArchivesTest, ChoicesThatDiffer) {
    OpenWith(MakeMixture);
    const QStringList choices = {u"cmbType"_s,       u"cmbSampleMode"_s, u"cboNewFile"_s,
                                 u"optHDRAM(0)"_s,   u"optHDRAM(1)"_s,   u"optSaveFast(0)"_s,
                                 u"chkRedundancy"_s, u"optSaveFast(1)"_s};
    UntouchedWritesNothing(0, choices);
    Run({Of(u"cmbSampleMode"_s, u"0"_s, "SampleMode"), Of(u"cmbType"_s, u"0"_s, "Type"),
         Of(u"optHDRAM(0)"_s, {}, "Type"), Of(u"optHDRAM(1)"_s, {}, "Type")});
    Edit(0, [](QDialog& dialog) {
        for (const QString& name : {u"cboNewFile"_s, u"txtMaxSamples"_s, u"txtFileName"_s,
                                    u"optSaveFast(0)"_s, u"chkRedundancy"_s, u"txtTrigger"_s}) {
            EXPECT_FALSE(dialog.findChild<QWidget*>(name)->isEnabled()) << name.toStdString();
        }
        // When all of them have it, it can be.
        dialog.findChild<QWidget*>(u"optHDRAM(0)"_s)->setFocus();
        dialog.findChild<QRadioButton*>(u"optHDRAM(0)"_s)->click();
        EXPECT_TRUE(dialog.findChild<QWidget*>(u"chkRedundancy"_s)->isEnabled());
        auto* check = dialog.findChild<QCheckBox*>(u"chkRedundancy"_s);
        check->click();
        EXPECT_EQ(Ok(dialog).text(), u"Change 2 fields in 3 archives"_s);
        auto* mark = check->findChild<QToolButton*>(u"cmdBack"_s);
        mark->click();
        EXPECT_EQ(check->checkState(), Qt::PartiallyChecked);
        EXPECT_EQ(Ok(dialog).text(), u"Change 1 field in 3 archives"_s);
        dialog.findChild<QRadioButton*>(u"optHDRAM(1)"_s)
            ->findChild<QToolButton*>(u"cmdBack"_s)
            ->click();
        EXPECT_FALSE(dialog.findChild<QRadioButton*>(u"optHDRAM(0)"_s)->isChecked());
        EXPECT_EQ(Ok(dialog).text(), u"OK"_s);
        dialog.reject();
    });
}

/// A name for all is refused, a pattern that does not suit as well; names go as a set, and tree and
/// list follow.
TEST_F(EditorManyArchivesTest, NamesFollowOrAreRefused) {
    OpenWith(MakeFile);
    const QStringList before = Names(0);
    const QByteArray bytes = Bytes();
    Edit(0, [&](QDialog& dialog) {
        auto& name = *dialog.findChild<QWidget*>(u"txtName"_s);
        for (const QString& refused : {u"Same"_s, u"T{1..4}"_s}) {
            TypeOver(name, refused);
            messages_.clear();
            Ok(dialog).click();
            EXPECT_EQ(messages_.size(), 1);
            EXPECT_TRUE(dialog.isVisible());
        }
        EXPECT_TRUE(Bytes() == bytes);
        TypeOver(name, u"{%2|%1|Third}"_s.arg(before[0], before[1]));
        Ok(dialog).click();
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(Names(0).mid(0, 3), QStringList({before[1], before[0], u"Third"_s}));
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Names(0), before);
}

/// What another program has written meanwhile is not overwritten.
TEST_F(EditorManyArchivesTest, ChangesOfOthersStand) {
    OpenWith(MakeFile);
    Edit(0, [&](QDialog& dialog) {
        TypeOver(*dialog.findChild<QWidget*>(u"txtComment"_s), u"mine"_s);
        Elsewhere([](projectdb::ProjectRows& rows) {
            rows.Archives().Set("Comment", u"theirs");
            rows.Archives().Update();
        });
        messages_.clear();
        Ok(dialog).click();
        EXPECT_EQ(messages_.size(), 1);
        EXPECT_TRUE(MessageTexts().join(QString()).contains(u"theirs"_s));
        EXPECT_TRUE(dialog.isVisible());
        dialog.reject();
    });
    std::set<QString> comments;
    for (const auto& [place, value] : Dump()) {
        if (place.first == ::Of(project::kArchiveTable, "Comment")) comments.insert(value);
    }
    EXPECT_TRUE(comments.contains(u"theirs"_s));
    EXPECT_FALSE(comments.contains(u"mine"_s));
}

}  // namespace
