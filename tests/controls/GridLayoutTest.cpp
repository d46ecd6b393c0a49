// Columns, fonts, the frozen column, and the two splits together.

#include <algorithm>
#include <QComboBox>
#include <QScrollBar>
#include <QSpinBox>
#include <QWheelEvent>
#include <random>

#include "controls/FontProperties.h"
#include "controls/GridTest.h"
#include "controls/WheelGuard.h"

namespace {

using namespace Qt::Literals::StringLiterals;

using GridLayoutTest = GridTest;

void TurnWheel(QWidget& widget) {
    const QPointF at = widget.rect().center();
    QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, -120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

QList<int> Shown(const GridSplit& split) {
    return split.ColumnOrders();
}

TEST_F(GridLayoutTest, PropertiesAreReachedByName) {
    QObject* split = nullptr;
    ASSERT_TRUE(
        QMetaObject::invokeMethod(&grid_, "Splits", Q_RETURN_ARG(QObject*, split), Q_ARG(int, 1)));
    QObject* column = nullptr;
    ASSERT_TRUE(QMetaObject::invokeMethod(split, "Columns", Q_RETURN_ARG(QObject*, column),
                                          Q_ARG(QVariant, QVariant(u"trendvar"_s))));
    ASSERT_NE(column, nullptr);
    EXPECT_EQ(column->property("DataField").toString(), u"TrendVar"_s);
    // A settings file puts numbers, True as -1.
    EXPECT_TRUE(column->setProperty("Visible", -1));
    EXPECT_TRUE(column->setProperty("AllowSizing", 0));
    EXPECT_TRUE(column->setProperty("Width", 1995));
    EXPECT_TRUE(column->setProperty("Order", 2));
    EXPECT_EQ(column->property("Width").toDouble(), 1995);
    EXPECT_EQ(View()->columnWidth(kVar), 133);
    EXPECT_EQ(View()->horizontalHeader()->visualIndex(kVar), 2);
    EXPECT_EQ(View()->horizontalHeader()->sectionResizeMode(kVar), QHeaderView::Fixed);

    EXPECT_EQ(split_->Columns(2), split_->Column(u"Maximum"));
    EXPECT_EQ(split_->Columns(u"nothing"_s), nullptr);
    EXPECT_EQ(split_->Columns(99), nullptr);
    EXPECT_EQ(grid_.Splits(2), nullptr);

    QObject* font = grid_.property("Font").value<QObject*>();
    ASSERT_NE(font, nullptr);
    EXPECT_TRUE(font->setProperty("Size", 14));
    for (const double none : {0.0, -3.0, 1e6}) font->setProperty("Size", none);
    EXPECT_TRUE(font->setProperty("Weight", 700));
    EXPECT_EQ(View()->font().pointSizeF(), 14);
    EXPECT_TRUE(View()->font().bold());
    EXPECT_EQ(View()->horizontalHeader()->font(), View()->font());
    grid_.HeadFont()->setProperty("Weight", 400);
    EXPECT_FALSE(View()->horizontalHeader()->font().bold());
    EXPECT_TRUE(View(0)->font().bold());
    font->setProperty("Italic", true);
    EXPECT_TRUE(View()->font().italic());
    EXPECT_FALSE(View()->horizontalHeader()->font().bold()) << "the headings have their own now";
}

TEST_F(GridLayoutTest, WidthsAreTwips) {
    GridColumn* column = split_->Column(u"Maximum");
    struct Case {
        double set;
        double read;
        int pixels;
    };
    for (const Case& test : {Case{1995.024, 1995.024, 133}, Case{3000.189, 3000.189, 200},
                             Case{15, 15, 1}, Case{-5, 0, 0}, Case{1e9, 32767, 2184}}) {
        column->SetWidth(test.set);
        EXPECT_EQ(column->Width(), test.read);
        EXPECT_EQ(View()->columnWidth(kMaximum), test.pixels);
    }
    column->SetWidth(1500);
    const QSignalSpy changes(split_, &GridSplit::LayoutChanged);
    View()->setColumnWidth(kMaximum, 80);  // as dragging does
    EXPECT_EQ(column->Width(), 1200);
    EXPECT_GE(changes.size(), 1);
    column->SetVisible(false);
    EXPECT_EQ(column->Width(), 1200) << "a hidden column keeps its width";
    trends_.Load(Trends(3), 2);
    EXPECT_TRUE(View()->isColumnHidden(kMaximum)) << "and stays hidden in another archive";
    column->SetVisible(true);
    EXPECT_EQ(View()->columnWidth(kMaximum), 80);
}

TEST_F(GridLayoutTest, OrdersSetOneByOneGiveThatOrder) {
    std::vector<int> order = {0, 1, 2, 3, 4, 5, 6};
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::shuffle(order.begin(), order.end(), random);
        // The place of each column, set in the columns' own sequence.
        for (int column = 0; column < 7; ++column) {
            const auto place = std::find(order.begin(), order.end(), column) - order.begin();
            split_->ColumnAt(column)->SetOrder(static_cast<int>(place));
        }
        ASSERT_EQ(Shown(*split_), QList<int>(order.begin(), order.end()));
    }
}

TEST_F(GridLayoutTest, ColumnsAreMovedByMouseByPropertyAndByList) {
    split_->Column(u"Filter")->SetOrder(0);
    EXPECT_EQ(Shown(*split_), (QList<int>{kFilter, kName, kVar, kMaximum, kColour, kUnit, kDepth}));
    split_->Column(u"Filter")->SetOrder(99);
    EXPECT_EQ(Shown(*split_).front(), kFilter) << "out of range";
    View()->horizontalHeader()->moveSection(0, 2);  // as dragging does
    EXPECT_EQ(Shown(*split_), (QList<int>{kName, kVar, kFilter, kMaximum, kColour, kUnit, kDepth}));
    EXPECT_EQ(split_->Column(u"Filter")->Order(), 2);
    split_->SetColumnOrders({kDepth, 42, kName, kDepth, -1});
    EXPECT_EQ(Shown(*split_), (QList<int>{kDepth, kName, kVar, kMaximum, kFilter, kColour, kUnit}));
    trends_.Load(Trends(2), 3);
    EXPECT_EQ(Shown(*split_).front(), kDepth) << "another archive, the same layout";
}

TEST_F(GridLayoutTest, TheHeadingShowsCaptionAndOrder) {
    split_->Column(u"Maximum")->SetCaption(u"Größtwert"_s);
    grid_.SetTexts([](GridText text) { return u"text %1"_s.arg(static_cast<int>(text)); });
    const QAbstractItemModel* model = View()->model();
    EXPECT_EQ(model->headerData(kMaximum, Qt::Horizontal).toString(), u"Größtwert"_s);
    EXPECT_EQ(model->headerData(kName, Qt::Horizontal).toString(), u"Name"_s);
    const QImage plain = View()->horizontalHeader()->grab().toImage();
    split_->Sort(u"Maximum");
    QCoreApplication::processEvents();
    EXPECT_NE(View()->horizontalHeader()->grab().toImage(), plain) << "an arrow";
    EXPECT_EQ(model->headerData(kMaximum, Qt::Horizontal, Qt::AccessibleTextRole).toString(),
              u"Größtwert, text 0"_s);
    // A click on a heading turns nothing.
    const QSignalSpy clicked(split_, &GridSplit::HeadClick);
    QTest::mouseClick(View()->horizontalHeader()->viewport(), Qt::LeftButton, {}, {150, 8});
    EXPECT_EQ(clicked.size(), 1);
    EXPECT_EQ(split_->SortOrder(), Qt::AscendingOrder);
}

TEST_F(GridLayoutTest, TheFrozenColumnStaysInView) {
    for (int i = 0; i < split_->ColumnCount(); ++i) split_->ColumnAt(i)->SetWidth(4500);
    split_->SetFrozenColumn(u"Name"_s);
    auto* strip = View()->findChild<QTableView*>();
    ASSERT_NE(strip, nullptr);
    EXPECT_TRUE(strip->isVisible());
    QCoreApplication::processEvents();
    ASSERT_GT(View()->horizontalScrollBar()->maximum(), 0);
    View()->horizontalScrollBar()->setValue(View()->horizontalScrollBar()->maximum());
    EXPECT_EQ(strip->pos().x(), View()->viewport()->x());
    // What becomes current does not hide behind the strip.
    split_->SetCurrentCell(103, kVar);
    EXPECT_GE(View()->visualRect(View()->currentIndex()).left(), strip->width());
    // The strip is the grid's own cells: mouse and editing go on as elsewhere.
    View()->horizontalScrollBar()->setValue(View()->horizontalScrollBar()->maximum());
    const QModelIndex cell = View()->model()->index(5, kName);
    QTest::mouseClick(strip->viewport(), Qt::LeftButton, {}, strip->visualRect(cell).center());
    EXPECT_EQ(split_->CurrentRow(), 106);
    EXPECT_EQ(split_->CurrentColumn(), kName);
    Type(u"Neu"_s);
    ASSERT_NE(Editor(), nullptr);
    EXPECT_EQ(Editor()->parentWidget(), strip->viewport());
    Key(Qt::Key_Return);
    EXPECT_EQ(trends_.Value(106, kName), u"Neu"_s);
    EXPECT_GT(View()->horizontalScrollBar()->value(), 0) << "it is in view as it is";
    split_->SetFrozenColumn({});
    EXPECT_FALSE(strip->isVisible());
}

TEST_F(GridLayoutTest, ColumnsUpToTheFrozenOneStayInViewAsFarAsThereIsRoom) {
    for (int i = 0; i < split_->ColumnCount(); ++i) split_->ColumnAt(i)->SetWidth(1500);
    split_->SetColumnOrders({kVar, kName});
    split_->SetFrozenColumn(u"Name"_s);
    auto* strip = View()->findChild<QTableView*>();
    const auto shown = [strip] {
        QList<int> columns;
        const QHeaderView* header = strip->horizontalHeader();
        for (int i = 0; i < header->count(); ++i) {
            if (!header->isSectionHidden(header->logicalIndex(i)))
                columns += header->logicalIndex(i);
        }
        return columns;
    };
    QCoreApplication::processEvents();
    EXPECT_EQ(shown(), (QList<int>{kVar, kName}));
    EXPECT_EQ(strip->width(), 200);
    split_->Column(u"TrendVar")->SetVisible(false);
    EXPECT_EQ(shown(), QList<int>{kName});
    split_->Column(u"TrendVar")->SetVisible(true);
    // Too wide for both: the first one, so that the others can be scrolled to.
    split_->Column(u"TrendVar")->SetWidth(9000);
    EXPECT_EQ(shown(), QList<int>{kVar});
}

TEST_F(GridLayoutTest, ADoubleClickOnAnEdgeFitsTheColumn) {
    split_->Column(u"Name")->SetWidth(9000);
    QHeaderView* header = View()->horizontalHeader();
    const int edge = header->sectionViewportPosition(kName) + header->sectionSize(kName) - 1;
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, {edge, header->height() / 2});
    EXPECT_LT(split_->Column(u"Name")->Width(), 5000);
    EXPECT_GT(split_->Column(u"Name")->Width(), 300);
    split_->Column(u"Name")->SetWidth(300);
    split_->FitAllColumns();
    EXPECT_GT(split_->Column(u"Name")->Width(), 300);
}

