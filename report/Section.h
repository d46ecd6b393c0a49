#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <QString>
#include <string_view>

namespace report {

/// A piece of the report that is shown, printed or searched at a time.
struct Section {
    enum class Kind { Overview, Archive, WithoutArchive, Problems, Findings, Differences };
    Kind kind = Kind::Overview;
    std::size_t archive = 0;  // Kind::Archive: position among the archives
    std::size_t first = 0;    // of the rows, or the archives of the contents, that it shows

    [[nodiscard]] bool operator==(const Section&) const = default;
    /// As the address of a link, and back; the overview for an address that is none.
    [[nodiscard]] QString Address() const;
    /// Likewise inside a file.
    [[nodiscard]] QString Anchor() const;
    [[nodiscard]] static Section FromAddress(const QString& address);
};

/// A row of the project that the editor can show, as the address of a link, and back; nothing for
/// another one.
struct RowPlace {
    QString table;
    std::int32_t id = 0;
    QString column;  // empty: the row as a whole
};
[[nodiscard]] QString RowAddress(std::string_view table, std::int32_t id,
                                 std::string_view column = {});
[[nodiscard]] std::optional<RowPlace> RowPlaceOf(const QString& address);

}  // namespace report
