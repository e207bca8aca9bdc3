#include "storage/files/storage_view.h"

#include <algorithm>
#include <cstring>

#include "platform/file_mapping.h"
#include "platform/text.h"
#include "storage/files/write_pieces.h"

namespace tolvenar {
namespace {

constexpr DWORD kRestPerMebibyteMs = 500;
constexpr DWORD kRandomAccess = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS;

// The part of the remaining bytes that is copied next. 0 if memory and store cannot hold the rest;
// the last error is unchanged.
std::uint32_t NextChunk(std::uint32_t remaining) {
    const DWORD error = ::GetLastError();
    MEMORYSTATUS memory{};
    memory.dwLength = sizeof memory;
    ::GlobalMemoryStatus(&memory);
    STORE_INFORMATION store{};
    if (!::GetStoreInformation(&store)) {
        store.dwFreeSize = 0;
    }

    const DWORD granularity = AllocationGranularity();
    const std::uint32_t in_store = store.dwFreeSize / granularity * granularity;
    const std::uint32_t in_memory =
        static_cast<std::uint32_t>(memory.dwAvailPhys) / granularity * granularity;
    const std::uint32_t smaller = std::min(in_store, in_memory);
    if (static_cast<std::uint64_t>(in_store) + in_memory < remaining || smaller == 0) {
        ::SetLastError(error);
        return 0;
    }
    return std::min(smaller, remaining);
}

bool WriteChunk(HANDLE file, const StorageMapping& storage, std::uint32_t offset,
                std::uint32_t length) {
    StoredBytes data = MapStoredBytes(storage, offset, length);
    const auto write = [&](std::uint32_t done, std::uint32_t piece) {
        DWORD written = 0;
        return ::WriteFile(file, data.bytes + done, piece, &written, nullptr) && written == piece;
    };
    if (data.bytes == nullptr || !WriteInPieces(length, write)) {
        return false;
    }
    data.view.Close();
    return true;
}

}  // namespace

bool StorageMapping::Open(const char16_t* sav_path) {
    DWORD size = 0;
    mapping_ =
        MapFileForReading(Wide(sav_path), FILE_SHARE_READ | FILE_SHARE_WRITE, kRandomAccess, &size);
    size_ = size;
    return static_cast<bool>(mapping_);
}

bool MappedBytes::ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                         std::uint32_t& read) {
    read = 0;
    if (offset >= storage_.size()) {
        ::SetLastError(ERROR_HANDLE_EOF);
        return true;
    }
    const std::uint32_t length = std::min(bytes, storage_.size() - offset);
    const StoredBytes mapped = MapStoredBytes(storage_, offset, length);
    if (!mapped.complete()) {
        return false;
    }
    if (length != 0) {
        std::memcpy(buffer, mapped.bytes, length);
    }
    read = length;
    return true;
}

bool MappedBytes::Size(std::uint32_t& bytes) {
    bytes = storage_.size();
    return storage_.handle() != nullptr;
}

UniqueView MapStorageView(const StorageMapping& storage, std::uint32_t offset, std::uint32_t length,
                          std::uint32_t& adjust) {
    adjust = 0;
    if (storage.handle() == nullptr || length == 0) {
        ::SetLastError(ERROR_INVALID_PARAMETER);
        return UniqueView();
    }
    if (offset > storage.size() || length > storage.size() - offset) {
        ::SetLastError(ERROR_HANDLE_EOF);
        return UniqueView();
    }
    adjust = offset % AllocationGranularity();
    return UniqueView(
        ::MapViewOfFile(storage.handle(), FILE_MAP_READ, 0, offset - adjust, length + adjust));
}

StoredBytes MapStoredBytes(const StorageMapping& storage, std::uint32_t offset,
                           std::uint32_t length) {
    StoredBytes data;
    data.length = length;
    std::uint32_t adjust = 0;
    data.view = MapStorageView(storage, offset, length, adjust);
    if (data.view) {
        data.bytes = static_cast<const std::uint8_t*>(data.view.get()) + adjust;
    }
    return data;
}

bool WriteStoredData(HANDLE file, const StorageMapping& storage, std::uint32_t data_offset,
                     std::uint32_t length, std::uint32_t& bytes_written) {
    bytes_written = 0;
    while (bytes_written < length) {
        const std::uint32_t chunk = NextChunk(length - bytes_written);
        if (chunk == 0) {
            return false;
        }
        // A sum past 32 bits is past the end of any storage file.
        if (data_offset > ~bytes_written ||
            !WriteChunk(file, storage, data_offset + bytes_written, chunk)) {
            return false;
        }
        bytes_written += chunk;
        ::FlushFileBuffers(file);
        const DWORD rest_ms = (chunk >> 20) * kRestPerMebibyteMs;
        if (rest_ms != 0) {
            ::Sleep(rest_ms);
        }
    }
    return true;
}

}  // namespace tolvenar
