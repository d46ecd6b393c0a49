#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "project/CopyRows.h"
#include "project/Names.h"
#include "project/Rows.h"
#include "project/Transaction.h"

/// What people do to a project in a day, by chance.
class RandomDay {
public:
    RandomDay(ado::Connection& connection, unsigned number, std::string person)
        : connection_(connection), random_(number), person_(std::move(person)) {}

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
        switch (random_() % 12) {
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
