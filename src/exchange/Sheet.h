#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "project/Schema.h"
#include "words/Words.h"

/// A project's archives and trends as sheets of a spreadsheet: a row for each of them, a column for
/// each setting, and back.
namespace exchange {

enum class SheetKind : std::uint8_t { Archives, Trends };

/// One column of a sheet, and where its values are stored.
struct SheetColumn {
    enum class Role : std::uint8_t {
        Id,       // the key of the row
        Archive,  // of a trend, by its name
        Setting,  // a field of the row
        Bits,     // some bits of a number in a field of the row
        Text,     // the index text in a language
    };
    Role role = Role::Setting;
    std::string_view table;                    // where its values are stored
    ado::Field field;                          // of that table in this project
    int caption = 0;                           // number of the heading's text; 0: the field's name
    const project::Column* meaning = nullptr;  // null: of the ID and of texts
    std::span<const project::Code> codes{};    // numbers that stand there as words
    std::int32_t mask = 0;                     // of Bits: which

    [[nodiscard]] bool IsText() const { return project::IsText(field.type); }
};

/// The columns that one kind of rows has in a project: the ID, the archive of a trend, the name,
/// the texts in all languages, the settings.
class Sheet {
public:
    /// `connection` is borrowed for the call.
    Sheet(ado::Connection& connection, SheetKind kind);

    [[nodiscard]] SheetKind Kind() const noexcept { return kind_; }
    [[nodiscard]] std::span<const SheetColumn> Columns() const noexcept { return columns_; }
    [[nodiscard]] std::u16string Heading(std::size_t column, const words::Language& language) const;
    /// The column that a heading in any language names, or the field's own name; in any case of
    /// ASCII letters.
    [[nodiscard]] std::optional<std::size_t> FindHeading(std::u16string_view heading) const;
    [[nodiscard]] std::optional<std::size_t> FindRole(SheetColumn::Role role) const;
    [[nodiscard]] std::optional<std::size_t> FindField(std::string_view name) const;

private:
    void AddOwn(const ado::Recordset& rows, const project::Column& column);
    void AddTypeBits(const ado::Field& field, const project::Column& column);

    SheetKind kind_;
    std::vector<SheetColumn> columns_;
};

/// What a sheet is called.
[[nodiscard]] std::u16string NameOf(SheetKind kind, const words::Language& language);
/// The table of a sheet's rows.
[[nodiscard]] std::string_view TableOf(SheetKind kind);
/// A text to be compared in any case of ASCII letters, without the blanks at its ends.
[[nodiscard]] std::u16string Folded(std::u16string_view text);

}  // namespace exchange
