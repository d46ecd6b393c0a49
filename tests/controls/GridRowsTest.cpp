// What rows a grid shows, in which order, and which of them are selected.

#include <QAbstractItemModelTester>
#include <QCollator>
#include <QScrollBar>

#include "controls/GridTest.h"

namespace {

using namespace Qt::Literals::StringLiterals;

using GridRowsTest = GridTest;
using Ids = QList<GridRowId>;

FakeSource::Row Trend(GridRowId id, const QString& name, const QVariant& maximum,
                      const QVariant& filter) {
    return {id, {name, u"Var"_s, maximum, filter, 0, u"bar"_s, 1}};
}

TEST_F(GridRowsTest, SortsByWhatAColumnMeans) {
    trends_.Load(
        {Trend(1, u"b"_s, 10.0, 0), Trend(2, u"Ä"_s, 9.0, 1), Trend(3, u"a"_s, QVariant(), 2),
         Trend(4, u"B"_s, -1.5, 1), Trend(5, u"c"_s, 9.0, QVariant())},
        7);
    struct Case {
        const char* what;
        QString field;
        Qt::SortOrder order;
        Ids ids;
    };
    // The listed values read "No Filter", "Average Value", "Averaging".
    for (const Case& test : {
             Case{"text by locale", u"Name"_s, Qt::AscendingOrder, {3, 2, 1, 4, 5}},
             Case{"equal ones keep their order", u"Name"_s, Qt::DescendingOrder, {5, 1, 4, 2, 3}},
             Case{"numbers, none first", u"Maximum"_s, Qt::AscendingOrder, {3, 4, 2, 5, 1}},
             Case{"numbers down", u"Maximum"_s, Qt::DescendingOrder, {1, 2, 5, 4, 3}},
             Case{"listed values as shown", u"Filter"_s, Qt::AscendingOrder, {5, 2, 4, 3, 1}},
             Case{"nothing to tell apart", u"Unit"_s, Qt::DescendingOrder, {1, 2, 3, 4, 5}},
         }) {
        SCOPED_TRACE(test.what);
        split_->Sort(test.field, test.order);
        EXPECT_EQ(split_->ShownRows(), test.ids);
    }
    split_->ClearSort();
    EXPECT_EQ(split_->ShownRows(), (Ids{1, 2, 3, 4, 5}));
}

TEST_F(GridRowsTest, CtrlOSortsByTheCurrentColumnAndTurnsIt) {
    split_->SetCurrentCell(105, kMaximum);
    split_->SelectRows({103, 118});
    const QSignalSpy moved(split_, &GridSplit::RowColChange);
    Key(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(split_->SortField(), u"Maximum"_s);
    EXPECT_EQ(split_->SortOrder(), Qt::AscendingOrder);
    EXPECT_EQ(split_->ShownRows().front(), 120);
    EXPECT_EQ(split_->SelectedRows(), (Ids{118, 103})) << "the same rows, as they stand now";
    Key(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(split_->SortOrder(), Qt::DescendingOrder);
    EXPECT_EQ(split_->ShownRows().front(), 101);
    EXPECT_EQ(split_->CurrentRow(), 105);
    EXPECT_EQ(moved.size(), 0) << "the current cell is the same one";
}

// Projects keep limits as texts, which may name a variable too.
TEST_F(GridRowsTest, TextsThatAreNumbersStandAndSortAsNumbers) {
    std::vector<FakeSource::Row> rows;
    GridRowId id = 0;
    for (const QString& text : {u"100"_s, u"14"_s, u"Var.Max"_s, u"10"_s, u"-2,5"_s, QString()}) {
        rows.push_back({++id, {u"T"_s, u"V"_s, 1.0, 0, 0, text, 1}});
    }
    trends_.Load(std::move(rows), 7);
    split_->Sort(u"Unit");
    EXPECT_EQ(split_->ShownRows(), (Ids{6, 5, 4, 1, 2, 3})) << "a column of texts";
    split_->Column(u"Unit")->SetNumberFormat(u"General Number"_s);
    split_->Sort(u"Unit");
    EXPECT_EQ(split_->ShownRows(), (Ids{5, 4, 2, 1, 6, 3}));
    const auto isRight = [this](int row) {
        const QModelIndex cell = View()->model()->index(row, kUnit);
        return (cell.data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight) != 0;
    };
    EXPECT_TRUE(isRight(0));
    EXPECT_FALSE(isRight(5));
    EXPECT_EQ(View()->model()->index(0, kUnit).data().toString(), u"-2,5"_s) << "as it is stored";
}

TEST_F(GridRowsTest, AClickOnAHeadingSorts) {
    const auto click = [this](int column) {
        QHeaderView* header = View()->horizontalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          {header->sectionViewportPosition(column) + 20, header->height() / 2});
    };
    click(kMaximum);
    EXPECT_EQ(split_->SortField(), u"Maximum"_s);
    EXPECT_EQ(split_->ShownRows().front(), 120);
    click(kMaximum);
    EXPECT_EQ(split_->ShownRows().front(), 101);
    click(kName);
    EXPECT_EQ(split_->SortField(), u"Name"_s);
    EXPECT_EQ(split_->SortOrder(), Qt::AscendingOrder);
}

TEST_F(GridRowsTest, EditedAndNewRowsDoNotJumpAway) {
    split_->Sort(u"Maximum");
    const Ids before = split_->ShownRows();
    split_->SetCurrentCell(110, kMaximum);
    Type(u"-5"_s);
    Key(Qt::Key_Return);
    EXPECT_EQ(split_->ShownRows(), before);
    trends_.Append(Trend(500, u"New"_s, -9.0, 0));
    EXPECT_EQ(split_->ShownRows().back(), 500);
    split_->Sort(u"Maximum");
    EXPECT_EQ(split_->ShownRows().mid(0, 2), (Ids{500, 110}));
    // The reload after it finds the row in the same place on the screen.
    split_->SetCurrentCell(105);
    const int top = View()->visualRect(View()->currentIndex()).top();
    trends_.Load(trends_.Rows(), 1);
    EXPECT_EQ(split_->CurrentRow(), 105);
    EXPECT_EQ(View()->visualRect(View()->currentIndex()).top(), top);
}

TEST_F(GridRowsTest, NarrowingShowsRowsThatContainTheText) {
    const QSignalSpy changes(split_, &GridSplit::FilterChanged);
    struct Case {
        QString text;
        Ids ids;
    };
    const Ids all = split_->ShownRows();
    for (const Case& test : {
             Case{u"tank2"_s, {102, 120}},  // whatever the letter case
             Case{u"verage value"_s, {101, 104, 107, 110, 113, 116, 119}},  // as shown
             Case{u"47.5"_s, {101}},
             Case{u"#FF0000"_s, all},
             Case{u"nowhere"_s, {}},
             Case{{}, all},
         }) {
        SCOPED_TRACE(test.text.toStdString());
        split_->SetFilterText(test.text);
        EXPECT_EQ(split_->ShownRows(), test.ids);
    }
    split_->Column(u"TrendVar")->SetVisible(false);
    split_->SetFilterText(u"tank2"_s);
    EXPECT_EQ(split_->RowCount(), 0) << "a hidden column would not explain why a row is there";
    EXPECT_TRUE(trends_.commits.empty());
}

TEST_F(GridRowsTest, SelectionActsOnWhatIsShown) {
    split_->SelectRows({102, 105, 120});
    split_->SetFilterText(u"tank2"_s);
    EXPECT_EQ(split_->SelectedRows(), (Ids{102, 120}));
    split_->SelectAll();
    EXPECT_EQ(split_->SelectedRows(), (Ids{102, 120}));
    split_->SetFilterText({});
    EXPECT_EQ(split_->SelectedRows(), (Ids{102, 120}));
    // Edits and additions do not make a row vanish under the user's hands.
    split_->SetFilterText(u"tank2"_s);
    split_->SetCurrentCell(102, kVar);
    Type(u"Other"_s);
    Key(Qt::Key_Return);
    trends_.Append(Trend(301, u"New"_s, 1.0, 0));
    EXPECT_EQ(split_->ShownRows(), (Ids{102, 120}));
    split_->SetFilterText(u"tank20"_s);
    EXPECT_EQ(split_->ShownRows(), (Ids{120})) << "another narrowing is";
    split_->SetFilterText(u"tank2"_s);
    // What changes is painted, whichever rows of the source stand between.
    const QSignalSpy painted(View()->model(), &QAbstractItemModel::dataChanged);
    emit trends_.dataChanged(trends_.index(10, 0), trends_.index(19, kDepth));
    EXPECT_EQ(painted.size(), 1);
    trends_.Remove(101);
    trends_.Remove(120);
    EXPECT_EQ(split_->ShownRows(), Ids{});
}

TEST_F(GridRowsTest, RowsAreSelectedByRecordSelectorsAndKeys) {
    struct Step {
        const char* what;
        std::function<void()> act;
        Ids selected;
        GridRowId current;
    };
    const Step steps[] = {
        {"selector", [&] { ClickSelector(104); }, {104}, 104},
        {"Shift", [&] { ClickSelector(107, Qt::ShiftModifier); }, {104, 105, 106, 107}, 107},
        {"Shift the other way", [&] { ClickSelector(103, Qt::ShiftModifier); }, {103, 104}, 103},
        {"Ctrl adds", [&] { ClickSelector(110, Qt::ControlModifier); }, {103, 104, 110}, 110},
        {"Ctrl takes away", [&] { ClickSelector(104, Qt::ControlModifier); }, {103, 110}, 104},
        {"a cell", [&] { Click(106, kVar); }, {}, 106},
        {"Shift+Down", [&] { Key(Qt::Key_Down, Qt::ShiftModifier); }, {106, 107}, 107},
        {"and again", [&] { Key(Qt::Key_Down, Qt::ShiftModifier); }, {106, 107, 108}, 108},
        {"Shift+Up takes back", [&] { Key(Qt::Key_Up, Qt::ShiftModifier); }, {106, 107}, 107},
        {"Up", [&] { Key(Qt::Key_Up); }, {}, 106},
        {"Shift+Space", [&] { Key(Qt::Key_Space, Qt::ShiftModifier); }, {106}, 106},
        {"Shift click", [&] { Click(108, kVar, Qt::ShiftModifier); }, {106, 107, 108}, 108},
        {"Ctrl click", [&] { Click(102, kVar, Qt::ControlModifier); }, {102, 106, 107, 108}, 102},
        {"all", [&] { Key(Qt::Key_A, Qt::ControlModifier); }, split_->ShownRows(), 102},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.what);
        step.act();
        EXPECT_EQ(split_->SelectedRows(), step.selected);
        EXPECT_EQ(split_->CurrentRow(), step.current);
    }
    QTest::mouseClick(View()->viewport(), Qt::RightButton, {}, CellPoint(104, kVar));
    EXPECT_EQ(split_->SelectedRows().size(), 20) << "the menu is for the selection";
    split_->SelectRows({102});
    QTest::mouseClick(View()->viewport(), Qt::RightButton, {}, CellPoint(104, kVar));
    EXPECT_EQ(split_->SelectedRows(), Ids{}) << "beside it, it is for the row under it";
    // Rows that are read anew keep where a selection has begun.
    ClickSelector(104);
    trends_.Load(Trends(20), 1);
    ClickSelector(106, Qt::ShiftModifier);
    EXPECT_EQ(split_->SelectedRows(), (Ids{104, 105, 106}));
}

TEST_F(GridRowsTest, MovesLikeASpreadsheet) {
    split_->Column(u"TrendVar")->SetVisible(false);
    struct Step {
        Qt::Key key;
        Qt::KeyboardModifiers held;
        GridRowId row;
        int column;
    };
    split_->SetCurrentCell(103, kName);
    for (const Step& step : {
             Step{Qt::Key_Right, {}, 103, kMaximum},
             Step{Qt::Key_Left, {}, 103, kName},
             Step{Qt::Key_Left, {}, 103, kName},
             Step{Qt::Key_End, {}, 103, kDepth},
             Step{Qt::Key_Tab, {}, 104, kName},
             Step{Qt::Key_Backtab, Qt::ShiftModifier, 103, kDepth},
             Step{Qt::Key_Home, {}, 103, kName},
             Step{Qt::Key_End, Qt::ControlModifier, 120, kDepth},
             Step{Qt::Key_Home, Qt::ControlModifier, 101, kName},
             Step{Qt::Key_Up, {}, 101, kName},
         }) {
        Key(step.key, step.held);
        EXPECT_EQ(split_->CurrentRow(), step.row) << step.key;
        EXPECT_EQ(split_->CurrentColumn(), step.column) << step.key;
    }
}

/// However many cells are selected, a step of scrolling looks at those that come into view.
TEST_F(GridRowsTest, ScrollingAsksForFewRowsWhateverIsSelected) {
    constexpr int kMany = 20000;
    trends_.Load(Trends(kMany), 2);
    split_->SetFillsByMouse(true);
    const auto click = [this](int row, Qt::KeyboardModifier held) {
        QTest::mouseClick(View()->viewport(), Qt::LeftButton, held,
                          View()->visualRect(View()->model()->index(row, kMaximum)).center());
    };
    click(0, Qt::NoModifier);
    split_->SetCurrentCell(100 + kMany, kMaximum);
    split_->SetCurrentCell(101, kMaximum);
    View()->scrollToBottom();
    click(kMany - 1, Qt::ShiftModifier);
    ASSERT_EQ(split_->SelectedCells().rows.size(), kMany);
    auto* handle = View()->findChild<QWidget*>(u"fillHandle"_s);
    ASSERT_NE(handle, nullptr);
    EXPECT_TRUE(handle->isVisible()) << "at the end of the cells";
    trends_.asked = 0;
    QScrollBar& bar = *View()->verticalScrollBar();
    for (int step = 0; step < 10; ++step) bar.setValue(bar.value() - View()->rowHeight(0));
    EXPECT_LT(trends_.asked, kMany / 4);
    EXPECT_FALSE(handle->isVisible());
    bar.setValue(bar.maximum());
    EXPECT_TRUE(handle->isVisible());
}

TEST_F(GridRowsTest, RowsAreFetchedAsTheyAreNeeded) {
    trends_.Load(Trends(3000), 2);
    EXPECT_EQ(trends_.rowCount(), kPortion) << "opening reads one portion";
    View()->verticalScrollBar()->setValue(View()->verticalScrollBar()->maximum());
    EXPECT_EQ(trends_.rowCount(), 2 * kPortion) << "scrolling to the end reads another";
    EXPECT_GT(View()->verticalScrollBar()->value(), 0) << "and stays there";
    trends_.Load(Trends(3000), 3);
    split_->SetCurrentCell(100 + kPortion, kName);
    Key(Qt::Key_Down);
    EXPECT_EQ(split_->CurrentRow(), 101 + kPortion);
    EXPECT_EQ(trends_.rowCount(), 2 * kPortion);
    EXPECT_TRUE(split_->SetCurrentCell(1000, kName));
    EXPECT_LT(trends_.rowCount(), 1500);
    split_->SetFilterText(u"Trd30"_s);  // 300 to 309 and 3000 to 3099
    EXPECT_EQ(split_->RowCount(), 110);
    EXPECT_EQ(trends_.rowCount(), 3000);
    split_->SetFilterText({});
    for (const auto& all : {std::function([&] { split_->SelectAll(); }),
                            std::function([&] { EXPECT_FALSE(split_->SetCurrentCell(9999)); })}) {
        trends_.promises = 1000;
        all();
        EXPECT_GT(trends_.promises, 900) << "rows that are promised and never come hang nothing";
    }
}

TEST_F(GridRowsTest, ShowsWhatItsSourceTells) {
    auto rows = Trends(20);
    rows[0].values = {QVariant(), QVariant(), QVariant(), QVariant(), QVariant(), {}, {}};
    trends_.Load(rows, 1);
    for (int column = 0; column < split_->ColumnCount(); ++column) {
        EXPECT_EQ(split_->CellText(101, column), QString()) << column;
    }
    trends_.Insert(1, Trend(500, u"Between"_s, 1.0, 0));
    EXPECT_EQ(split_->ShownRows().mid(0, 3), (Ids{101, 500, 102}));
    EXPECT_EQ(split_->CellText(120, kName), u"Trd120"_s);
    const QSignalSpy painted(View()->model(), &QAbstractItemModel::dataChanged);
    emit trends_.dataChanged(trends_.index(0, 0), trends_.index(20, kDepth));
    EXPECT_GE(painted.size(), 1);

    split_->Sort(u"FilterDepth");
    FakeSource narrow({{u"Name"_s}});
    narrow.Load({{1, {u"b"_s}}, {2, {u"a"_s}}}, 1);
    split_->SetSource(&narrow);
    EXPECT_EQ(split_->ShownRows(), (Ids{1, 2})) << "sorted by a column that is gone";
    trends_.Load(Trends(3), 2);
    EXPECT_EQ(split_->RowCount(), 2) << "the source of before is heard no more";
    FakeSource numbers({{u"Name"_s, GridKind::Integer}});
    split_->SetSource(&numbers);
    EXPECT_EQ(split_->Column(u"Name")->Kind(), GridKind::Integer);
    split_->SetSource(nullptr);
}

TEST_F(GridRowsTest, ReadingAnewFindsCurrentCellAndSelectionAgain) {
    trends_.Load(Trends(3000), 2);
    const QSignalSpy moved(split_, &GridSplit::RowColChange);
    split_->SetCurrentCell(2000, kMaximum);
    split_->SelectRows({150, 2000});
    const auto told = moved.size();
    trends_.Load(Trends(3000), 2);
    EXPECT_EQ(split_->CurrentRow(), 2000);
    EXPECT_EQ(split_->CurrentColumn(), kMaximum);
    EXPECT_EQ(split_->SelectedRows(), (Ids{150, 2000}));
    trends_.Release();
    trends_.Load(trends_.Kept(), 2);
    EXPECT_EQ(split_->CurrentRow(), 2000);
    EXPECT_EQ(moved.size(), told);

    auto fewer = Trends(3000);
    fewer.erase(fewer.begin() + 1899);  // 2000
    trends_.Load(fewer, 2);
    EXPECT_EQ(split_->CurrentRow(), kNoGridRow);
    split_->SetAlwaysCurrent(true);
    split_->SetCurrentCell(1999, kMaximum);
    fewer.erase(fewer.begin() + 1898);  // 1999
    trends_.Load(fewer, 2);
    EXPECT_EQ(split_->CurrentRow(), 2001) << "what has taken its place";

    trends_.Load(Trends(3000), 3);
    EXPECT_EQ(split_->CurrentRow(), 101) << "another archive begins at the top";
    EXPECT_TRUE(split_->SelectedRows().isEmpty());
    EXPECT_EQ(trends_.rowCount(), kPortion);
}

TEST_F(GridRowsTest, TheModelKeepsTheRulesOfModels) {
    QAbstractItemModelTester tester(View()->model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    tester.setUseFetchMore(false);  // it would fetch in the middle of a reset
    trends_.Load(Trends(500), 2);
    split_->SetFilterText(u"tank4"_s);
    split_->Sort(u"Name", Qt::DescendingOrder);
    trends_.Remove(104);
    trends_.Remove(140);
    trends_.Append(Trend(900, u"Tank4"_s, 1.0, 0));
    split_->SetFilterText({});
    split_->ClearSort();
    trends_.Remove(101);
    trends_.Release();
    trends_.Load(Trends(3), 9);
    EXPECT_EQ(split_->RowCount(), 3);
}

}  // namespace
