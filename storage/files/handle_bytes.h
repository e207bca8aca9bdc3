// A file of the platform as bytes at an offset.
#pragma once

#include "platform/win32.h"

#include <cstdint>

#include "platform/unique_resource.h"
#include "storage/format/byte_file.h"
#include "storage/format/storage_names.h"

namespace tolvenar {

// A file of normal attributes; empty when it cannot be opened, with the last error telling why.
UniqueHandle OpenFile(const char16_t* path, DWORD access, DWORD sharing, DWORD disposition);

// A file for reading and writing; an existing one for reading only where it or its card is
// write-protected.
UniqueHandle OpenForWritingIfAllowed(const char16_t* path, DWORD sharing, DWORD disposition);

// The storage file of `names` as operations that only read have it: others may read meanwhile.
UniqueHandle OpenSavFile(const StorageNames& names);

// The same for a backup, which appends: empty where the file is write-protected.
UniqueHandle OpenSavFileForWriting(const StorageNames& names);

// Sees that what was written is on the card. A card whose driver knows no flushing keeps it as it
// does.
bool Flush(HANDLE file);

// True when the file is there and cannot be written because it or its card is write-protected. One
// that another program holds is none of these.
bool IsWriteProtected(const char16_t* path);

// Reads and writes behind a handle. The position is known, so that what goes on where the last call
// ended costs no seek.
class HandleBytes final : public ByteReader, public ByteAppender {
public:
    // `file` is borrowed; its position is at its begin, and nobody else moves it.
    explicit HandleBytes(HANDLE file) : file_(file) {}
    HandleBytes(const HandleBytes&) = delete;
    HandleBytes& operator=(const HandleBytes&) = delete;

    bool ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                std::uint32_t& read) override;
    bool Size(std::uint32_t& bytes) override;
    // A card that is loaded again is waited for.
    bool Append(const void* buffer, std::uint32_t bytes) override;
    bool MoveTo(std::uint32_t offset) override;

private:
    bool WriteAt(std::uint32_t place, const void* buffer, std::uint32_t bytes);

    HANDLE file_;
    std::uint32_t position_ = 0;
    bool is_position_known_ = true;
};

}  // namespace tolvenar
