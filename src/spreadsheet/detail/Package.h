#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "spreadsheet/Fault.h"

struct zip;
struct zip_file;

namespace spreadsheet {

/// One part of a package, unpacked piece by piece.
class Part {
public:
    Part(zip_file* file, std::string name, std::uint64_t most)
        : file_(file), name_(std::move(name)), left_(most) {}
    ~Part();
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    /// The next bytes, until the next call; none at the end and after a fault.
    [[nodiscard]] std::string_view Next();
    [[nodiscard]] const Fault& GetFault() const { return fault_; }
    [[nodiscard]] const std::string& Name() const { return name_; }

private:
    zip_file* file_;
    std::string name_;
    std::uint64_t left_;  // bytes that may still come
    std::string block_;
    Fault fault_;
};

/// The zip archive that a workbook is.
class Package {
public:
    Package() = default;
    ~Package();
    Package(const Package&) = delete;
    Package& operator=(const Package&) = delete;

    [[nodiscard]] Fault Open(std::string bytes);
    /// Null when there is none of that name, which is told apart by no case of letters. Parts must
    /// not outlive the package.
    [[nodiscard]] std::unique_ptr<Part> Find(const std::string& name) const;

private:
    std::string bytes_;
    zip* archive_ = nullptr;
};

}  // namespace spreadsheet
