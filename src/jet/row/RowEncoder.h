#pragma once

#include <optional>
#include <string>
#include <vector>

#include "jet/row/RowView.h"
#include "jet/Status.h"
#include "jet/TableDef.h"
#include "jet/Value.h"

namespace jet {

/// A row as bytes of its columns, between reading it and writing it again (Jet 4). What is not
/// assigned stays byte for byte as it was.
class RowImage {
public:
    /// A row without values: all Null, Booleans false. `def` is borrowed.
    explicit RowImage(const TableDef& def) : def_(&def), values_(def.columns.size()) {}
    /// The row as it is stored.
    [[nodiscard]] static Result<RowImage> Of(const TableDef& def, const RowView& row);

    /// Null when the column is Null. A Boolean that is true has no bytes.
    [[nodiscard]] const std::optional<std::vector<std::byte>>& Bytes(std::size_t column) const {
        return values_[column];
    }
    void Set(std::size_t column, std::optional<std::vector<std::byte>> bytes) {
        values_[column] = std::move(bytes);
    }

    /// The row's bytes in the form of RowView. TooLong when it does not fit a page.
    [[nodiscard]] Result<std::vector<std::byte>> Assemble() const;

    /// Longest row, in bytes. What a page holds is 4080; the rest is the margin that other
    /// programs keep.
    static constexpr std::size_t kMostBytes = 4060;

private:
    const TableDef* def_;
    std::vector<std::optional<std::vector<std::byte>>> values_;
};

/// The stored bytes of a value that is not Null, for any column but Boolean, memo and OLE.
/// BadArgument when the type does not fit, TooLong when the value does not.
[[nodiscard]] Result<std::vector<std::byte>> EncodeValue(const Column& column, const Value& value);

/// Text in the shorter of the two stored forms that the column allows, of any length. One that
/// begins with U+FEFF has the compressed form in any case; BadArgument when that cannot express it.
[[nodiscard]] Result<std::vector<std::byte>> EncodeText(const Column& column,
                                                        std::u16string_view text);

}  // namespace jet
