#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QProgressDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <set>

#include "addin/DamagedRow.h"
#include "addin/MKVSGlobalEditors.h"
#include "ado/AdoError.h"
#include "ado/TrendQuery.h"
#include "editor/GridColumns.h"
#include "guard/Guard.h"
#include "guard/RowProgress.h"
#include "messages/MessageBox.h"
#include "platform/Registry.h"
#include "projectdb/ADOArchiv.h"
#include "projectdb/NodeKey.h"
#include "projectdb/RowWalk.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;

TEST(NodeKeyTest, KindAndId) {
    struct Case {
        QString key;
        QString kind;
        std::int32_t id;
    };
    const Case cases[] = {
        {u"ARC0"_s, u"ARC0"_s, 0},
        {u"ARCH17"_s, u"ARCH"_s, 17},
        {u"ARCH2147483647"_s, u"ARCH"_s, 2147483647},
        {u"ARCH2147483648"_s, u"ARCH"_s, 0},
        {u"ARCH12x4"_s, u"ARCH"_s, 12},
        {u"ARCHx"_s, u"ARCH"_s, 0},
        {u"AR"_s, u"AR"_s, 0},
        {u"ARCH-3"_s, u"ARCH"_s, -3},
        {QString(), QString(), 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(projectdb::NodeKind(c.key), c.kind) << c.key.toStdString();
        EXPECT_EQ(projectdb::NodeId(c.key), c.id) << c.key.toStdString();
    }
}

TEST(MKVSGlobalEditorsTest, NameOrPath) {
    const QTemporaryDir folder;
    platform::Registry registry({folder.filePath(u"r.reg"_s), {}});
    registry.WriteString(u"SOFTWARE\\Brantor GmbH\\Korvala\\4.0\\Projects\\Plant", u"Path",
                         u"D:\\P"_s);
    struct Case {
        QString project;
        QString path;
        bool given;
    };
    const Case cases[] = {
        {u""_s, u""_s, false},
        {u"PLANT.KVS"_s, u"PLANT.KVS"_s, true},
        {u"D:\\a b\\Plant.kvs "_s, u"D:\\a b\\Plant.kvs "_s, true},
        {u"Plant"_s, u"D:\\P\\Plant.kvs"_s, true},
        {u"plant"_s, u"D:\\P\\plant.kvs"_s, true},
        {u"Plant "_s, u"\\Plant .kvs"_s, true},  // a name is not trimmed
        {u"kvs"_s, u"\\kvs.kvs"_s, true},
    };
    for (const Case& c : cases) {
        QString path = c.project;
        EXPECT_EQ(MKVSGlobalEditors::ReadCurrentProject(registry, path), c.given);
        EXPECT_EQ(path, c.path);
    }
}

TEST(MResourcesTest, TextsFollowTheLanguageAndNeverFail) {
    const QTemporaryDir folder;
    platform::Registry registry({folder.filePath(u"r.reg"_s), {}});
    MResources::TextTable texts;
    EXPECT_EQ(texts.GetText(10), u"Resource 10 not found"_s) << "not filled yet";
    texts.Initialize(registry);
    EXPECT_EQ(texts.GetText(901), u"angegebene Projektdatenbank nicht gefunden"_s);
    registry.WriteDword(MResources::kStudioKey, u"LCID", 1033);
    texts.Initialize(registry);
    EXPECT_EQ(texts.GetText(503), u"&New                 F8"_s);
    for (const int missing : {999, 0, -5, 100501, 2147483647}) {
        EXPECT_EQ(texts.GetText(missing), u"Resource %1 not found"_s.arg(missing));
    }
    texts.AddTexts(999, {u"neu", u"new"});
    texts.AddTexts(999, {u"neuer", u"newer"});
    EXPECT_EQ(texts.GetText(999), u"new"_s) << "the first registration stays";
}

TEST(RowProgressTest, WhatTakesLongCanBeGivenUp) {
    const QTemporaryDir folder;
    platform::Registry registry({folder.filePath(u"r.reg"_s), {}});
    MResources::TextTable texts;
    texts.Initialize(registry);
    QWidget owner;
    {
        RowProgress progress(texts, MResourceTable::kTextDeletingTrends, &owner);
        const projectdb::Progress step = progress.Function();
        EXPECT_TRUE(step(0, 100000));
        auto* dialog = owner.findChild<QProgressDialog*>(u"dlgProgress"_s);
        ASSERT_NE(dialog, nullptr);
        EXPECT_FALSE(dialog->isVisible()) << "not for what is done in no time";
        // Hardly a step is done, however long it is waited for.
        int done = 1;
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                done = 3 - done;
                return !step(done, 100000) || dialog->isVisible();
            },
            30000));
        ASSERT_TRUE(dialog->isVisible());
        EXPECT_EQ(dialog->labelText(), u"Trends werden gelöscht ..."_s);
        auto* cancel = dialog->findChild<QPushButton*>();
        ASSERT_NE(cancel, nullptr);
        EXPECT_EQ(cancel->text(), u"Abbrechen"_s);
        cancel->click();
        EXPECT_FALSE(step(3, 100000));
        EXPECT_EQ(messages::ScreenPointer(), messages::Pointer::Hourglass);
    }
    EXPECT_EQ(messages::ScreenPointer(), messages::Pointer::Default);
    EXPECT_TRUE(owner.children().isEmpty());
}