TEST_F(GridLayoutTest, KeysGoFromSplitToSplitAndFromArchiveToArchive) {
    const QSignalSpy splits(&grid_, &TDBGrid::SplitChange);
    const QSignalSpy pages(&grid_, &TDBGrid::PageRequested);
    Key(Qt::Key_F6);
    EXPECT_EQ(grid_.Split(), 0);
    EXPECT_TRUE(View(0)->hasFocus());
    Key(Qt::Key_F6);
    EXPECT_EQ(grid_.Split(), 1);
    EXPECT_EQ(splits.size(), 2);
    Key(Qt::Key_PageUp, Qt::ControlModifier);
    split_->SetCurrentCell(103, kName);
    Type(u"Neu"_s);
    Key(Qt::Key_PageDown, Qt::ControlModifier);
    ASSERT_EQ(pages.size(), 2);
    EXPECT_EQ(pages[0][0].toInt(), -1);
    EXPECT_EQ(pages[1][0].toInt(), +1);
    EXPECT_EQ(trends_.Value(103, kName), u"Neu"_s);
    // Those of the window go on to it.
    for (const Qt::Key key : {Qt::Key_F1, Qt::Key_F8, Qt::Key_F9, Qt::Key_Insert}) {
        QKeyEvent event(QEvent::KeyPress, key, {});
        QApplication::sendEvent(View(), &event);
        EXPECT_FALSE(event.isAccepted()) << key;
    }
    for (const Qt::Key key : {Qt::Key_C, Qt::Key_V, Qt::Key_Delete, Qt::Key_F}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::ControlModifier);
        QApplication::sendEvent(View(), &event);
        EXPECT_FALSE(event.isAccepted()) << key;
    }
    EXPECT_EQ(trends_.rowCount(), 20);
}

