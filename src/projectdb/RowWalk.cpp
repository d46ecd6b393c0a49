#include "projectdb/RowWalk.h"

#include "projectdb/Text.h"

namespace projectdb {

using namespace Qt::Literals::StringLiterals;

namespace {

// More failures than this one after another are not rows, of which a page holds fewer.
constexpr int kMaximumSteps = 256;

}  // namespace

void RowFailures::Note(const ado::AdoError& error, int times) {
    if (!first_) first_ = Failure{error.Number(), ToQString(error.Description()), error.Reason()};
    count_ += times;
}

RowWalk::RowWalk(ado::Recordset& recordset, RowFailures& failures)
    : recordset_(recordset), failures_(failures) {
    try {
        state_.emplace(recordset);
    } catch (const ado::AdoError& error) {
        failures_.Note(error);
    }
}

bool RowWalk::First() {
    return Repeat([this] {
        // An empty recordset has no first row to move to.
        if (!(recordset_.IsBOF() && recordset_.IsEOF())) recordset_.MoveFirst();
    });
}

bool RowWalk::Next() {
    return Repeat([this] { recordset_.MoveNext(); });
}

/// A step that fails leaves the recordset where it is, and the same step then leads behind the row
/// that it has failed for.
template <typename Step>
bool RowWalk::Repeat(Step step) {
    if (!state_) return false;
    std::optional<ado::AdoError> first;
    for (int failed = 0; failed < kMaximumSteps; ++failed) {
        try {
            step();
            const bool found = !recordset_.IsEOF();
            if (first) failures_.Note(*first, failed);
            return found;
        } catch (const ado::AdoError& error) {
            if (!first) first = error;
        }
    }
    failures_.Note(*first);
    return false;
}

}  // namespace projectdb
