#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// The names that rows are given by rule.
namespace project {

/// Under this name a row is stored first, before it gets its own.
inline constexpr std::u16string_view kPlaceholder = u"@New@";

/// The group of texts above all archives' groups.
inline constexpr std::u16string_view kRootGroupName = u"Archive";

/// The name of an archive's index text, and of a trend's.
[[nodiscard]] std::u16string ArchiveTextName(std::u16string_view archive);
[[nodiscard]] std::u16string TrendTextName(std::u16string_view trend);
/// How many characters more than the trend's own the name of its index text has.
inline constexpr int kTrendTextPrefix = 3;
inline constexpr int kArchiveTextPrefix = 4;

/// `first`, or else the first of "first(1)", "first(2)", ... that is free.
[[nodiscard]] std::u16string FreeName(
    std::u16string_view first, const std::function<bool(const std::u16string& name)>& isInUse);

/// The name of a new trend: "Trd" and its ID, and a number behind it where that is taken.
[[nodiscard]] std::u16string NewTrendName(
    std::int32_t id, const std::function<bool(const std::u16string& name)>& isInUse);

/// A name of the user's as that of a file: what no file name may hold, and blanks, become "_".
[[nodiscard]] std::u16string FileNameOf(std::u16string_view name);

}  // namespace project
