// The storage file mapped for reading, and the copying of stored data out of it.
#pragma once

#include "platform/win32.h"

#include <cstdint>

#include "platform/unique_resource.h"
#include "storage/format/byte_file.h"

namespace tolvenar {

// The storage file, mapped as a whole for as long as this lives. Views are made piece by piece.
class StorageMapping {
public:
    // False, with the last error of the call that failed, when the file cannot be opened or mapped.
    bool Open(const char16_t* sav_path);

    HANDLE handle() const { return mapping_.get(); }
    std::uint32_t size() const { return size_; }  // bytes

private:
    UniqueHandle mapping_;
    std::uint32_t size_ = 0;
};

// The mapped storage file as bytes at an offset.
class MappedBytes final : public ByteReader {
public:
    explicit MappedBytes(const StorageMapping& storage) : storage_(storage) {}

    // Behind the end nothing is read and the last error is ERROR_HANDLE_EOF.
    bool ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                std::uint32_t& read) override;
    bool Size(std::uint32_t& bytes) override;

private:
    const StorageMapping& storage_;
};

// Maps `length` bytes of the storage file at `offset`. The view begins at `offset` rounded down to
// the allocation granularity; `adjust` is the distance from there to `offset`. None, with a last
// error, when the bytes are not all inside the file, there are none, or there is no mapping.
UniqueView MapStorageView(const StorageMapping& storage, std::uint32_t offset, std::uint32_t length,
                          std::uint32_t& adjust);

// A mapped range of stored data; `bytes` is null when it could not be mapped or has no length.
struct StoredBytes {
    UniqueView view;
    const std::uint8_t* bytes = nullptr;
    std::uint32_t length = 0;

    // True when everything that was asked for is there.
    bool complete() const { return bytes != nullptr || length == 0; }
};
StoredBytes MapStoredBytes(const StorageMapping& storage, std::uint32_t offset,
                           std::uint32_t length);

// Appends `length` bytes of stored data to `file`, in chunks that memory and object store have room
// for, with a rest after each so that they can settle. False when there is no room for the
// remaining bytes (the last error is then the one from before) or a chunk cannot be mapped or
// written. `bytes_written` counts what was written whole.
bool WriteStoredData(HANDLE file, const StorageMapping& storage, std::uint32_t data_offset,
                     std::uint32_t length, std::uint32_t& bytes_written);

}  // namespace tolvenar
