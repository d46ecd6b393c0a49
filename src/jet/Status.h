#pragma once

#include <cassert>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace jet {

/// What a caller can do about a failure; the text says the rest.
enum class StatusCode {
    Ok,
    NotFound,     // no such file, table, row or entry
    Corrupt,      // the file's content contradicts the format; other parts may still be readable
    Io,           // the operating system failed to read or write
    Permission,   // the operating system refused
    BadArgument,  // the caller asked for something that makes no sense
    Unsupported,  // a valid file or value that this engine does not handle
    Full,         // the file or the disk takes no more
    UsedUp,       // an AutoNumber has given its last number
    Busy,         // another program holds a lock; later it may work
    Conflict,     // another program has changed or deleted the row meanwhile
    Duplicate,    // a unique index holds the key already
    Required,     // a value must not be Null, or not be an empty text
    Related,      // a relationship with another table forbids it
    TooLong,      // a value or a row is too large
};

/// Outcome of an operation. The text (UTF-8) names the page, the row and the cause; the layers
/// above put table and file in front of it. A success costs no more than a null pointer.
class [[nodiscard]] Status {
public:
    Status() = default;
    Status(StatusCode code, std::string text)
        : failure_(std::make_unique<Failure>(Failure{code, std::move(text)})) {}
    Status(Status&&) noexcept = default;
    Status& operator=(Status&&) noexcept = default;
    Status(const Status& other)
        : failure_(other.failure_ ? std::make_unique<Failure>(*other.failure_) : nullptr) {}
    Status& operator=(const Status& other) { return *this = Status(other); }
    ~Status() = default;

    [[nodiscard]] bool IsOk() const noexcept { return failure_ == nullptr; }
    [[nodiscard]] StatusCode Code() const noexcept {
        return failure_ ? failure_->code : StatusCode::Ok;
    }
    /// Empty for a success.
    [[nodiscard]] std::string Text() const { return failure_ ? failure_->text : std::string(); }

    /// The same failure with `where` and a colon in front of its text.
    [[nodiscard]] Status In(std::string_view where) const;  // a success stays one

    static Status Corrupt(std::string text) { return {StatusCode::Corrupt, std::move(text)}; }
    static Status BadArgument(std::string text) {
        return {StatusCode::BadArgument, std::move(text)};
    }
    static Status NotFound(std::string text) { return {StatusCode::NotFound, std::move(text)}; }
    static Status Unsupported(std::string text) {
        return {StatusCode::Unsupported, std::move(text)};
    }

    /// Turns an errno value into a code; the only place that does.
    static Status FromErrno(int error, std::string_view action);

private:
    struct Failure {
        StatusCode code;
        std::string text;
    };
    std::unique_ptr<Failure> failure_;  // null: success
};

/// A value or the reason why there is none.
template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value) : content_(std::move(value)) {}
    Result(Status status) : content_(std::move(status)) { assert(!GetStatus().IsOk()); }

    [[nodiscard]] bool IsOk() const noexcept { return content_.index() == 0; }
    /// REQUIRES: !IsOk().
    [[nodiscard]] const Status& GetStatus() const { return std::get<1>(content_); }

    /// The outcome without the value.
    [[nodiscard]] Status GetStatusOrOk() const { return IsOk() ? Status() : GetStatus(); }

    // REQUIRES: IsOk().
    [[nodiscard]] T& operator*() { return std::get<0>(content_); }
    [[nodiscard]] const T& operator*() const { return std::get<0>(content_); }
    [[nodiscard]] T* operator->() { return &std::get<0>(content_); }
    [[nodiscard]] const T* operator->() const { return &std::get<0>(content_); }

private:
    std::variant<T, Status> content_;
};

}  // namespace jet

/// Hands a failed Status to the caller.
#define JET_TRY(expression)                                                            \
    do {                                                                               \
        if (jet::Status tryStatus = (expression); !tryStatus.IsOk()) return tryStatus; \
    } while (false)

#define JET_JOIN_INNER(a, b) a##b
#define JET_JOIN(a, b) JET_JOIN_INNER(a, b)

/// Assigns a Result's value to `target`, or hands its failed Status to the caller.
#define JET_ASSIGN(target, expression) \
    JET_ASSIGN_AS(JET_JOIN(tryResult, __LINE__), target, expression)
#define JET_ASSIGN_AS(result, target, expression)  \
    auto result = (expression);                    \
    if (!result.IsOk()) return result.GetStatus(); \
    target = std::move(*result)
