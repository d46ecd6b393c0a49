#pragma once

#include <cstdint>
#include <exception>
#include <QString>
#include <utility>

#include "reasons/Reason.h"

namespace projectdb {

/// What an exception says: to the user in the interface language, to who is asked for help in
/// English.
struct Failure {
    std::int32_t number = 0;
    QString description;  // English
    reasons::Reason reason;
    QString told = {};  // for the user, where the step that failed knows more than the reason

    /// Of the exception that is being handled. REQUIRES: called inside a catch block.
    [[nodiscard]] static Failure Current();
    /// For the user: what has happened, to what, why, and what can be done.
    [[nodiscard]] QString Text() const;
    /// For the details of a message, and for logs: number, three blanks, description.
    [[nodiscard]] QString Details() const;
};

/// A failure that has come when a part was done already.
class HalfDone final : public std::exception {
public:
    /// `told`: what is done and what is left, with the cause, in the interface language.
    HalfDone(Failure cause, QString told) : failure_(std::move(cause)) {
        failure_.told = std::move(told);
    }
    [[nodiscard]] const Failure& Told() const noexcept { return failure_; }
    [[nodiscard]] const char* what() const noexcept override { return "half done"; }

private:
    Failure failure_;
};

}  // namespace projectdb