// Rows come in portions; what is read on later must be the rows behind, whatever else has moved
// the recordset in between.
TEST(RecordsetModelTest, ReadsOnWhereItStopped) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a;b.kvs"_s);
    ASSERT_TRUE(QFile::copy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"), path));
    QFile(path).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    ADOArchiv environment;
    environment.OpenConnection(path);
    ado::Recordset& trends = environment.PrepareRecordset(ADOArchiv::Command::Trends);
    const std::size_t count = trends.RecordCount();
    ASSERT_GT(count, 200U) << "too few rows for two portions";

    const MResources::TextTable texts;
    RecordsetModel model(texts);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    tester.setUseFetchMore(false);  // it would fetch in the middle of a reset
    model.Attach(trends, {{"Name"}, {"VMax", GridKind::Number}});
    ASSERT_TRUE(model.canFetchMore({}));
    model.fetchMore({});
    EXPECT_LT(model.rowCount(), static_cast<int>(count));
    trends.MoveFirst();
    while (model.canFetchMore({})) model.fetchMore({});
    ASSERT_EQ(model.rowCount(), static_cast<int>(count));
    int row = 0;
    for (trends.MoveFirst(); !trends.IsEOF(); trends.MoveNext(), ++row) {
        ASSERT_EQ(model.IdAt(row), ado::ToLong(trends.Get("ID")));
    }
    EXPECT_EQ(model.RowOf(model.IdAt(row - 1)), row - 1);
    EXPECT_EQ(model.RowOf(-1), -1);
    EXPECT_THROW(model.Attach(trends, {{"None"}}), ado::AdoError);
    EXPECT_EQ(model.columnCount(), 0);
    model.Detach();
    environment.CloseConnection();
    EXPECT_EQ(trends.State(), ado::ObjectState::Closed);
}

// What comes behind a damaged row used to be lost, and the good rows of its portion with it.
TEST(RecordsetModelTest, ReadsOnBehindDamagedRows) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.kvs"_s);
    ASSERT_TRUE(QFile::copy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"), path));
    QFile(path).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    // The ends of the table and of the first portion of 200 among them.
    const std::vector<int> damaged = {0, 1, 100, 199, 201, 227};
    for (const int position : damaged) DamageRow(path, ADOArchiv::Command::Trends, position);
    ADOArchiv environment;
    environment.OpenConnection(path);
    const MResources::TextTable texts;
    RecordsetModel model(texts);
    int told = 0;
    QObject::connect(&model, &RecordsetModel::RowsMissing, [&told] { ++told; });
    for (int i = 1; i <= 2; ++i) {  // attaching again begins anew
        model.Attach(environment.PrepareRecordset(ADOArchiv::Command::Trends), {{"Name"}});
        while (model.canFetchMore({})) model.fetchMore({});
        EXPECT_EQ(model.rowCount(), 228 - static_cast<int>(damaged.size()));
        EXPECT_EQ(model.Missing().Count(), static_cast<int>(damaged.size()));
        EXPECT_EQ(told, i);
    }
    std::set<GridRowId> ids;
    for (int row = 0; row < model.rowCount(); ++row) ids.insert(model.IdAt(row));
    EXPECT_EQ(static_cast<int>(ids.size()), model.rowCount()) << "no row stands there twice";
}

TEST(RowWalkTest, GivesUpWhereNoRowCanBeReached) {
    ado::Recordset closed;
    projectdb::RowFailures failures;
    projectdb::RowWalk walk(closed, failures);
    EXPECT_EQ(failures.Count(), 1) << "what cannot be held as one state is not walked";
    EXPECT_FALSE(walk.First());
    EXPECT_FALSE(walk.Next());
    const messages::Message message = guard::ToMessage(failures, u"+<n>"_s, u"Walk"_s);
    EXPECT_TRUE(message.details.startsWith(u"Walk\n3704   "_s));
    EXPECT_TRUE(message.text.endsWith(u"\n+1"_s));
}

// The statement that the recordsets are tested with is the editor's own.
TEST(ADOArchivTest, TrendStatement) {
    EXPECT_EQ(ADOArchiv::DefinitionOf(ADOArchiv::Command::tabTrends).source, kTrendQuery);
}

}  // namespace
