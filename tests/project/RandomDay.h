#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "project/CellChanges.h"
#include "project/Changes.h"
#include "project/CopyRows.h"
#include "project/Names.h"
#include "project/Rows.h"
#include "project/TakeBack.h"
#include "project/Transaction.h"

/// Goes through numbers of days from 1 on: so many, and on for as long as KV_TEST_SECONDS says.
class DayNumbers {
public:
    explicit DayNumbers(unsigned least) : least_(least) {}
    bool Next() {
        ++number_;
        return number_ <= least_ || std::chrono::steady_clock::now() < end_;
    }
    [[nodiscard]] unsigned Number() const { return number_; }

private:
    static std::chrono::seconds Time() {
        const char* seconds = std::getenv("KV_TEST_SECONDS");
        return std::chrono::seconds(seconds != nullptr ? std::atoi(seconds) : 0);
    }

    unsigned least_;
    unsigned number_ = 0;
    std::chrono::steady_clock::time_point end_ = std::chrono::steady_clock::now() + Time();
};

/// What people do to a project in a day, by chance.
class RandomDay {
public:
    RandomDay(ado::Connection& connection, unsigned number, std::string person)
        : connection_(connection), random_(number), person_(std::move(person)) {}

    /// Each a step of its own, as the editor makes them; now and then the last one is taken back.
    /// What has come of it.
    project::ChangeSet WorkBySteps(int steps) {
        project::ChangeRecorder recorder(connection_);
        project::ChangeSet day;
        project::ChangeSet last;
        for (int i = 0; i < steps; ++i) {
            const bool goesBack = !last.IsEmpty() && random_() % 5 == 0;
            if (goesBack) {
                EXPECT_TRUE(project::TakeBack(connection_, last, {}).open.empty());
            } else {
                project::Transaction transaction(connection_);
                Step();
                transaction.Commit();
            }
            const project::ChangeSet step = recorder.Take();
            day.Add({step.Rows().begin(), step.Rows().end()});
            last = goesBack ? project::ChangeSet() : step;
        }
        return day;
    }
    void Work(int steps) {
        project::Transaction transaction(connection_);
        for (int i = 0; i < steps; ++i) Step();
        transaction.Commit();
    }

    void AddArchive() {
        project::Rows rows(connection_);
        const std::u16string name = NewName(u"Archiv");
        const std::int32_t id = rows.AddArchive(name);
        rows.AddArchiveText(rows.AddGroup(id, name), name, "L1031");
    }
    void AddTrend() {
        const std::int32_t archive = Any(project::kArchiveTable);
        if (archive == 0) return;
        project::Rows rows(connection_);
        project::NewTrend trend;
        trend.name = NewName(u"Messwert");
        trend.texts = {{"L1031", trend.name}};
        rows.AddTrend(archive, trend);
        rows.AddTrendText(rows.GroupOfTrends(archive), trend);
    }
    void RemoveArchive() {
        const std::int32_t archive = Any(project::kArchiveTable);
        project::Rows rows(connection_);
        rows.BeginRemoving();
        std::vector<std::int32_t> trends;
        std::ignore = rows.SeekTrendsOf(archive);
        for (; !rows.Trends().IsEOF(); rows.Trends().MoveNext()) {
            trends.push_back(ado::ToLong(rows.Trends().Get("ID")));
        }
        for (const std::int32_t trend : trends) std::ignore = rows.RemoveTrend(trend);
        std::ignore = rows.RemoveArchive(archive);
    }
    void RemoveTrend() {
        project::Rows rows(connection_);
        rows.BeginRemoving();
        std::ignore = rows.RemoveTrend(Any(project::kTrendTable));
    }
    /// Gives a field of a row a value that no other step gives.
    void Edit(std::string_view table, const std::string& column) {
        ado::Recordset rows;
        rows.Open(table, connection_, ado::CommandType::Table);
        rows.SetFilter("ID = " + std::to_string(Any(table)));
        if (rows.IsEOF()) return;
        const bool isText = project::IsText(rows.Fields()[rows.FieldIndex(column)].type);
        rows.Set(column, isText ? ado::Value(NewName(u""))
                                : ado::Value(static_cast<std::int32_t>(random_() % 30000)));
        rows.Update();
    }
    /// Fields of several trends at once; names among them, of which some go round.
    void WriteCells() {
        const bool areNames = random_() % 2 == 0;
        const std::int32_t archive = Any(project::kArchiveTable);
        ado::Recordset rows;
        rows.Open(project::kTrendTable, connection_, ado::CommandType::Table);
        rows.SetFilter("ArchiveID = " + std::to_string(archive));
        std::vector<project::CellChange> changes;
        for (; !rows.IsEOF() && changes.size() < 6; rows.MoveNext()) {
            project::CellChange change;
            change.table = project::kTrendTable;
            change.id = ado::ToLong(rows.Get("ID"));
            change.column = areNames ? "Name" : "Unit";
            change.was = rows.Get(change.column);
            change.is = NewName(u"");
            changes.push_back(change);
        }
        if (areNames && changes.size() > 1) {
            changes.front().is = changes.back().was;
            changes.back().is = changes.front().was;
        }
        const project::WrittenCells written = project::WriteCells(connection_, changes);
        EXPECT_TRUE(written.isDone);
    }
    void CopyTrend() {
        project::CopyRows copies(connection_);
        if (!copies.From().SeekTrend(Any(project::kTrendTable))) return;
        copies.CopyTrend(NewName(u"Kopie"), Any(project::kArchiveTable), std::nullopt);
    }
    void MoveTrend() {
        ado::Recordset rows;
        rows.Open(project::kTrendTable, connection_, ado::CommandType::Table);
        rows.SetFilter("ID = " + std::to_string(Any(project::kTrendTable)));
        if (rows.IsEOF()) return;
        rows.Set("ArchiveID", Any(project::kArchiveTable));
        rows.Update();
    }

private:
    void Step() {
        switch (random_() % 14) {
            case 0:
                AddArchive();
                break;
            case 1:
            case 2:
                AddTrend();
                break;
            case 3:
                RemoveTrend();
                break;
            case 4:
                if (random_() % 8 == 0) RemoveArchive();
                break;
            case 5:
                Edit(project::kArchiveTable, "Name");
                break;
            case 6:
                Edit(project::kArchiveTable, "ScanTime");
                break;
            case 7:
                Edit(project::kTrendTable, "VMaxSamples");
                break;
            case 8:
                Edit(project::kTrendTable, "Comment");
                break;
            case 9:
                Edit(project::kTextTable, "L1031");
                break;
            case 10:
                Edit(project::kVariableTable, "Comment");
                break;
            case 11:
                WriteCells();
                break;
            case 12:
                CopyTrend();
                break;
            default:
                MoveTrend();
        }
    }
    std::u16string NewName(const std::u16string& kind) {
        const std::string text = " " + person_ + " " + std::to_string(++count_);
        return kind + std::u16string(text.begin(), text.end());
    }
    /// ID of some row; 0 when there is none.
    std::int32_t Any(std::string_view table) {
        ado::Recordset rows;
        rows.Open(table, connection_, ado::CommandType::Table);
        std::vector<std::int32_t> ids = rows.NumbersOf(rows.FieldIndex("ID"));
        std::ranges::sort(ids);
        return ids.empty() ? 0 : ids[random_() % ids.size()];
    }

    ado::Connection& connection_;
    std::mt19937 random_;
    std::string person_;
    int count_ = 0;
};