TEST_F(GridLayoutTest, TheWheelChangesNoValue) {
    split_->SetCurrentCell(103, kFilter);
    Key(Qt::Key_F2);
    const QString before = qobject_cast<QComboBox*>(Editor())->currentText();
    TurnWheel(*Editor());
    EXPECT_EQ(qobject_cast<QComboBox*>(Editor())->currentText(), before);
    Key(Qt::Key_Escape);

    QWidget form;
    QComboBox combo(&form);
    combo.addItems({u"a"_s, u"b"_s});
    QSpinBox number(&form);
    new WheelGuard(form);
    form.show();
    QApplication::setActiveWindow(&form);
    number.setFocus();
    TurnWheel(combo);
    EXPECT_EQ(combo.currentIndex(), 0);
    TurnWheel(number);
    EXPECT_EQ(number.value(), 0) << "downwards from the least value";
    number.setValue(50);
    TurnWheel(number);
    EXPECT_EQ(number.value(), 49);
    combo.setFocus();
    TurnWheel(number);
    EXPECT_EQ(number.value(), 49);
    TurnWheel(combo);
    EXPECT_EQ(combo.currentIndex(), 1);
}

TEST_F(GridLayoutTest, TheFirstSplitIsAsWideAsItsColumnsNeedUntilTheUserWantsAnother) {
    const auto width = [this] { return View(0)->width(); };
    auto* name = grid_.SplitAt(0).Column(u"Name");
    name->SetWidth(2400);
    const int narrow = width();
    EXPECT_GE(View(0)->viewport()->width(), View(0)->columnWidth(0));
    name->SetWidth(3600);
    EXPECT_EQ(width() - narrow, 80) << "1200 twips at 96 dpi";
    name->SetWidth(20000);
    EXPECT_LE(width(), grid_.width() * 4 / 10);
    EXPECT_EQ(grid_.SplitWidth(), 0) << "nobody has set it";
    grid_.SetSplitWidth(3000);
    EXPECT_EQ(width(), 200);
    name->SetWidth(2400);
    EXPECT_EQ(width(), 200);
}

TEST_F(GridLayoutTest, ObjectsBearTheirNames) {
    EXPECT_EQ(View(0)->objectName(), u"tdbA.Splits(0)"_s);
    EXPECT_EQ(View(1)->objectName(), u"tdbA.Splits(1)"_s);
    grid_.SplitAt(1).SetCaption(u"Trends"_s);
    EXPECT_EQ(View(1)->accessibleName(), u"Trends"_s);
}

}  // namespace
