#pragma once

#include <array>
#include <string>
#include <vector>

#include "jet/TableDef.h"
#include "jet/Value.h"

namespace jet {

inline constexpr PageNo kAcesPage{3};

/// Who owns objects and may use them. The identifiers are masked by a function of the file's
/// creation date that is not known: a date and its identifiers belong together.
struct SecurityIds {
    double created = 0;  // days, see Date
    Binary engine, admin, users, creator;
};
/// Those of every new file.
[[nodiscard]] SecurityIds NewFileSecurity();

/// A table that every database has.
struct SystemTable {
    std::string name;
    TableDef def;  // without its maps
};
/// The four of them in the order of their definitions on the pages from kCatalogPage on. The roots
/// of their indexes lie behind the page of their maps, see kSystemMapsPage.
[[nodiscard]] std::vector<SystemTable> SystemTables();
inline constexpr PageNo kSystemMapsPage{6};

}  // namespace jet
