#pragma once

#include "jet/ReadScope.h"

namespace jet {

/// What a scope keeps still.
struct ReadScope::Rep {
    // Between the two nobody changes the file, and what is read is as of BeginRead. Scopes nest.
    virtual Status BeginRead(Length length) = 0;
    /// REQUIRES: BeginRead has not failed.
    virtual void EndRead() = 0;

protected:
    ~Rep() = default;
};

}  // namespace jet
