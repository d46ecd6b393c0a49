#pragma once

#include <cstdint>
#include <optional>
#include <QDeadlineTimer>
#include <span>
#include <vector>

#include "project/CellChanges.h"
#include "replace/Matcher.h"
#include "replace/ProjectFields.h"

namespace replace {

/// The fields of a project that hold a term, and what a replacement makes of them: which of them
/// are to be written, and why one cannot be. Worked out in portions, so that nobody waits.
///
/// A hit is written when it is ticked, shown, changed by the replacement and not refused. What
/// stands against a hit depends on the others - names are taken as a set -, so that it is asked
/// again when a tick is set: of the archive whose hit it is.
class Hits {
public:
    /// `fields` is borrowed, and the same as long as there are hits.
    explicit Hits(const ProjectFields& fields) : fields_(fields) {}

    /// Forgets the hits; they are found anew by SearchOn.
    void Search(const Term& term, unsigned kinds);
    [[nodiscard]] const replace::Matcher& Matcher() const noexcept { return matcher_; }
    /// Goes on for so long; false when all have been found.
    bool SearchOn(const QDeadlineTimer& until);
    [[nodiscard]] bool IsSearching() const noexcept { return next_ < fields_.Fields().size(); }

    /// Nothing: they are only looked for.
    void SetReplacement(const std::optional<QString>& by);
    [[nodiscard]] bool IsReplacing() const noexcept { return replacement_.has_value(); }
    [[nodiscard]] const std::optional<Fault>& ReplacementFault() const;
    /// Asks for so long what stands against the hits that are to be written; false when all has
    /// been asked. Nothing is asked before all hits have been found. Throws ado::AdoError.
    bool CheckOn(ado::Connection& connection, const QDeadlineTimer& until);
    [[nodiscard]] bool IsChecking() const noexcept { return !dirty_.empty(); }

    [[nodiscard]] std::size_t Count() const noexcept { return hits_.size(); }
    [[nodiscard]] const ProjectFields::Field& FieldOf(std::size_t hit) const {
        return fields_.Fields()[hits_[hit].field];
    }
    [[nodiscard]] const ProjectFields& Fields() const noexcept { return fields_; }
    [[nodiscard]] Matcher::Replaced NewTextOf(std::size_t hit) const;

    [[nodiscard]] bool IsTicked(std::size_t hit) const { return hits_[hit].isTicked; }
    void SetTicked(std::size_t hit, bool ticked);
    /// What is not shown is not written.
    void SetShown(std::size_t hit, bool shown);
    using Refusal = project::CellRefusal::Cause;
    /// Why the hit cannot be written.
    [[nodiscard]] std::optional<Refusal> RefusalOf(std::size_t hit) const;
    /// The replacement leaves it as it is.
    [[nodiscard]] bool IsUnchanged(std::size_t hit) const { return hits_[hit].isUnchanged; }
    [[nodiscard]] bool IsWritten(std::size_t hit) const;
    /// How many are written, as far as it has been asked what stands against them.
    [[nodiscard]] std::size_t WrittenCount() const noexcept { return IsReplacing() ? written_ : 0; }
    [[nodiscard]] std::size_t RefusedCount() const noexcept { return refused_; }

    /// What is to be written, with the hits that they come from.
    struct Changes {
        std::vector<project::CellChange> cells;
        std::vector<std::size_t> hits;
    };
    [[nodiscard]] Changes ToWrite() const;
    /// Others have changed the project since it was asked: what was refused when it was written.
    void TakeRefusals(const Changes& changes, std::span<const project::CellRefusal> refusals);

private:
    struct Hit {
        std::uint32_t field;
        std::uint32_t slice;
        bool isTicked = true;
        bool isShown = true;
        bool isUnchanged = false;
        std::int8_t refusal = -1;  // of Refusal
    };
    void CheckSlice(ado::Connection& connection, std::uint32_t slice);
    [[nodiscard]] project::CellChange ChangeOf(std::size_t hit, const QString& text) const;
    void MarkDirty(std::uint32_t slice);
    void MarkAllDirty();
    void Refuse(std::size_t hit, Refusal cause);
    /// Around a change of a hit: keeps the numbers.
    void Count(const Hit& hit, int by);
    [[nodiscard]] static bool IsWritten(const Hit& hit) {
        return hit.isTicked && hit.isShown && !hit.isUnchanged && hit.refusal < 0;
    }

    const ProjectFields& fields_;
    replace::Matcher matcher_;
    unsigned kinds_ = 0;
    std::size_t next_ = 0;  // field to look at
    std::vector<Hit> hits_;
    // Hits that can stand against each other: names of archives, and what an archive's trends have.
    std::vector<std::vector<std::uint32_t>> slices_;
    std::int32_t archive_ = 0;  // of the last slice
    std::vector<std::uint32_t> dirty_;
    std::vector<bool> isDirty_;
    std::optional<QString> by_;
    std::optional<Replacement> replacement_;
    std::size_t written_ = 0;
    std::size_t refused_ = 0;
};

}  // namespace replace
