#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

#include "controls/FakeSource.h"
#include "controls/TDBGrid.h"

/// A grid with archives on the left and the trends of one archive on the right.
class GridTest : public testing::Test {
protected:
    // Columns of the trends, in the source's order.
    enum Column { kName, kVar, kMaximum, kFilter, kColour, kUnit, kDepth };

    static constexpr int kPortion = 100;

    GridTest() {
        using namespace Qt::Literals::StringLiterals;
        grid_.setObjectName(u"tdbA"_s);
        std::vector<FakeSource::Row> archives;
        for (int i = 1; i <= 5; ++i) archives.push_back({i, {u"Archive %1"_s.arg(i)}});
        archives_.Load(std::move(archives), 0);
        trends_.Load(Trends(20), 1);
        grid_.SplitAt(0).SetSource(&archives_);
        grid_.SplitAt(1).SetSource(&trends_);
        split_->Column(u"Filter")->SetValueItems(
            {{0, u"No Filter"_s}, {1, u"Average Value"_s}, {2, u"Averaging"_s}});
        split_->Column(u"Maximum")->SetNumberFormat(u"General Number"_s);
        split_->Column(u"TrendVar")->SetButton(true);
        split_->Column(u"VLineColor")->SetButton(true);
        grid_.resize(1100, 400);
        grid_.show();
        QApplication::setActiveWindow(&grid_);
        View()->setFocus();
    }

    /// Trends 101, 102, ... named Trd101 and so on; the maximum falls, the unit stays.
    static std::vector<FakeSource::Row> Trends(int count) {
        using namespace Qt::Literals::StringLiterals;
        std::vector<FakeSource::Row> rows;
        for (int i = 1; i <= count; ++i) {
            rows.push_back({100 + i,
                            {u"Trd%1"_s.arg(100 + i), u"Plant.Tank%1"_s.arg(i), (count - i) * 2.5,
                             i % 3, 0x0000FF, u"bar"_s, i}});
        }
        return rows;
    }

    [[nodiscard]] QTableView* View(int split = 1) const { return grid_.SplitAt(split).View(); }
    [[nodiscard]] QWidget* Editor() const {
        return grid_.findChild<QWidget*>(QStringLiteral("CellEditor"));
    }
    /// Where keys go now: the editor of a cell, or the grid.
    [[nodiscard]] QWidget* Keyboard() const {
        QWidget* focus = QApplication::focusWidget();
        return focus != nullptr ? focus : View();
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers held = {}) {
        QTest::keyClick(Keyboard(), key, held);
    }
    /// The first letter may open an editor, which takes the others.
    void Type(const QString& text) {
        for (const QChar letter : text) QTest::keyClicks(Keyboard(), letter);
    }
    [[nodiscard]] QPoint CellPoint(GridRowId row, int column) const {
        const auto shown = split_->ShownRows();
        return View()
            ->visualRect(View()->model()->index(static_cast<int>(shown.indexOf(row)), column))
            .center();
    }
    void Click(GridRowId row, int column, Qt::KeyboardModifiers held = {}) {
        QTest::mouseClick(View()->viewport(), Qt::LeftButton, held, CellPoint(row, column));
    }
    void ClickSelector(GridRowId row, Qt::KeyboardModifiers held = {}) {
        QWidget* header = View()->verticalHeader()->viewport();
        QTest::mouseClick(header, Qt::LeftButton, held,
                          {header->width() / 2, CellPoint(row, kName).y()});
    }

    FakeSource archives_{{{QStringLiteral("Name"), GridKind::Text, false}}};
    FakeSource trends_{{{QStringLiteral("Name")},
                        {QStringLiteral("TrendVar")},
                        {QStringLiteral("Maximum"), GridKind::Number},
                        {QStringLiteral("Filter"), GridKind::Integer},
                        {QStringLiteral("VLineColor"), GridKind::Colour},
                        {QStringLiteral("Unit"), GridKind::Text, false},
                        {QStringLiteral("FilterDepth"), GridKind::Integer}},
                       kPortion};
    TDBGrid grid_;
    GridSplit* split_ = &grid_.SplitAt(1);
};
