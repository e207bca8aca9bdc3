// The head of a storage file and of the open storage in memory. docs/formats/storage-file.md.
// Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

constexpr std::size_t kStorageHeadBytes = 236;      // without description
constexpr std::size_t kDescriptionOffset = 232;
constexpr std::size_t kMaxDescriptionUnits = 200;
constexpr std::size_t kMaxDescriptionBytes = 400;
constexpr std::uint32_t kFormatFamily = 1;
constexpr std::uint32_t kFormatRevision = 4;

// Little-endian. On the medium the description has description_bytes bytes and no terminator; four
// zero bytes stand there when it has none. In memory it is zero-terminated, 200 units at most.
struct StorageHeader {
    char16_t deviceName[100];
    std::uint32_t processorType;
    std::uint32_t osMajor;
    std::uint32_t osMinor;
    std::uint32_t formatFamily;
    std::uint32_t formatRevision;
    std::uint32_t created_low;  // FILETIME, UTC
    std::uint32_t created_high;
    std::uint32_t descriptionBytes;
    char16_t description[kMaxDescriptionUnits];
    std::uint8_t spare[4];
};
static_assert(sizeof(StorageHeader) == 636 && offsetof(StorageHeader, processorType) == 200 &&
              offsetof(StorageHeader, created_low) == 220 &&
              offsetof(StorageHeader, descriptionBytes) == 228 &&
              offsetof(StorageHeader, description) == kDescriptionOffset);

}  // namespace tolvenar
