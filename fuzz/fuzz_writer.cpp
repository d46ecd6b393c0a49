// Writes into a file with any content: rows are inserted, changed and deleted in its tables. Each
// change is refused or right; a file in which a check finds nothing wrong is still such a file
// afterwards, and one with faults has no more of them.

#include <cstdio>
#include <cstdlib>
#include <random>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "jet/Check.h"
#include "jet/Database.h"
#include "jet/TableWriter.h"
#include "jet/TestDisk.h"

namespace {

constexpr const char* kFile = "fuzzed.mdb";
constexpr std::size_t kCache = 16 * jet::kPageSizeJet4;
constexpr std::size_t kMostTables = 6;
constexpr int kChanges = 12;  // a table

std::vector<std::string> ErrorsIn(jet::TestDisk& disk) {
    std::vector<std::string> errors;
    const auto file = disk.Open(kFile, jet::OpenMode::Read);
    jet::CheckOptions options;
    options.cacheBytes = kCache;
    const auto note = [&](const jet::Finding& finding) {
        if (finding.severity == jet::Finding::Severity::Error) errors.push_back(finding.text);
        return true;
    };
    std::ignore = jet::Check(**file, note, options);
    return errors;
}

class Changes {
public:
    Changes(jet::Table& table, std::mt19937& random) : table_(table), random_(random) {}

    void Make() {
        jet::TableWriter writer(table_);
        for (int i = 0; i < kChanges; ++i) {
            const std::vector<jet::RowId> rows = SomeRows();
            const std::size_t kind = rows.empty() ? 0 : random_() % 3;
            if (kind == 0) std::ignore = writer.Insert(Values());
            if (kind == 1) std::ignore = writer.Update(rows[random_() % rows.size()], Values());
            if (kind == 2) std::ignore = writer.Delete(rows[random_() % rows.size()]);
        }
    }

private:
    std::vector<jet::RowId> SomeRows() {
        constexpr std::size_t kMost = 40;
        std::vector<jet::RowId> rows;
        auto cursor = table_.Scan();
        for (int tries = 0; cursor.IsOk() && rows.size() < kMost && tries < 200; ++tries) {
            const auto found = cursor->Next();
            if (found.IsOk() && !*found) break;
            if (found.IsOk()) rows.push_back(cursor->Current().Id());
        }
        return rows;
    }

    std::vector<jet::Assignment> Values() {
        std::vector<jet::Assignment> values;
        for (std::size_t i = 0; i < table_.Definition().columns.size(); ++i) {
            const jet::Column& column = table_.Definition().columns[i];
            if (!column.IsAutoNumber() && random_() % 2 == 0) values.push_back({i, For(column)});
        }
        return values;
    }

    jet::Value For(const jet::Column& column) {
        constexpr std::size_t kSizes[] = {0, 3, 60, 70, 250, 5000};
        const std::size_t size = kSizes[random_() % 6];
        const auto number = static_cast<std::int32_t>(random_() % 200);
        switch (column.type) {
            case jet::ColumnType::Boolean:
                return random_() % 2 == 0;
            case jet::ColumnType::Byte:
            case jet::ColumnType::Integer:
            case jet::ColumnType::Long:
                return number;
            case jet::ColumnType::Single:
                return static_cast<float>(number);
            case jet::ColumnType::Double:
                return static_cast<double>(number);
            case jet::ColumnType::DateTime:
                return jet::Date{static_cast<double>(number)};
            case jet::ColumnType::Text:
            case jet::ColumnType::Memo:
                return std::u16string(size, static_cast<char16_t>(u'a' + number % 26));
            case jet::ColumnType::Binary:
            case jet::ColumnType::Ole:
                return jet::Binary(size, static_cast<std::byte>(number));
            default:
                return jet::Null{};
        }
    }

    jet::Table& table_;
    std::mt19937& random_;
};

void Change(jet::TestDisk& disk, std::size_t start) {
    const auto database = jet::Database::Open(disk, kFile, jet::OpenMode::ReadWrite, kCache);
    if (!database.IsOk() || (*database)->FileFormat() != jet::Format::Jet4) return;
    if (!(*database)->Begin().IsOk()) return;
    std::mt19937 random(static_cast<unsigned>(start));
    auto tables = (*database)->Tables();
    if (!tables.IsOk()) return;
    std::erase_if(*tables, [](const jet::CatalogEntry& entry) { return !entry.isUserTable; });
    for (std::size_t i = 0; i < std::min(tables->size(), kMostTables); ++i) {
        const auto table = (*database)->OpenTable((*tables)[random() % tables->size()]);
        if (table.IsOk()) Changes(**table, random).Make();
    }
    std::ignore = (*database)->Commit();
}

}  // namespace

// The fuzzer's own name for its entry point.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    jet::TestDisk disk;
    disk.Put(kFile, {bytes.begin(), bytes.end()});
    const std::vector<std::string> before = ErrorsIn(disk);
    Change(disk, size);
    const std::vector<std::string> after = ErrorsIn(disk);
    if (after.size() <= before.size()) return 0;
    std::fprintf(stderr, "%zu errors before, %zu after:\n", before.size(), after.size());
    for (const std::string& error : before) std::fprintf(stderr, "- %s\n", error.c_str());
    for (const std::string& error : after) std::fprintf(stderr, "+ %s\n", error.c_str());
    std::abort();
}
