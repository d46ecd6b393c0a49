#include "tools/System.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <cstdlib>

namespace tools {

void PrepareStreams() {
    for (std::FILE* stream : {stdin, stdout, stderr}) ::_setmode(::_fileno(stream), _O_BINARY);
    ::SetConsoleOutputCP(CP_UTF8);
}

bool IsFile(std::FILE* stream) {
    struct _stat64 info {};
    const int descriptor = ::_fileno(stream);
    return descriptor < 0 ||
           (::_fstat64(descriptor, &info) == 0 && (info.st_mode & _S_IFMT) == _S_IFREG);
}

bool IsTerminal(std::FILE* stream) {
    DWORD mode = 0;
    const auto handle = reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(stream)));
    return ::GetConsoleMode(handle, &mode) != 0;
}

// A console that somebody has stopped cannot be told from one that takes text.
bool TakesText(std::FILE* /*terminal*/) {
    return true;
}

std::string UserName() {
    const char* name = std::getenv("USERNAME");
    return name != nullptr ? name : "";
}

// New files have the permissions that their folder hands on, here as anywhere.
PrivateFiles::PrivateFiles() = default;
PrivateFiles::~PrivateFiles() = default;

}  // namespace tools
