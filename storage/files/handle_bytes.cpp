#include "storage/files/handle_bytes.h"

#include "platform/keep_awake.h"
#include "platform/text.h"
#include "storage/files/card_retry.h"
#include "storage/files/write_pieces.h"

namespace tolvenar {
namespace {

// Whether the opening of `path` for writing failed with `error` because of a write protection. A
// read-only attribute alone answers with a denied access, which has other reasons too.
bool IsProtection(DWORD error, const char16_t* path) {
    if (error != ERROR_ACCESS_DENIED) {
        return error == ERROR_WRITE_PROTECT;
    }
    const DWORD attributes = ::GetFileAttributesW(Wide(path));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

}  // namespace

UniqueHandle OpenFile(const char16_t* path, DWORD access, DWORD sharing, DWORD disposition) {
    return UniqueHandle(::CreateFileW(Wide(path), access, sharing, nullptr, disposition,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
}

UniqueHandle OpenForWritingIfAllowed(const char16_t* path, DWORD sharing, DWORD disposition) {
    UniqueHandle file = OpenFile(path, GENERIC_READ | GENERIC_WRITE, sharing, disposition);
    if (!file && IsProtection(::GetLastError(), path)) {
        file = OpenFile(path, GENERIC_READ, sharing, OPEN_EXISTING);
    }
    return file;
}

UniqueHandle OpenSavFile(const StorageNames& names) {
    return OpenForWritingIfAllowed(names.sav, FILE_SHARE_READ, OPEN_EXISTING);
}

UniqueHandle OpenSavFileForWriting(const StorageNames& names) {
    UniqueHandle file;
    WriteToCard([&] {
        file = OpenFile(names.sav, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING);
        return static_cast<bool>(file);
    });
    return file;
}

bool Flush(HANDLE file) {
    return WriteToCard([file] {
        if (::FlushFileBuffers(file)) {
            return true;
        }
        const DWORD error = ::GetLastError();
        return error == ERROR_NOT_SUPPORTED || error == ERROR_CALL_NOT_IMPLEMENTED;
    });
}

bool IsWriteProtected(const char16_t* path) {
    const UniqueHandle file =
        OpenFile(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING);
    return !file && IsProtection(::GetLastError(), path);
}

bool HandleBytes::ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                         std::uint32_t& read) {
    read = 0;
    if (!MoveTo(offset)) {
        return false;
    }
    StayAwakeBetweenObjects();
    // A read may give fewer bytes than are there: only one that gives none has met the end. A
    // record that was cut in the middle would be taken for the last one's rest, and all behind it
    // shifted.
    while (read < bytes) {
        DWORD done = 0;
        is_position_known_ = ::ReadFile(file_, static_cast<std::uint8_t*>(buffer) + read,
                                        bytes - read, &done, nullptr) != FALSE;
        if (!is_position_known_) {
            read = 0;
            return false;
        }
        if (done == 0) {
            break;
        }
        read += done;
        position_ += done;
    }
    return true;
}

bool HandleBytes::Size(std::uint32_t& bytes) {
    DWORD high = 0;
    ::SetLastError(ERROR_SUCCESS);
    bytes = ::GetFileSize(file_, &high);
    const bool failed = bytes == INVALID_FILE_SIZE && ::GetLastError() != ERROR_SUCCESS;
    return !failed && high == 0;
}

bool HandleBytes::Append(const void* buffer, std::uint32_t bytes) {
    return WriteInPieces(bytes, [&](std::uint32_t done, std::uint32_t length) {
        const std::uint32_t place = position_;
        const void* piece = static_cast<const std::uint8_t*>(buffer) + done;
        return WriteToCard([&] { return WriteAt(place, piece, length); });
    });
}

// A write that failed may have moved the handle.
bool HandleBytes::WriteAt(std::uint32_t place, const void* buffer, std::uint32_t bytes) {
    if (!MoveTo(place)) {
        return false;
    }
    DWORD done = 0;
    const bool is_written = ::WriteFile(file_, buffer, bytes, &done, nullptr) != FALSE;
    is_position_known_ = is_written && done == bytes;
    if (is_position_known_) {
        position_ += done;
    } else if (is_written) {
        ::SetLastError(ERROR_DISK_FULL);
    }
    return is_position_known_;
}

bool HandleBytes::MoveTo(std::uint32_t offset) {
    if (is_position_known_ && position_ == offset) {
        return true;
    }
    // One place is also the answer of a failure.
    const bool is_ambiguous = offset == 0xFFFFFFFF;
    if (is_ambiguous) {
        ::SetLastError(ERROR_SUCCESS);
    }
    // With the high word given, the low one is an unsigned distance: places over 2 GB can be
    // reached.
    LONG high = 0;
    const DWORD reached = ::SetFilePointer(file_, static_cast<LONG>(offset), &high, FILE_BEGIN);
    const bool failed = is_ambiguous && ::GetLastError() != ERROR_SUCCESS;
    is_position_known_ = reached == offset && high == 0 && !failed;
    if (is_position_known_) {
        position_ = offset;
    }
    return is_position_known_;
}

}  // namespace tolvenar
