#include "project/CopyRows.h"

#include <string>
#include <tuple>

#include "project/Names.h"

namespace project {
namespace {

/// Begins a row, gives it the values of `original`'s current row but for the key, then those of
/// `others`, and stores it. Without an original `others` are all. Returns its ID.
std::int32_t AddCopy(const ado::Recordset* original, ado::Recordset& copies, const Values& others) {
    copies.AddNew();
    const std::size_t count = original != nullptr ? original->Fields().size() : 0;
    const std::size_t key = copies.FieldIndex(kKeyColumn);
    for (std::size_t i = 0; i < count; ++i) {
        if (i == key || original->Fields()[i].autoNumber) continue;
        const ado::Value value = original->Get(i);
        if (!ado::IsNull(value)) copies.Set(i, value);
    }
    for (const auto& [field, value] : others) copies.Set(field, value);
    copies.Update();
    return ado::ToLong(copies.Get(key));
}

}  // namespace

std::int32_t CopyRows::CopyText(const ado::Recordset& owner, std::u16string_view name,
                                std::optional<std::int32_t> group, std::int32_t archiveId) {
    const bool hasText = from_.SeekTextOf(owner);
    if (!group && hasText) group = NumberOf(from_.Texts(), "ParentID");
    if (!group) group = from_.GroupOfTrends(archiveId);
    return AddCopy(hasText ? &from_.Texts() : nullptr, to_.Texts(),
                   {{"Name", std::u16string(name)}, {"ParentID", *group}});
}

std::int32_t CopyRows::CopyGroup(std::int32_t archiveId, std::int32_t copyId,
                                 std::u16string_view name) {
    std::ignore = from_.SeekGroup(archiveId);  // of several, the first is current
    if (from_.Groups().IsEOF()) return to_.AddGroup(copyId, name);
    return AddCopy(&from_.Groups(), to_.Groups(),
                   {{"Name", std::u16string(name)}, {"Parameter", copyId}});
}

CopyRows::Archive CopyRows::CopyArchive(std::u16string_view name) {
    const ado::Recordset& archives = from_.Archives();
    const std::int32_t original = ado::ToLong(archives.Get(kKeyColumn));
    Archive copy;
    copy.id = AddCopy(&archives, to_.Archives(), {{"Name", std::u16string(name)}});
    copy.group = CopyGroup(original, copy.id, name);
    const std::int32_t text = CopyText(archives, ArchiveTextName(name), copy.group, copy.id);
    to_.Archives().Set("TextID", text);
    to_.Archives().Update();
    return copy;
}

std::int32_t CopyRows::CopyTrend(std::u16string_view name, std::int32_t archiveId,
                                 std::optional<std::int32_t> group) {
    const ado::Recordset& trends = from_.Trends();
    const std::int32_t text = CopyText(trends, TrendTextName(name), group, archiveId);
    return AddCopy(&trends, to_.Trends(),
                   {{"Name", std::u16string(name)}, {"ArchiveID", archiveId}, {"TextID", text}});
}

}  // namespace project
