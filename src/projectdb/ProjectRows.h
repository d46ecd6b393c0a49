#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "projectdb/ADOArchiv.h"

namespace projectdb {

/// The recordsets of one operation on the project's tables, opened as they are asked for and
/// closed at the end. They are the operation's own: the filters and current rows of the data
/// environment's recordsets, which the window shows, stay as they are.
class ProjectRows {
public:
    /// `environment` is borrowed; its connection is open.
    explicit ProjectRows(ADOArchiv& environment) : environment_(environment) {}

    /// The recordset of a command that is a table.
    ado::Recordset& operator[](ADOArchiv::Command command);
    ado::Recordset& Archives() { return (*this)[ADOArchiv::Command::Archives]; }
    ado::Recordset& Trends() { return (*this)[ADOArchiv::Command::Trends]; }
    ado::Recordset& Texts() { return (*this)[ADOArchiv::Command::IdxTexts]; }
    ado::Recordset& Groups() { return (*this)[ADOArchiv::Command::idxTextGrp]; }

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

    /// ID of the group above all archives' groups; 0 when there is none.
    [[nodiscard]] std::int32_t RootGroup();
    /// Adds the group of an archive below the root and returns its ID.
    std::int32_t AddGroup(std::int32_t archiveId, const QString& name);

private:
    ADOArchiv& environment_;
    std::array<ado::Recordset, ADOArchiv::kCommandCount> recordsets_;
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
/// The current row's name; empty when it is Null.
[[nodiscard]] QString NameOf(const ado::Recordset& rows);
[[nodiscard]] bool HasField(const ado::Recordset& rows, std::string_view field);

}  // namespace projectdb
