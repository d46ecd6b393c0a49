#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "ado/Recordset.h"
#include "exchange/Sheet.h"

namespace exchange {

/// The archives of a project by ID and by name.
class ArchiveNames {
public:
    explicit ArchiveNames(ado::Connection& connection);

    /// Lets archives be known by names that they had before, too, where no other has them now.
    void AddFormer(const ArchiveNames& former);

    /// Null for no archive's ID.
    [[nodiscard]] const std::u16string* Find(std::int32_t id) const;
    /// Those that have this very name, else those that had it.
    [[nodiscard]] const std::vector<std::int32_t>& Named(const std::u16string& name) const;
    /// Whether it is the archive's name, or was.
    [[nodiscard]] bool IsNameOf(std::int32_t id, std::u16string_view name) const;

private:
    std::unordered_map<std::int32_t, std::u16string> names_;
    std::unordered_map<std::int32_t, std::u16string> former_;
    std::unordered_map<std::u16string, std::vector<std::int32_t>> ids_;
    std::vector<std::int32_t> none_;
};

/// The rows of a sheet as they are stored, one after the other.
class SheetRows {
public:
    enum class Order : std::uint8_t { Key, Archive };

    /// `connection` and `sheet` are borrowed. The texts are read at once.
    SheetRows(ado::Connection& connection, const Sheet& sheet, const ArchiveNames& archives,
              Order order = Order::Key);

    /// False behind the last row.
    [[nodiscard]] bool Next();
    /// To the first row again: the next one is it.
    void Restart();

    [[nodiscard]] std::int32_t Id() const;
    /// Of a trend; nothing where it names none that is there. Of an archive its own ID.
    [[nodiscard]] std::optional<std::int32_t> Archive() const;
    [[nodiscard]] std::u16string Name() const;
    /// What stands in a column of the sheet; of Archive the name, Null where there is none.
    [[nodiscard]] ado::Value Get(std::size_t column) const;
    /// What stands in a field of the row's table.
    [[nodiscard]] ado::Value Field(std::string_view name) const { return rows_.Get(name); }

private:
    void ReadTexts(ado::Connection& connection);

    const Sheet& sheet_;
    const ArchiveNames& archives_;
    ado::Recordset rows_;
    std::vector<std::size_t> places_;  // by column of the sheet: in rows_, or among the texts
    std::size_t textId_ = 0;
    std::size_t archiveId_ = 0;
    std::size_t name_ = 0;
    std::unordered_map<std::int32_t, std::vector<ado::Value>> texts_;
    mutable const std::vector<ado::Value>* text_ = nullptr;  // of the current row
    bool isBefore_ = true;
};

}  // namespace exchange
