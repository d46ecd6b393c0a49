#include "exchange/RowMatch.h"

#include <iterator>

#include "project/Number.h"

namespace exchange {
namespace {

using Role = SheetColumn::Role;
using State = PlannedRow::State;
using Cause = PlannedRow::Cause;

constexpr char16_t kBetween = u'\x1F';  // archive and name of a key

}  // namespace

RowMatch::RowMatch(SheetRows& rows, const ArchiveNames& archives, const InputRows& input,
                   MatchBy by)
    : archives_(archives),
      input_(input),
      by_(by),
      isTrends_(input.Columns().Kind() == SheetKind::Trends),
      name_(*input.Columns().FindField("Name")),
      archive_(input.Columns().FindRole(Role::Archive)),
      matches_(input.Count()),
      doubts_(input.Count()) {
    ReadStored(rows);
    for (std::size_t row = 0; row < input.Count(); ++row) {
        Doubt& doubt = doubts_[row];
        if (input.IsTooLong(row)) doubt = {State::Refused, Cause::TooManyCells};
        if (doubt.cause != Cause::None) continue;
        const auto found = Find(row, doubt);
        if (!found || doubt.cause != Cause::None) continue;
        StoredRow& stored = stored_[*found];
        if (stored.input) {
            doubt = {State::Refused, Cause::GivenTwice, 0, input.Line(*stored.input)};
            continue;
        }
        stored.input = row;
        matches_[row] = *found;
    }
}

const StoredRow* RowMatch::Of(std::size_t row) const {
    return matches_[row] ? &stored_[*matches_[row]] : nullptr;
}

std::u16string RowMatch::KeyOf(const StoredRow& row) const {
    if (!isTrends_) return row.name;
    const std::u16string* archive = row.archive ? archives_.Find(*row.archive) : nullptr;
    return (archive != nullptr ? *archive : std::u16string()) + kBetween + row.name;
}

/// Nothing where the input does not say it.
std::optional<std::u16string> RowMatch::KeyOf(std::size_t row) const {
    const auto name = input_.Get(row, name_);
    if (!name) return std::nullopt;
    if (!isTrends_) return std::u16string(name->text);
    const auto archive = input_.Get(row, *archive_);
    if (!archive) return std::nullopt;
    std::u16string known(archive->text);
    const auto& ids = archives_.Named(known);
    if (ids.size() == 1) known = *archives_.Find(ids.front());
    return known + kBetween + std::u16string(name->text);
}

void RowMatch::ReadStored(SheetRows& rows) {
    while (rows.Next()) {
        StoredRow row{rows.Id(), {}, rows.Name(), {}};
        if (isTrends_) row.archive = rows.Archive();
        ids_.emplace(row.id, stored_.size());
        keys_.emplace(KeyOf(row), stored_.size());
        stored_.push_back(std::move(row));
    }
}

std::optional<std::size_t> RowMatch::Find(std::size_t row, Doubt& doubt) const {
    if (by_ != MatchBy::Name) {
        const auto found = FindById(row, doubt);
        if (found || doubt.cause != Cause::None || by_ == MatchBy::Id) return found;
    }
    return FindByName(row, doubt);
}

std::optional<std::size_t> RowMatch::FindById(std::size_t row, Doubt& doubt) const {
    const auto cell = input_.Get(row, 0);
    if (!cell || project::WithoutBlanks(cell->text).empty()) return std::nullopt;
    const project::NumberText read = project::ReadNumber(cell->text);
    const auto id = read.whole && read.number >= INT32_MIN && read.number <= INT32_MAX
                        ? static_cast<std::int32_t>(read.number)
                        : 0;
    if (!read.whole || id != read.number) {
        doubt = {State::Refused, Cause::BadCell, 0, 0};
        return std::nullopt;
    }
    const auto found = ids_.find(id);
    if (found == ids_.end()) return std::nullopt;
    if (by_ == MatchBy::Both && IsOther(row, stored_[found->second])) {
        doubt = {State::Ambiguous, Cause::OtherNames, 0, 0};
        return std::nullopt;
    }
    return found->second;
}

/// A row that has been renamed or moved is still the same; one of which nothing fits is a row of
/// another project, or the IDs have been mixed up.
bool RowMatch::IsOther(std::size_t row, const StoredRow& stored) const {
    const auto name = input_.Get(row, name_);
    if (!name || name->text == stored.name) return false;
    if (!isTrends_) return keys_.contains(std::u16string(name->text));
    const auto archive = input_.Get(row, *archive_);
    if (!archive) return false;
    if (!stored.archive) return !archive->text.empty();
    return !archives_.IsNameOf(*stored.archive, archive->text);
}

std::optional<std::size_t> RowMatch::FindByName(std::size_t row, Doubt& doubt) const {
    const auto key = KeyOf(row);
    if (!key) return std::nullopt;
    const auto [first, last] = keys_.equal_range(*key);
    if (first == last) return std::nullopt;
    if (std::next(first) != last) {
        doubt = {State::Ambiguous, Cause::SeveralRows, name_, 0};
        return std::nullopt;
    }
    return first->second;
}

}  // namespace exchange
