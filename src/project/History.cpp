#include "project/History.h"

#include <tuple>
#include <utility>

#include "ado/Recordset.h"
#include "project/Schema.h"

namespace project {

void History::Add(std::u16string name, ChangeSet changes) {
    if (changes.IsEmpty()) return;
    undone_.clear();
    done_.push_back({std::move(name), std::move(changes)});
    RemoveOldest();
}

void History::Clear() {
    done_.clear();
    undone_.clear();
}

bool History::DropForeign(ado::Connection& connection) {
    // A project keeps this moment for life: compaction takes it along, a copy has it too.
    ado::Recordset catalog;
    catalog.Open("MSysObjects", connection, ado::CommandType::Table);
    catalog.SetFilter("Name = '" + std::string(kArchiveTable) + "'");
    std::optional<ado::Value> opened;
    if (!catalog.IsEOF()) opened = catalog.Get("DateCreate");
    const bool isForeign = project_ && opened != project_;
    project_ = std::move(opened);
    if (!isForeign || (done_.empty() && undone_.empty())) return false;
    Clear();
    return true;
}

void History::RemoveOldest() {
    std::size_t bytes = 0;
    std::size_t kept = 0;
    while (kept < done_.size() && kept < kMostSteps) {
        bytes += done_[done_.size() - 1 - kept].changes.Bytes();
        if (bytes > kMostBytes && kept > 0) break;
        ++kept;
    }
    done_.erase(done_.begin(), done_.end() - static_cast<std::ptrdiff_t>(kept));
}

History::Outcome History::Undo(ado::Connection& connection, ChangeRecorder& recorder,
                               std::span<const Settlement> settled) {
    Outcome outcome = Move(done_, undone_, connection, recorder, settled);
    Renumber(outcome.taken.renumbered);
    return outcome;
}

History::Outcome History::Redo(ado::Connection& connection, ChangeRecorder& recorder,
                               std::span<const Settlement> settled) {
    Outcome outcome = Move(undone_, done_, connection, recorder, settled);
    Renumber(outcome.taken.renumbered);
    return outcome;
}

History::Outcome History::Move(std::deque<Step>& from, std::deque<Step>& to,
                               ado::Connection& connection, ChangeRecorder& recorder,
                               std::span<const Settlement> settled) {
    Outcome outcome;
    std::ignore = recorder.Take();
    outcome.taken = TakeBack(connection, from.back().changes, settled);
    if (!outcome.taken.open.empty()) return outcome;
    // What has really been written is what leads back: fields that somebody else has settled, or
    // that the user has left to others, are no part of it.
    outcome.changes = recorder.Take();
    Step step = std::move(from.back());
    from.pop_back();
    step.changes = outcome.changes;
    if (!step.changes.IsEmpty()) to.push_back(std::move(step));
    return outcome;
}

void History::Renumber(const std::vector<TakenBack::NewNumber>& numbers) {
    for (const TakenBack::NewNumber& number : numbers) {
        for (std::deque<Step>* steps : {&done_, &undone_}) {
            for (Step& step : *steps) step.changes.Renumber(number.table, number.was, number.is);
        }
    }
}

}  // namespace project
