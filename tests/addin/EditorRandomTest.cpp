#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <QDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <random>
#include <set>
#include <utility>

#include "addin/EditorTest.h"
#include "projectdb/ProjectTesting.h"
#include "projectdb/Text.h"
#include "support/ProjectInOrder.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// Any commands in any order through the window, and the way back.
class EditorRandomTest : public EditorTest {
protected:
    [[nodiscard]] int Below(int limit) {
        return std::uniform_int_distribution(0, limit - 1)(random_);
    }
    /// A text that nobody has written before.
    [[nodiscard]] QString Fresh(const QString& who) { return who + QString::number(++written_); }
    [[nodiscard]] Content Read() const { return ReadContent(project_.toStdString()); }

    /// One thing that a user does; it may come to nothing.
    void DoSomething() {
        TurnTo();
        const int rows = Split(1)->model()->rowCount();
        const int row = rows > 0 ? Below(rows) : -1;
        switch (Below(rows > 0 ? 9 : 2)) {
            case 0:
                return GoToAnotherArchive();
            case 1:
                Key(Qt::Key_F8);
                Key(Qt::Key_Escape);
                return;
            case 2:
            case 3:
            case 4:
                return TypeInto(row);
            case 5:
                ClickCell(row, u"Unit"_s);
                return Key(Qt::Key_Delete);
            case 6:
                SelectRow(row);
                return Key(Qt::Key_D, Qt::ControlModifier);
            case 7:
                SelectRow(row);
                SelectRow(Below(rows), Qt::ShiftModifier);
                if (SelectedRows().size() > 6) return;
                Key(Qt::Key_C, Qt::ControlModifier);
                return Key(Qt::Key_V, Qt::ControlModifier);
            default:
                return DeleteSomething(row);
        }
    }

    void TypeInto(int row) {
        static const std::vector<QString> kFields{u"Name"_s, u"Unit"_s, u"Comment"_s, u"VMax"_s};
        const QString field = kFields.at(static_cast<std::size_t>(Below(4)));
        ClickCell(row, field);
        Type(field == u"VMax"_s ? QString::number(Below(1000)) : Fresh(u"me"_s));
        Key(Qt::Key_Return);
    }

    void DeleteSomething(int row) {
        if (Below(4) != 0) {
            SelectRow(row);
            Key(Qt::Key_Delete, Qt::ControlModifier);
            return Action(u"mnuTrend(2)"_s)->trigger();
        }
        Action(u"mnuArchiv(2)"_s)->trigger();
        QApplication::processEvents();
    }

    void GoToAnotherArchive() {
        const QStringList nodes = host_.ChildKeys(u"ARC0"_s).value_or(QStringList());
        if (nodes.isEmpty()) return Action(u"mnuArchiv(0)"_s)->trigger();
        Click(nodes.at(Below(static_cast<int>(nodes.size()))));
        if (Below(4) == 0) {
            TurnTo(0);
            Key(Qt::Key_D, Qt::ControlModifier);
        }
        QApplication::processEvents();
    }

    std::mt19937 random_{20261122};
    int written_ = 0;
};

TEST_F(EditorRandomTest, AnyDayGoesBackToItsBeginningAndForwardToItsEnd) {
    Open();
    std::vector<Content> states{Read()};
    for (int i = 0; i < 45; ++i) {
        DoSomething();
        Content now = Read();
        if (now != states.back()) states.push_back(std::move(now));
    }
    ASSERT_GT(states.size(), 20U);
    ExpectInOrder(states.back());
    ExpectSameForMdbTools(project_.toStdString(), states.back());
    TurnTo();
    for (std::size_t i = states.size() - 1; i-- > 0;) {
        Key(Qt::Key_Z, Qt::ControlModifier);
        ASSERT_EQ(Read(), states[i]) << "back to " << i;
    }
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled());
    ExpectSameForMdbTools(project_.toStdString(), states.front());
    for (std::size_t i = 1; i < states.size(); ++i) {
        Key(Qt::Key_Y, Qt::ControlModifier);
        ASSERT_EQ(Read(), states[i]) << "forward to " << i;
    }
    EXPECT_FALSE(Action(u"mnuRedo"_s)->isEnabled());
    EXPECT_TRUE(ErrorsIn(project_.toStdString()).empty());
    ExpectSameForMdbTools(project_.toStdString(), states.back());
}

