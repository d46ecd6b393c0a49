#include "spreadsheet/detail/Package.h"

#include <zip.h>

#include <algorithm>

namespace spreadsheet {
namespace {

constexpr std::size_t kBlock = std::size_t{32} << 10;  // bytes
// Rows of a workbook pack to a tenth or a thirtieth; nothing but a trap needs more than these.
constexpr std::uint64_t kMostAnyway = std::uint64_t{4} << 20;  // bytes of a part
constexpr std::uint64_t kMostTimes = 200;                      // the size of the file
constexpr std::uint64_t kMostEver = std::uint64_t{2} << 30;    // bytes of a part

}  // namespace

Part::~Part() {
    zip_fclose(file_);
}

std::string_view Part::Next() {
    if (fault_) return {};
    block_.resize(kBlock);
    const zip_int64_t count = zip_fread(file_, block_.data(), block_.size());
    if (count < 0) {
        fault_ = {.kind = Fault::Kind::Damaged,
                  .part = name_,
                  .detail = zip_error_strerror(zip_file_get_error(file_))};
        return {};
    }
    if (static_cast<std::uint64_t>(count) > left_) {
        fault_ = {.kind = Fault::Kind::TooLarge, .part = name_};
        return {};
    }
    left_ -= static_cast<std::uint64_t>(count);
    return {block_.data(), static_cast<std::size_t>(count)};
}

Package::~Package() {
    if (archive_ != nullptr) zip_discard(archive_);
}

Fault Package::Open(std::string bytes) {
    bytes_ = std::move(bytes);
    // A compound file: what is protected by a password, and what there was before.
    if (bytes_.starts_with("\xD0\xCF\x11\xE0")) return {.kind = Fault::Kind::Protected};
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(bytes_.data(), bytes_.size(), 0, &error);
    if (source != nullptr) archive_ = zip_open_from_source(source, ZIP_RDONLY, &error);
    Fault fault;
    if (archive_ == nullptr) {
        fault = {.kind = Fault::Kind::NoWorkbook, .detail = zip_error_strerror(&error)};
        if (source != nullptr) zip_source_free(source);
    }
    zip_error_fini(&error);
    return fault;
}

std::unique_ptr<Part> Package::Find(const std::string& name) const {
    zip_file_t* file = zip_fopen(archive_, name.c_str(), ZIP_FL_NOCASE);
    if (file == nullptr) return nullptr;
    const std::uint64_t most = std::min(kMostEver, kMostAnyway + kMostTimes * bytes_.size());
    return std::make_unique<Part>(file, name, most);
}

}  // namespace spreadsheet
