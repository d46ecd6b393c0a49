#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "project/Rows.h"

namespace project {

/// The copier of archives, trends and what hangs from them: a copy has all that its original has,
/// columns of other tools and long values included, but for keys and name. Where a step fails the
/// steps before it stay: the caller's transaction takes them back.
class CopyRows {
public:
    /// `connection` is borrowed and open.
    explicit CopyRows(ado::Connection& connection) : from_(connection), to_(connection) {}

    /// Where originals are read, and where copies are added: a new row is the current one.
    [[nodiscard]] Rows& From() noexcept { return from_; }
    [[nodiscard]] Rows& To() noexcept { return to_; }

    struct Archive {
        std::int32_t id = 0;
        std::int32_t group = 0;
    };
    /// The current archive of From() with group and text; without its trends. An archive without a
    /// group, or a row without a text, gets one.
    Archive CopyArchive(std::u16string_view name);
    /// The current trend of From() with its text, as one of an archive. `group`: where the text
    /// belongs; the original's when it is empty.
    std::int32_t CopyTrend(std::u16string_view name, std::int32_t archiveId,
                           std::optional<std::int32_t> group);

private:
    std::int32_t CopyText(const ado::Recordset& owner, std::u16string_view name,
                          std::optional<std::int32_t> group, std::int32_t archiveId);
    std::int32_t CopyGroup(std::int32_t archiveId, std::int32_t copyId, std::u16string_view name);

    Rows from_;
    Rows to_;
};

}  // namespace project