/// Two write comments and units of the same trends, one of them going back and forth; what each of
/// them wants of a conflict is decided by chance.
TEST_F(EditorRandomTest, WithAnotherProgramEachFieldEndsWithWhatSomebodyChose) {
    Open();
    using Cell = std::pair<std::int32_t, std::string>;
    std::map<Cell, std::set<std::u16string>> chosen;
    std::map<Cell, std::u16string> theirs;  // where only the other has written
    std::set<Cell> mine;
    const std::vector<std::string> fields{"Unit", "Comment"};
    const auto read = [&] {
        std::map<Cell, std::u16string> cells;
        Elsewhere([&](projectdb::ProjectRows& rows) {
            std::ignore = rows.SeekTrendsOf(1);
            for (ado::Recordset& trends = rows.Trends(); !trends.IsEOF(); trends.MoveNext()) {
                for (const std::string& field : fields) {
                    cells[{ado::ToLong(trends.Get("ID")), field}] = ado::ToText(trends.Get(field));
                }
            }
        });
        return cells;
    };
    const auto before = read();
    for (const auto& [cell, value] : before) chosen[cell].insert(value);

    QTimer settle;
    QObject::connect(&settle, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || dialog->objectName() != u"FConflict"_s) return;
        auto* table = dialog->findChild<QTableWidget*>(u"tblConflicts"_s);
        if (Below(3) == 0) return dialog->reject();
        for (int row = 0; row < table->rowCount(); ++row) {
            table->item(row, 2 + Below(2))->setCheckState(Qt::Checked);
        }
        dialog->findChild<QPushButton*>(u"cmdOk"_s)->click();
    });
    settle.start(1);
    int backAndForth = 0;
    for (int i = 0; i < 80; ++i) {
        TurnTo();
        const auto cells = read();
        auto at = cells.begin();
        std::advance(at, Below(static_cast<int>(cells.size())));
        const auto& [cell, was] = *at;
        switch (Below(4)) {
            case 0: {
                const int row = Below(Split(1)->model()->rowCount());
                const std::string& field = fields.at(static_cast<std::size_t>(Below(2)));
                const QString text = Fresh(u"me"_s);
                ClickCell(row, projectdb::ToQString(field));
                Type(text);
                Key(Qt::Key_Return);
                for (const auto& [written, value] : read()) {
                    if (value != text.toStdU16String()) continue;
                    mine.insert(written);
                    chosen[written].insert(value);
                }
                break;
            }
            case 1: {
                const std::u16string text = Fresh(u"they"_s).toStdU16String();
                Elsewhere([&, &cell = cell](projectdb::ProjectRows& rows) {
                    rows.Trends().SetFilter("ID = " + std::to_string(cell.first));
                    rows.Trends().Set(cell.second, text);
                    rows.Trends().Update();
                });
                chosen[cell].insert(text);
                theirs[cell] = text;
                break;
            }
            default:
                Key(Below(3) == 0 ? Qt::Key_Y : Qt::Key_Z, Qt::ControlModifier);
                ++backAndForth;
        }
    }
    settle.stop();
    EXPECT_GT(backAndForth, 20);
    EXPECT_GT(mine.size(), 5U);
    for (const auto& [cell, value] : read()) {
        const QString what = u"%1 of %2: %3"_s.arg(projectdb::ToQString(cell.second))
                                 .arg(cell.first)
                                 .arg(projectdb::ToQString(value));
        EXPECT_TRUE(chosen[cell].contains(value)) << what.toStdString();
        if (mine.contains(cell)) continue;
        const auto other = theirs.find(cell);
        EXPECT_EQ(value, other != theirs.end() ? other->second : before.at(cell))
            << what.toStdString();
    }
    EXPECT_TRUE(ErrorsIn(project_.toStdString()).empty());
}

}  // namespace
