#include "paths/NewFile.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>

#include <cerrno>

#include "paths/NativePath.h"

namespace paths {

std::FILE* OpenStream(const std::string& path, char mode) {
    return ::_wfopen(FileOf(path).c_str(), mode == 'w' ? L"wb" : L"rb");
}

/// It has the permissions that its folder hands on.
std::error_code NewFile::Make() {
    constexpr int kTries = 100;
    for (int i = 0; i < kTries; ++i) {
        const std::string temporary =
            name_ + "." + std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(i);
        int file = -1;
        const errno_t error = ::_wsopen_s(&file, FileOf(temporary).c_str(),
                                          _O_RDWR | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT,
                                          _SH_DENYNO, _S_IREAD | _S_IWRITE);
        if (error == EEXIST) continue;
        if (error != 0) return {error, std::generic_category()};
        temporary_ = temporary;
        stream_ = ::_fdopen(file, "wb");
        return {};
    }
    return {EEXIST, std::generic_category()};
}

bool NewFile::IsQuota(const std::error_code& error) {
    constexpr int kDiskQuotaExceeded = 1295;  // not in every compiler's headers
    return error == std::error_code(kDiskQuotaExceeded, std::system_category());
}

bool NewFile::SyncStream(std::FILE* stream) {
    return ::_commit(::_fileno(stream)) == 0;
}

std::error_code NewFile::Replace(const std::string& from, const std::string& to) {
    if (::MoveFileExW(FileOf(from).c_str(), FileOf(to).c_str(),
                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0) {
        return {};
    }
    return {static_cast<int>(::GetLastError()), std::system_category()};
}

}  // namespace paths
