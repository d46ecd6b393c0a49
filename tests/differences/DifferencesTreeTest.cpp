#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include "ado/Recordset.h"
#include "differences/DifferenceModel.h"
#include "project/Rows.h"
#include "projectdb/Text.h"

namespace differences {
namespace {

using namespace Qt::Literals::StringLiterals;
using testing::IsEmpty;

/// The brewery beside a copy that somebody has worked on.
class DifferencesTreeTest : public testing::Test {
protected:
    DifferencesTreeTest() {
        for (const QString& name : {u"there"_s, u"here"_s}) {
            QFile::copy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"), folder_.filePath(name));
            QFile::setPermissions(folder_.filePath(name), QFile::ReadOwner | QFile::WriteOwner);
        }
        Open(there_, u"there"_s);
        Open(here_, u"here"_s);
        texts_.SetLanguage(1033);
    }

    void Open(ado::Connection& connection, const QString& name) {
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" +
                        folder_.filePath(name).toStdString());
    }
    void Set(std::string_view table, std::int32_t id, const char* column, const ado::Value& value) {
        ado::Recordset rows;
        rows.Open(table, here_, ado::CommandType::Table);
        rows.SetFilter("ID = " + std::to_string(id));
        rows.Set(column, value);
        rows.Update();
    }
    void Compare() {
        model_.Show(std::make_shared<const project::Differences>(project::Compare(there_, here_)));
    }
    /// The tree as lines; deeper ones behind more blanks.
    QStringList Lines(const QModelIndex& parent = {}, int depth = 0) const {
        QStringList lines;
        for (int i = 0; i < model_.rowCount(parent); ++i) {
            QStringList cells;
            for (int column = 0; column < model_.columnCount(parent); ++column) {
                const QString text = model_.index(i, column, parent).data().toString();
                if (!text.isEmpty()) cells += text;
            }
            lines += QString(depth, u' ') + cells.join(u" | "_s);
            lines += Lines(model_.index(i, 0, parent), depth + 1);
        }
        return lines;
    }

    QTemporaryDir folder_;
    ado::Connection there_;
    ado::Connection here_;
    MResources::TextTable texts_;
    DifferenceModel model_{texts_};
    QAbstractItemModelTester tester_{&model_,
                                     QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(DifferencesTreeTest, TellsFieldByFieldInTheUsersWords) {
    Set(project::kTrendTable, 5, "ArchiveID", 2);
    Set(project::kTrendTable, 5, "VDrawMode", 4);
    Set(project::kTrendTable, 5, "Factor", 1.5);
    Set(project::kTrendTable, 5, "VLineColor", 0x0000FF);
    Set(project::kArchiveTable, 1, "Type", 8);
    Set(project::kArchiveTable, 1, "Comment", ado::Null());
    Compare();
    EXPECT_EQ(Lines().join(u'\n').toStdString(),
              "Archives: 1\n"
              " changed | Sudhaus | Sudhaus\n"
              "  Archive Type | Circular Buffer | Continuation File\n"
              "  Storage | in Main Memory (RAM) | on Hard Disk\n"
              "  Comment | (nothing) | Sud für Sud, Tagesdateien\n"
              "Trends: 1\n"
              " moved | Maischbottich pH (archive Gärkeller) | Maischbottich pH (archive Sudhaus)\n"
              "  Archive | Gärkeller | Sudhaus\n"
              "  Factor | 1.5 | 1\n"
              "  Curve Color | #FF0000 | #202020\n"
              "  Output Type | Bars | Line interpolation");
    texts_.SetLanguage(1031);
    Compare();
    EXPECT_TRUE(Lines().contains(u"  Normierungsfaktor | 1,5 | 1"_s));
    EXPECT_TRUE(Lines().contains(u"  Speicherort | im Hauptspeicher (RAM) | auf Festplatte"_s));
}

TEST_F(DifferencesTreeTest, NarrowsAndStepsFromRowToRow) {
    Set(project::kArchiveTable, 1, "Comment", std::u16string(u"neu"));
    for (const std::int32_t id : {5, 6, 40})
        Set(project::kTrendTable, id, "Unit", std::u16string(u"K"));
    project::Rows rows(here_);
    project::NewTrend trend;
    trend.name = u"Nur hier";
    const std::int32_t added = rows.AddTrend(2, trend);
    Compare();
    EXPECT_EQ(model_.RowCount(), 5U);
    EXPECT_EQ(model_.CountOf(RowKind::OnlyHere), 1U);

    std::vector<std::int32_t> ids;
    QModelIndex at;
    for (at = model_.NextRow({}, true); at.isValid(); at = model_.NextRow(at, true)) {
        ids.push_back(ado::ToLong(*model_.RowAt(at)->KnownIn("ID")));
        // A setting of the row stands for the row.
        at = model_.index(0, 0, at);
    }
    EXPECT_EQ(ids, (std::vector<std::int32_t>{1, 5, 6, 40, added}));
    at = model_.index(1, 0);  // the table of trends
    EXPECT_EQ(model_.RowAt(model_.NextRow(at, false))->table, project::kArchiveTable);

    model_.Filter({false, true, true}, {});
    EXPECT_EQ(model_.ShownCount(), 1U);
    model_.Filter({true, true, true}, u"nur HIER"_s);
    EXPECT_EQ(model_.ShownCount(), 1U);
    std::vector<project::Wanted> wanted;
    model_.AddWanted(model_.index(0, 0), wanted);
    EXPECT_EQ(wanted.size(), 1U) << "of what is not shown nothing is taken over";
    model_.Filter({true, true, true}, u"nirgends"_s);
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_FALSE(model_.NextRow({}, true).isValid());
}

}  // namespace
}  // namespace differences
