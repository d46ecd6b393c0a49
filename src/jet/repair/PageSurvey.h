#pragma once

#include <map>
#include <optional>
#include <set>
#include <vector>

#include "jet/page/PageCache.h"
#include "jet/repair/MendedFile.h"
#include "jet/Status.h"

namespace jet::repair {

/// Finds out by the pages themselves to which table each belongs, and makes maps that say so.
/// Borrows the file.
///
/// A page of rows names its table. That is believed unless the page is free and no map of the table
/// has it: then it has been left as it was by a program that gave it back. A page that only the map
/// of a table names, and whose head is damaged, is taken for one when the rest of it holds rows.
class PageSurvey {
public:
    PageSurvey(const File& file, std::uint32_t pageCount);

    /// Reads every page once.
    Status Run();
    /// What is known of the pages of a table.
    struct Pages {
        std::set<std::uint32_t> found;
        std::vector<std::uint32_t> unreadable;  // only its map says that they are the table's
        bool isMapSound = true;                 // false: more may be missing
    };
    /// Makes the map of a table's pages anew, as far as its definition begins on `table` and has
    /// not been mended before; empty when not.
    std::optional<Pages> MendTable(PageNo table);
    /// The file with what has been mended so far.
    [[nodiscard]] std::unique_ptr<File> Mended() const;

private:
    using Image = MendedFile::Image;

    [[nodiscard]] Status ReadPage(PageNo page, Image& image) const;
    /// Pages of the map behind a row pointer, as far as it can be read; false when it cannot.
    [[nodiscard]] bool PagesOfMap(std::uint32_t pointer, std::set<std::uint32_t>& pages) const;
    [[nodiscard]] Pages PagesOf(PageNo table, Bytes definition);
    [[nodiscard]] bool MendHead(std::uint32_t page, PageNo table);
    [[nodiscard]] std::uint32_t AddMap(const std::set<std::uint32_t>& pages);

    const File& file_;
    std::uint32_t pageCount_;
    std::map<std::uint32_t, std::vector<std::uint32_t>> pagesByOwner_;
    std::set<std::uint32_t> rowPages_;  // all of these pages
    std::set<std::uint32_t> free_;
    MendedFile::Images images_;  // what is mended, and maps behind the end
    std::uint32_t nextPage_;
    std::set<std::uint32_t> mended_;  // tables
};

}  // namespace jet::repair
