#include "jet/TableDef.h"

#include <algorithm>

#include "jet/TextKey.h"
#include "jet/Unicode.h"

namespace jet {
namespace {

/// True for visible ASCII that does not end in a blank: then two names have equal keys exactly
/// when they differ at most in case.
bool IsPlain(std::string_view name) {
    const auto isPlain = [](char c) { return c >= ' ' && c <= '~'; };
    return std::all_of(name.begin(), name.end(), isPlain) && (name.empty() || name.back() != ' ');
}

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool BeginsWithLetter(std::string_view name) {
    return !name.empty() && Lower(name[0]) >= 'a' && Lower(name[0]) <= 'z';
}

}  // namespace

bool SameName(std::string_view a, std::string_view b) {
    if (a == b) return true;
    // Most names differ in their first letters, whose weights come first in a key.
    if (BeginsWithLetter(a) && BeginsWithLetter(b) && Lower(a[0]) != Lower(b[0])) return false;
    if (IsPlain(a) && IsPlain(b)) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [](char x, char y) { return Lower(x) == Lower(y); });
    }
    // The catalog's own order decides, as the unique index on the names does.
    std::string keyA;
    std::string keyB;
    AppendTextKey(ToUtf16(a), true, keyA);
    AppendTextKey(ToUtf16(b), true, keyB);
    return keyA == keyB;
}

bool SameStructure(const TableDef& a, const TableDef& b) {
    const auto sameIndex = [](const RealIndex& x, const RealIndex& y) {
        return x.columns == y.columns && x.root == y.root && x.flags == y.flags;
    };
    return a.columns == b.columns && a.highestColumnCount == b.highestColumnCount &&
           a.variableColumnCount == b.variableColumnCount &&
           std::equal(a.realIndexes.begin(), a.realIndexes.end(), b.realIndexes.begin(),
                      b.realIndexes.end(), sameIndex);
}

std::optional<std::size_t> TableDef::FindColumn(std::string_view name) const {
    // Mostly it is written as it is called.
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].name == name) return i;
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (SameName(columns[i].name, name)) return i;
    }
    return std::nullopt;
}

std::optional<std::size_t> TableDef::PrimaryKey() const {
    for (const LogicalIndex& index : logicalIndexes) {
        if (index.role == LogicalIndex::Role::PrimaryKey) return index.real;
    }
    return std::nullopt;
}

}  // namespace jet
