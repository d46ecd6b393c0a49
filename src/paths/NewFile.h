#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <system_error>

#include "reasons/Reason.h"

namespace paths {

/// Opens a file by its native path, for `mode` "r" or "w", as bytes; null, with the reason in
/// errno.
[[nodiscard]] std::FILE* OpenStream(const std::string& path, char mode);

/// A file that takes its name when it is whole: until then what was there before is there. The name
/// of a link is that of the file it leads to. What has no name at the end is removed.
class NewFile {
public:
    NewFile() = default;
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Makes it beside `path`, with the permissions of what is there, else as any new file. What is
    /// there and may not be written is not replaced either.
    [[nodiscard]] std::error_code Open(const std::string& path);
    /// To be written; null before Open and after TakeName.
    [[nodiscard]] std::FILE* Stream() const { return stream_; }
    /// False when it could not be written, now or before.
    [[nodiscard]] bool Write(std::string_view bytes);
    /// Why Write has failed.
    [[nodiscard]] const std::error_code& Error() const { return error_; }
    /// Makes durable what has been written, and gives it the name. A file of which something could
    /// not be written, through Write or the stream, does not get it.
    [[nodiscard]] std::error_code TakeName();

    /// Why a file could not be opened, written or named, as users are told.
    [[nodiscard]] static reasons::Cause CauseOf(const std::error_code& error);

private:
    /// A new file under a name made from `name_`, as `temporary_` and `stream_`.
    [[nodiscard]] std::error_code Make();
    /// Whether the user's share of the disk is used up.
    [[nodiscard]] static bool IsQuota(const std::error_code& error);
    [[nodiscard]] static bool SyncStream(std::FILE* stream);
    [[nodiscard]] static std::error_code Replace(const std::string& from, const std::string& to);

    std::FILE* stream_ = nullptr;
    std::error_code error_;
    std::string name_;
    std::string temporary_;  // empty: there is none
};

}  // namespace paths
