#pragma once

#include "jet/Status.h"

namespace jet {

/// One reading operation: while it is there, everything that is read is of one committed state,
/// and nobody writes. To be held for no longer than the file takes to be read: never while
/// something else is waited for, such as a user or the reader of a pipe. Made by the Hold of a
/// Database or Table, which must outlive it.
class ReadScope {
public:
    /// Long: for more than a few pages; lets a writer that waits go first.
    enum class Length { Short, Long };

    struct Rep;  // the library's own
    explicit ReadScope(Rep& rep, Length length = Length::Short);
    ~ReadScope();
    ReadScope(const ReadScope&) = delete;
    ReadScope& operator=(const ReadScope&) = delete;

    /// To be asked before anything is read.
    [[nodiscard]] const Status& GetStatus() const { return status_; }

private:
    Rep& rep_;
    Status status_;
};

}  // namespace jet
