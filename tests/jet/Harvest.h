#pragma once

#include <vector>

#include "jet/Database.h"

namespace jet {

/// What one pass over the whole file gives: the rows that could be read and the messages.
struct Harvest {
    std::size_t rows = 0;
    std::vector<Status> damage;
};

inline Harvest ReadEverything(Database& database) {
    Harvest harvest;
    const auto note = [&](const Status& status) { harvest.damage.push_back(status); };
    auto tables = database.Tables(&harvest.damage);
    if (!tables.IsOk()) {
        note(tables.GetStatus());
        return harvest;
    }
    for (const CatalogEntry& entry : *tables) {
        auto table = database.OpenTable(entry);
        if (!table.IsOk()) {
            note(table.GetStatus());
            continue;
        }
        auto cursor = (*table)->Scan();
        if (!cursor.IsOk()) {
            note(cursor.GetStatus());
            continue;
        }
        for (;;) {
            auto found = cursor->Next();
            if (!found.IsOk()) {
                note(found.GetStatus());
                continue;
            }
            if (!*found) break;
            ++harvest.rows;
            for (std::size_t i = 0; i < (*table)->Definition().columns.size(); ++i) {
                auto value = cursor->Current().Get(i);
                if (!value.IsOk()) note(value.GetStatus());
                const auto* longValue = value.IsOk() ? std::get_if<LongValue>(&*value) : nullptr;
                if (longValue == nullptr) continue;
                LongValueReader reader = (*table)->OpenLongValue(*longValue);
                for (;;) {
                    auto piece = reader.Next();
                    if (!piece.IsOk()) note(piece.GetStatus());
                    if (!piece.IsOk() || piece->empty()) break;
                }
            }
        }
        for (std::size_t i = 0; i < (*table)->Definition().realIndexes.size(); ++i) {
            if (!(*table)->CanSeek(i)) continue;
            auto entries = (*table)->Seek(i, "");
            if (!entries.IsOk()) {
                note(entries.GetStatus());
                continue;
            }
            for (;;) {
                auto found = entries->Next();
                if (!found.IsOk()) note(found.GetStatus());
                if (!found.IsOk() || !*found) break;
            }
        }
    }
    return harvest;
}

}  // namespace jet
