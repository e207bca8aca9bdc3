#include <windows.h>

#include "pc/storage/file_bytes.h"
#include "pc/text/failure.h"
#include "pc/text/wide.h"
#include "pc/text/windows_error.h"

namespace tolvenar::pc {

FileBytes::FileBytes(const std::string& path)
    : file_(::CreateFileW(WidePath(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                          nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
    if (file_ == INVALID_HANDLE_VALUE) {
        throw Failure(ExitCode::kCannot, path + ": " + LastErrorText());
    }
}

FileBytes::~FileBytes() { ::CloseHandle(file_); }

bool FileBytes::ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                       std::uint32_t& read) {
    OVERLAPPED place{};
    place.Offset = offset;
    DWORD taken = 0;
    const bool is_read = ::ReadFile(file_, buffer, bytes, &taken, &place) != FALSE ||
                         ::GetLastError() == ERROR_HANDLE_EOF;
    read = taken;
    return is_read;
}

bool FileBytes::Size(std::uint32_t& bytes) {
    LARGE_INTEGER size{};
    if (::GetFileType(file_) != FILE_TYPE_DISK || !::GetFileSizeEx(file_, &size) ||
        size.QuadPart > 0xFFFFFFFF) {
        return false;
    }
    bytes = size.LowPart;
    return true;
}

}  // namespace tolvenar::pc
