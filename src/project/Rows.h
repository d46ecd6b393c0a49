#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "project/Schema.h"

namespace project {

/// Values for a row by column.
using Values = std::vector<std::pair<std::string, ado::Value>>;

/// What is known of a trend that is to be made.
struct NewTrend {
    std::u16string name;      // empty: the name of a new trend, see NewTrendName
    std::int32_t colour = 0;  // of the curve, unless `values` has one; see CurveColours
    Values values;            // by column of the table of trends
    Values texts;             // by column of the index texts
    /// Whether a trend of the archive has the name. For trends without a name.
    std::function<bool(const std::u16string& name)> isInUse;
    /// Hears of each column before its value is assigned, and of "" when all are; may be empty.
    std::function<void(const std::string& column)> assigning;
};

/// The recordsets of one operation on the project's tables, opened as they are asked for and
/// closed at the end, and the maker of new rows. They are the operation's own: filters and current
/// rows of other recordsets stay as they are. Every failure is an ado::AdoError.
class Rows {
public:
    /// `connection` is borrowed and open.
    explicit Rows(ado::Connection& connection) : connection_(connection) {}

    ado::Recordset& Archives() { return Opened(archives_, kArchiveTable); }
    ado::Recordset& Trends() { return Opened(trends_, kTrendTable); }
    ado::Recordset& Texts() { return Opened(texts_, kTextTable); }
    ado::Recordset& Groups() { return Opened(groups_, kGroupTable); }

    // The following move to a row by an index where there is one, never by walking the table.

    /// To the row with this ID; false when there is none.
    [[nodiscard]] bool SeekArchive(std::int32_t id);
    [[nodiscard]] bool SeekTrend(std::int32_t id);
    [[nodiscard]] bool SeekText(std::int32_t id);
    /// To the text that the field TextID of an archive's or a trend's current row names; false
    /// when it names none.
    [[nodiscard]] bool SeekTextOf(const ado::Recordset& owner);
    /// To the group of an archive; false when the archive has none or several.
    [[nodiscard]] bool SeekGroup(std::int32_t archiveId);
    /// To the first trend of an archive, with the others behind it; false when it has none.
    [[nodiscard]] bool SeekTrendsOf(std::int32_t archiveId);

    /// ID of the group above all archives' groups; 0 when there is none. A group on top that is an
    /// archive's own is not the root: it goes with its archive.
    [[nodiscard]] std::int32_t RootGroup();
    /// The group in which texts of an archive's trends belong: its own, else the root.
    [[nodiscard]] std::int32_t GroupOfTrends(std::int32_t archiveId);

    // The makers leave the new row the current one of its recordset and return its ID. A row gets
    // the defaults of its columns. When a step fails the steps before it stay; nothing is left in
    // the middle of being edited.

    /// An archive under this name, with a file name after it; without text and group.
    std::int32_t AddArchive(std::u16string_view name);
    /// The group of an archive below the root; 0: the root itself, where there is none.
    std::int32_t AddGroup(std::int32_t archiveId, std::u16string_view name);
    /// The text of the current archive, which is told of it; in the column of a language ("L1031")
    /// where the table has it.
    std::int32_t AddArchiveText(std::int32_t group, std::u16string_view archiveName,
                                std::string_view languageColumn);
    /// A trend of an archive with what `trend` says.
    std::int32_t AddTrend(std::int32_t archiveId, const NewTrend& trend);
    /// The text of the current trend, which is told of it.
    std::int32_t AddTrendText(std::int32_t group, const NewTrend& trend);

    /// A language of the project's texts, a Windows locale id. Its column is not made.
    void AddLanguage(std::uint32_t lcid);

    /// Group and text of the current archive get its name.
    void NameGroupAndText(std::int32_t archiveId);
    /// How long a name may be that its table and the name made of it for the text can hold, in
    /// UTF-16 units.
    [[nodiscard]] int LongestArchiveName();
    [[nodiscard]] int LongestTrendName();

    // The removers take the text of a row along unless another row names it as well, and leave
    // no current row. False: the row is not there (any more).

    /// To be called before the first of them, and before rows are shown to go: throws when rows of
    /// one of the tables can be changed in no way.
    void BeginRemoving();
    /// An archive with its group and text; its trends stay. Of several groups nobody can tell which
    /// one is the archive's: they stay, too.
    [[nodiscard]] bool RemoveArchive(std::int32_t id);
    [[nodiscard]] bool RemoveTrend(std::int32_t id);

private:
    void RemoveTextOf(const ado::Recordset& owner);
    ado::Recordset& Opened(ado::Recordset& rows, std::string_view table);
    [[nodiscard]] bool IsArchive(std::int32_t id);

    ado::Connection& connection_;
    ado::Recordset archives_;
    ado::Recordset trends_;
    ado::Recordset texts_;
    ado::Recordset groups_;
    std::unordered_map<std::int32_t, int> sharedTexts_;  // how many rows name it, by ID
};

/// Drops what is still being edited in a recordset when the scope is left, so that a failure leaves
/// no half-written row behind.
class EditScope {
public:
    /// `rows` is borrowed.
    explicit EditScope(ado::Recordset& rows) : rows_(rows) {}
    ~EditScope() {
        if (rows_.State() == ado::ObjectState::Open) rows_.CancelUpdate();
    }
    EditScope(const EditScope&) = delete;
    EditScope& operator=(const EditScope&) = delete;

private:
    ado::Recordset& rows_;
};

/// The number in a field of the current row; empty when it is Null.
[[nodiscard]] std::optional<std::int32_t> NumberOf(const ado::Recordset& rows,
                                                   std::string_view field);
/// The name of the current row.
[[nodiscard]] std::u16string NameOf(const ado::Recordset& rows);
/// The trend of the current row, one of the query that joins trends with their texts, gets another
/// name: where the name of its text is made of the old one, it follows. Assigned, not stored.
void RenameTrendText(ado::Recordset& trend, std::u16string_view oldName,
                     std::u16string_view newName);
/// Whether the recordset has a field of this very name.
[[nodiscard]] bool HasField(const ado::Recordset& rows, std::string_view field);

}  // namespace project
