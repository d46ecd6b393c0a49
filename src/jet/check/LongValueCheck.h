#pragma once

#include <bitset>
#include <unordered_map>

#include "jet/check/DefinitionCheck.h"
#include "jet/page/DataPage.h"
#include "jet/row/TextDecoder.h"
#include "jet/Value.h"

namespace jet::check {

/// Checks the memo and OLE values of one table: each lies in rows of its own on pages of its
/// column, and has the length that it states. Borrows its arguments.
class LongValueCheck {
public:
    LongValueCheck(PageCache& cache, Reporter& report, const PageLedger& pages,
                   const CheckedTable& table)
        : cache_(cache), report_(report), pages_(pages), table_(table) {}

    /// Corrupt when the value cannot be read or shares a row with another.
    Status Check(std::size_t column, const LongValue& value);
    /// When all values of the table have been checked: the pages themselves, and rows that no
    /// value uses.
    void CheckPages();

private:
    [[nodiscard]] Result<Bytes> UseRow(OwnerId owner, RowId id);
    Status CheckChain(OwnerId owner, const LongValue& value, TextDecoder& decoder);
    void Decode(TextDecoder& decoder, Bytes piece);
    void CheckPage(const std::string& name, PageNo number);

    PageCache& cache_;
    Reporter& report_;
    const PageLedger& pages_;
    const CheckedTable& table_;
    std::unordered_map<std::uint32_t, std::bitset<256>> used_;  // rows by page
    DataPage page_;                                             // of the row used last
    std::u16string text_;
};

}  // namespace jet::check
