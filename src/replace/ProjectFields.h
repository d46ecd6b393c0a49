#pragma once

#include <cstdint>
#include <QString>
#include <QStringView>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ado/Connection.h"
#include "ado/Recordset.h"

namespace replace {

/// What a field holds, as far as it can be searched; they add up.
enum Kind : unsigned {
    kNames = 1,
    kVariables = 2,
    kTexts = 4,  // in all languages of the project
    kComments = 8,
    kUnits = 16,
    kAllKinds = 31,
};

/// The texts of a project that can be searched, of its archives and their trends, read at one go
/// and kept close together: a project has hundreds of thousands of them. Fields without a text are
/// left out, and so are numbers in fields that take the name of a variable as well.
class ProjectFields {
public:
    struct Column {
        std::string_view table;  // of the schema
        std::string name;
        Kind kind;
        int caption = 0;  // number of the interface's text; 0: a language, which `name` tells
    };
    struct Field {
        std::uint32_t owner;   // whose it is, a number of this class
        std::uint32_t column;  // position among Columns()
        std::int32_t row;      // ID in the column's table
        std::uint32_t at;      // of its text
        std::uint32_t length;
    };

    /// Reads them anew. What cannot be read is counted and left out. Throws ado::AdoError.
    void Read(ado::Connection& connection);

    /// By archive, the archive's own first, then those of its trends.
    [[nodiscard]] std::span<const Field> Fields() const noexcept { return fields_; }
    [[nodiscard]] const Column& ColumnOf(const Field& field) const {
        return columns_[field.column];
    }
    [[nodiscard]] QStringView TextOf(const Field& field) const {
        return {texts_.data() + field.at, static_cast<qsizetype>(field.length)};
    }
    [[nodiscard]] std::int32_t ArchiveOf(const Field& field) const {
        return owners_[field.owner].archive;
    }
    /// 0: it is the archive's own.
    [[nodiscard]] std::int32_t TrendOf(const Field& field) const {
        return owners_[field.owner].trend;
    }
    [[nodiscard]] QStringView ArchiveName(const Field& field) const;
    [[nodiscard]] QStringView TrendName(const Field& field) const;
    [[nodiscard]] std::size_t Unreadable() const noexcept { return unreadable_; }

private:
    struct Text {
        std::uint32_t at = 0;
        std::uint32_t length = 0;
    };
    struct Owner {
        std::int32_t archive = 0;
        std::int32_t trend = 0;
        Text name;
    };
    void ReadOwners(ado::Connection& connection, std::string_view table);
    void ReadTexts(ado::Connection& connection);
    void Add(std::uint32_t owner, std::uint32_t column, std::int32_t row, const ado::Value& value);
    [[nodiscard]] Text Keep(std::u16string_view text);
    [[nodiscard]] QStringView View(const Text& text) const {
        return {texts_.data() + text.at, static_cast<qsizetype>(text.length)};
    }

    std::vector<Column> columns_;
    std::vector<Owner> owners_;
    std::vector<Field> fields_;
    std::u16string texts_;
    std::unordered_map<std::int32_t, std::uint32_t> archives_;    // owners by ID
    std::unordered_map<std::int32_t, std::uint32_t> textOwners_;  // by ID of the index text
    std::size_t unreadable_ = 0;
};

}  // namespace replace
