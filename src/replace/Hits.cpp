#include "replace/Hits.h"

#include "project/Schema.h"
#include "projectdb/Text.h"

namespace replace {
namespace {

constexpr std::size_t kFieldsAtOnce = 256;  // between two looks at the clock
constexpr std::uint32_t kArchiveNames = 0;  // the slice of all archives' names

}  // namespace

void Hits::Search(const Term& term, unsigned kinds) {
    matcher_ = replace::Matcher(term);
    kinds_ = kinds;
    next_ = matcher_.IsEmpty() || matcher_.Wrong() ? fields_.Fields().size() : 0;
    hits_.clear();
    slices_.assign(1, {});
    archive_ = 0;
    dirty_.clear();
    isDirty_.assign(1, false);
    written_ = refused_ = 0;
    SetReplacement(by_);
}

bool Hits::SearchOn(const QDeadlineTimer& until) {
    const auto fields = fields_.Fields();
    for (std::size_t done = 0; next_ < fields.size(); ++next_, ++done) {
        if (done % kFieldsAtOnce == kFieldsAtOnce - 1 && until.hasExpired()) return true;
        const ProjectFields::Field& field = fields[next_];
        const ProjectFields::Column& column = fields_.ColumnOf(field);
        if ((column.kind & kinds_) == 0 || !matcher_.IsIn(fields_.TextOf(field))) continue;
        const bool isArchiveName = column.kind == kNames && fields_.TrendOf(field) == 0;
        if (!isArchiveName && (slices_.size() == 1 || archive_ != fields_.ArchiveOf(field))) {
            archive_ = fields_.ArchiveOf(field);
            slices_.emplace_back();
            isDirty_.push_back(false);
        }
        Hit hit{static_cast<std::uint32_t>(next_),
                isArchiveName ? kArchiveNames : static_cast<std::uint32_t>(slices_.size() - 1)};
        slices_[hit.slice].push_back(static_cast<std::uint32_t>(hits_.size()));
        hits_.push_back(hit);
        Count(hit, 1);
        MarkDirty(hit.slice);
    }
    return false;
}

void Hits::SetReplacement(const std::optional<QString>& by) {
    by_ = by;
    replacement_.reset();
    if (by) replacement_.emplace(*by, matcher_.Groups());
    MarkAllDirty();
}

const std::optional<Fault>& Hits::ReplacementFault() const {
    static const std::optional<Fault> kNone;
    return replacement_ ? replacement_->Wrong() : kNone;
}

void Hits::MarkDirty(std::uint32_t slice) {
    if (!replacement_ || replacement_->Wrong() || isDirty_[slice]) return;
    isDirty_[slice] = true;
    dirty_.push_back(slice);
}

void Hits::MarkAllDirty() {
    dirty_.clear();
    isDirty_.assign(slices_.size(), false);
    for (std::uint32_t slice = 0; slice < slices_.size(); ++slice) {
        if (!slices_[slice].empty()) MarkDirty(slice);
    }
}

bool Hits::CheckOn(ado::Connection& connection, const QDeadlineTimer& until) {
    if (IsSearching()) return true;
    while (!dirty_.empty()) {
        const std::uint32_t slice = dirty_.back();
        CheckSlice(connection, slice);
        dirty_.pop_back();
        isDirty_[slice] = false;
        if (until.hasExpired()) break;
    }
    return !dirty_.empty();
}

/// Asks until nothing more is refused: a hit that falls out keeps its name, which may stand against
/// another one.
void Hits::CheckSlice(ado::Connection& connection, std::uint32_t slice) {
    Changes asked;
    for (const std::uint32_t number : slices_[slice]) {
        Hit& hit = hits_[number];
        Count(hit, -1);
        const QString text = NewTextOf(number).text;
        hit.isUnchanged = text == fields_.TextOf(FieldOf(number));
        hit.refusal = -1;
        Count(hit, 1);
        if (!IsWritten(hit)) continue;
        asked.cells.push_back(ChangeOf(number, text));
        asked.hits.push_back(number);
    }
    while (!asked.cells.empty()) {
        const auto refusals = project::CheckCells(connection, asked.cells);
        if (refusals.empty()) return;
        TakeRefusals(asked, refusals);
        Changes left;
        for (std::size_t i = 0; i < asked.hits.size(); ++i) {
            if (!IsWritten(hits_[asked.hits[i]])) continue;
            left.cells.push_back(std::move(asked.cells[i]));
            left.hits.push_back(asked.hits[i]);
        }
        asked = std::move(left);
    }
}

void Hits::TakeRefusals(const Changes& changes, std::span<const project::CellRefusal> refusals) {
    for (const project::CellRefusal& refusal : refusals) {
        Refuse(changes.hits[refusal.change], refusal.cause);
    }
}

void Hits::Refuse(std::size_t hit, Refusal cause) {
    Count(hits_[hit], -1);
    hits_[hit].refusal = static_cast<std::int8_t>(cause);
    Count(hits_[hit], 1);
}

void Hits::Count(const Hit& hit, int by) {
    if (IsWritten(hit)) written_ += static_cast<std::size_t>(by);
    if (hit.refusal >= 0) refused_ += static_cast<std::size_t>(by);
}

Matcher::Replaced Hits::NewTextOf(std::size_t hit) const {
    return matcher_.Replace(fields_.TextOf(FieldOf(hit)), replacement_.value_or(Replacement()));
}

void Hits::SetTicked(std::size_t hit, bool ticked) {
    if (hits_[hit].isTicked == ticked) return;
    Count(hits_[hit], -1);
    hits_[hit].isTicked = ticked;
    Count(hits_[hit], 1);
    MarkDirty(hits_[hit].slice);
}

void Hits::SetShown(std::size_t hit, bool shown) {
    if (hits_[hit].isShown == shown) return;
    Count(hits_[hit], -1);
    hits_[hit].isShown = shown;
    Count(hits_[hit], 1);
    MarkDirty(hits_[hit].slice);
}

std::optional<Hits::Refusal> Hits::RefusalOf(std::size_t hit) const {
    if (hits_[hit].refusal < 0) return std::nullopt;
    return static_cast<Refusal>(hits_[hit].refusal);
}

bool Hits::IsWritten(std::size_t hit) const {
    return IsReplacing() && IsWritten(hits_[hit]);
}

project::CellChange Hits::ChangeOf(std::size_t hit, const QString& text) const {
    const ProjectFields::Field& field = FieldOf(hit);
    const ProjectFields::Column& column = fields_.ColumnOf(field);
    // As a cell stores a text that has been cleared.
    ado::Value is = text.isEmpty() ? ado::Value() : ado::Value(projectdb::ToUtf16(text));
    return {column.table, field.row, column.name, projectdb::ToUtf16(fields_.TextOf(field)), is};
}

Hits::Changes Hits::ToWrite() const {
    Changes changes;
    for (std::size_t hit = 0; hit < hits_.size(); ++hit) {
        if (!IsWritten(hit)) continue;
        changes.cells.push_back(ChangeOf(hit, NewTextOf(hit).text));
        changes.hits.push_back(hit);
    }
    return changes;
}

}  // namespace replace
