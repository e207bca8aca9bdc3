#include "storage/files/block_io.h"

#include <cstddef>
#include <cstring>

#include "platform/text.h"
#include "storage/format/info_block.h"

namespace tolvenar {
namespace {

// With the high word given, the low one is an unsigned distance: files over 2 GB can be reached.
bool Seek(HANDLE file, std::uint32_t distance, DWORD origin, std::uint32_t& position) {
    LONG high = 0;
    ::SetLastError(ERROR_SUCCESS);
    position = ::SetFilePointer(file, static_cast<LONG>(distance), &high, origin);
    const bool failed = position == 0xFFFFFFFF && ::GetLastError() != ERROR_SUCCESS;
    return !failed && high == 0;
}

}  // namespace

UniqueHandle OpenFile(const char16_t* path, DWORD access, DWORD sharing, DWORD disposition) {
    return UniqueHandle(::CreateFileW(Wide(path), access, sharing, nullptr, disposition,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
}

int WriteBlock(HANDLE file, const void* buffer, std::uint32_t length, std::uint32_t& offset_out,
               bool with_name) {
    if (!FilePosition(file, offset_out)) {
        return 0;
    }
    std::uint32_t bytes = length;
    if (with_name) {
        std::uint16_t name_bytes = 0;
        std::memcpy(&name_bytes,
                    static_cast<const std::uint8_t*>(buffer) + offsetof(InfoBlockHead, name_bytes),
                    sizeof name_bytes);
        bytes += name_bytes;
    }
    return WriteAll(file, buffer, bytes) ? 1 : 0;
}

bool FilePosition(HANDLE file, std::uint32_t& offset) {
    return Seek(file, 0, FILE_CURRENT, offset);
}

bool MoveTo(HANDLE file, std::uint32_t offset) {
    std::uint32_t position = 0;
    return Seek(file, offset, FILE_BEGIN, position);
}

bool MoveToEnd(HANDLE file) {
    std::uint32_t position = 0;
    return Seek(file, 0, FILE_END, position);
}

bool FileBytes(HANDLE file, std::uint32_t& bytes) {
    DWORD high = 0;
    ::SetLastError(ERROR_SUCCESS);
    bytes = ::GetFileSize(file, &high);
    const bool failed = bytes == INVALID_FILE_SIZE && ::GetLastError() != ERROR_SUCCESS;
    return !failed && high == 0;
}

bool ReadAll(HANDLE file, void* buffer, std::uint32_t bytes) {
    DWORD done = 0;
    return ::ReadFile(file, buffer, bytes, &done, nullptr) && done == bytes;
}

bool WriteAll(HANDLE file, const void* buffer, std::uint32_t bytes) {
    DWORD done = 0;
    return ::WriteFile(file, buffer, bytes, &done, nullptr) && done == bytes;
}

}  // namespace tolvenar
