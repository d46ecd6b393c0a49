#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <span>
#include <string>

#include "ado/Connection.h"
#include "project/Changes.h"
#include "project/TakeBack.h"

namespace project {

/// The steps that a user can go back and forth. It knows no connection: steps stay when the project
/// is closed and opened again, since each is held against the file only when it is taken back.
class History {
public:
    // What is kept; the oldest go first. The newest stays whatever its size.
    static constexpr std::size_t kMostSteps = 500;
    static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

    struct Step {
        std::u16string name;  // as the user knows it
        ChangeSet changes;
    };

    /// A further step; the way forward is lost with it. An empty one is none.
    void Add(std::u16string name, ChangeSet changes);
    void Clear();
    /// The project has been opened: where the file has become another one, the steps go. True when
    /// any have.
    [[nodiscard]] bool DropForeign(ado::Connection& connection);

    // The newest is the last one.
    [[nodiscard]] const std::deque<Step>& Done() const noexcept { return done_; }
    [[nodiscard]] const std::deque<Step>& Undone() const noexcept { return undone_; }

    struct Outcome {
        TakenBack taken;
        /// What has been changed in the file; empty with conflicts.
        ChangeSet changes;
    };
    /// Takes the newest step back, or what was taken back last. `recorder` is that of the
    /// connection, and what it has recorded before belongs to nobody. Where conflicts are open, or
    /// when it throws ado::AdoError, all is as it was. REQUIRES: there is such a step, and it is
    /// whole.
    [[nodiscard]] Outcome Undo(ado::Connection& connection, ChangeRecorder& recorder,
                               std::span<const Settlement> settled = {});
    [[nodiscard]] Outcome Redo(ado::Connection& connection, ChangeRecorder& recorder,
                               std::span<const Settlement> settled = {});

private:
    static Outcome Move(std::deque<Step>& from, std::deque<Step>& to, ado::Connection& connection,
                        ChangeRecorder& recorder, std::span<const Settlement> settled);
    void Renumber(const std::vector<TakenBack::NewNumber>& numbers);
    void RemoveOldest();

    std::deque<Step> done_;
    std::deque<Step> undone_;
    std::optional<ado::Value> project_;  // when its table of archives was made; none: not known
};

}  // namespace project
