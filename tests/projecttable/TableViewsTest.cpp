#include "projecttable/TableViews.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "support/SmallDisk.h"

namespace {

using namespace Qt::Literals::StringLiterals;

class TableViewsTest : public testing::Test {
protected:
    [[nodiscard]] QString Project() const { return folder_.filePath(u"plant.kvs"_s); }
    void Write(const QByteArray& bytes) const {
        QFile file(Project() + u"-views"_s);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QTemporaryDir folder_;
};

TEST_F(TableViewsTest, AViewComesBackAsItWasKept) {
    TableView view;
    view.name = u"Verdichter 1"_s;
    view.filters = {{u"Unit"_s, u"=bar | ="_s}, {u"VMax"_s, u">5"_s}};
    view.anywhere = u"\u00C4"_s;
    view.hidden = {u"Comment"_s};
    view.order = {{u"Archive"_s, Qt::AscendingOrder}, {u"Unit"_s, Qt::DescendingOrder}};
    view.archives = {u"Verdichter 1"_s};
    TableViews first(Project());
    TableViews second(Project());
    EXPECT_EQ(first.Keep(view), QString());
    TableView other;
    other.name = u"other"_s;
    EXPECT_EQ(second.Keep(other), QString()) << "of another studio";

    const TableViews read(Project());
    ASSERT_EQ(read.All().size(), 2);
    const TableView& again = read.All().front();
    EXPECT_EQ(again.name, view.name);
    EXPECT_EQ(again.filters, view.filters);
    EXPECT_EQ(again.anywhere, view.anywhere);
    EXPECT_EQ(again.hidden, view.hidden);
    EXPECT_EQ(again.archives, view.archives);
    ASSERT_EQ(again.order.size(), 2);
    EXPECT_EQ(again.order[1].field, u"Unit"_s);
    EXPECT_EQ(again.order[1].order, Qt::DescendingOrder);

    EXPECT_EQ(first.Remove(u"Verdichter 1"_s), QString());
    EXPECT_EQ(TableViews(Project()).All().size(), 1);
}

/// What is no file of views may be somebody's: it is left alone.
TEST_F(TableViewsTest, WhatIsNotUnderstoodIsNotWrittenOver) {
    Write("{ somebody's");
    TableViews views(Project());
    EXPECT_FALSE(views.IsReadable());
    TableView view;
    view.name = u"x"_s;
    EXPECT_FALSE(views.Keep(view).isEmpty());
    QFile file(Project() + u"-views"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "{ somebody's");
    ASSERT_TRUE(file.remove());
    // A disk that is full takes nothing away.
    EXPECT_EQ(views.Keep(view), QString()) << "taken away meanwhile";
    view.name = u"y"_s;
    {
        const SmallDisk disk(10);
        EXPECT_FALSE(views.Keep(view).isEmpty());
    }
    EXPECT_EQ(TableViews(Project()).All().size(), 1);
}

}  // namespace
