#include "jet/catalog/CatalogWriter.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>

#include "jet/catalog/SystemTables.h"
#include "jet/open/TableRep.h"
#include "jet/Unicode.h"
#include "jet/write/RowChanger.h"

namespace jet {
namespace {

constexpr std::uint32_t kAllRights = 0x000FFEFF;  // what a user gets on a new table

Date Now() {
    constexpr double kEpoch = 25569;  // 1970-01-01
    const std::time_t seconds = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    const std::chrono::sys_days day =
        std::chrono::year(local.tm_year + 1900) / (local.tm_mon + 1) / local.tm_mday;
    const auto days = static_cast<double>(day.time_since_epoch().count());
    const int second = (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec;
    return {kEpoch + days + second / 86'400.0};
}

/// Calls `use` for each row that can be read, with the values of the named columns.
template <std::size_t kCount, typename Use>
Status ForEach(Table& table, const std::array<const char*, kCount>& names, Use use) {
    std::array<std::size_t, kCount> columns{};
    for (std::size_t i = 0; i < kCount; ++i) {
        const auto column = table.Definition().FindColumn(names[i]);
        if (!column) {
            return Status::Corrupt(TableText(table.Name()) + " has no column \"" + names[i] + "\"");
        }
        columns[i] = *column;
    }
    RowCursor cursor;
    JET_ASSIGN(cursor, table.Scan());
    for (;;) {
        bool found = false;
        JET_ASSIGN(found, cursor.Next());
        if (!found) return {};
        std::array<Value, kCount> values;
        for (std::size_t i = 0; i < kCount; ++i) {
            JET_TRY(cursor.Current().Read(columns[i], values[i]));
        }
        use(values);
    }
}

Binary BytesOf(const Value& value) {
    const auto* bytes = std::get_if<Binary>(&value);
    return bytes != nullptr ? *bytes : Binary();
}

/// The creator of an object, which stands for whoever makes it and gets no rights by name. Its
/// identifier differs from the engine's alike in every file.
Binary CreatorOf(Binary engine) {
    if (engine.size() == 2) engine[1] ^= std::byte{7};
    return engine;
}

}  // namespace

Result<CatalogWriter> CatalogWriter::Open(const FileContext& file) {
    CatalogWriter writer;
    writer.now_ = Now();
    JET_ASSIGN(writer.objects_, OpenTableAt(file, kCatalogPage, "MSysObjects"));
    JET_ASSIGN(writer.aces_, OpenTableAt(file, kAcesPage, "MSysACEs"));
    return writer;
}

Status CatalogWriter::Insert(Table& table, std::initializer_list<Named> values) {
    std::vector<Assignment> assignments;
    for (const auto& [name, value] : values) {
        const auto column = table.Definition().FindColumn(name);
        if (!column) {
            return Status::Corrupt(TableText(table.Name()) + " has no column \"" + name + "\"");
        }
        assignments.push_back({*column, value});
    }
    return RowChanger(table, RowChanger::For::TheSystem).Insert(assignments).GetStatusOrOk();
}

Status CatalogWriter::Add(const Object& object) {
    return Insert(*objects_, {{"Id", object.id},
                              {"ParentId", object.parent},
                              {"Name", ToUtf16(object.name)},
                              {"Type", static_cast<std::int32_t>(object.type)},
                              {"DateCreate", now_},
                              {"DateUpdate", now_},
                              {"Owner", object.owner},
                              {"Flags", static_cast<std::int32_t>(object.flags)}});
}

Status CatalogWriter::Add(const Ace& ace) {
    return Insert(*aces_, {{"ObjectId", ace.object},
                           {"SID", ace.user},
                           {"ACM", static_cast<std::int32_t>(ace.rights)},
                           {"FInheritable", ace.isInheritable}});
}

Status CatalogWriter::AddTable(PageNo page, std::string_view name) {
    Binary engine;
    Binary admin;
    const auto takeOwner = [&](const std::array<Value, 2>& row) {
        if (row[0] == Value(kTables)) engine = BytesOf(row[1]);
        if (row[0] == Value(kThisDatabase)) admin = BytesOf(row[1]);
    };
    JET_TRY(ForEach(*objects_, std::array{"Id", "Owner"}, takeOwner));
    std::vector<Binary> users;
    const auto takeUser = [&](const std::array<Value, 2>& row) {
        const Binary user = BytesOf(row[1]);
        if (row[0] != Value(kTables) || user.empty() || user == CreatorOf(engine)) return;
        if (std::find(users.begin(), users.end(), user) == users.end()) users.push_back(user);
    };
    JET_TRY(ForEach(*aces_, std::array{"ObjectId", "SID"}, takeUser));
    const auto id = static_cast<std::int32_t>(Raw(page));
    JET_TRY(Add(Object{.id = id, .name = name, .owner = admin}));
    for (const Binary& user : users) JET_TRY(Add(Ace{id, user, kAllRights}));
    return {};
}

Result<bool> CatalogWriter::HasTable(std::string_view name) {
    bool has = false;
    const auto compare = [&](const std::array<Value, 2>& row) {
        const auto* found = std::get_if<std::u16string>(&row[1]);
        has =
            has || (row[0] == Value(kTables) && found != nullptr && SameName(ToUtf8(*found), name));
    };
    JET_TRY(ForEach(*objects_, std::array{"ParentId", "Name"}, compare));
    return has;
}

}  // namespace jet
