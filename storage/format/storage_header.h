// The head of a storage file and of the open storage in memory. docs/formats/storage-file.md.
// Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

constexpr std::size_t kStorageHeadBytes = 236;  // without description
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

// Takes a header out of the first `available` bytes of a storage file, which may be cut off behind
// the head: the description is then what is there. False when the head itself is not whole.
bool ParseStorageHeader(const void* bytes, std::size_t available, StorageHeader& header);
// Bytes that a reader asks for, so that all of the description is among them.
std::size_t StorageHeaderBytesToRead(const StorageHeader& header);
// Bytes that the head takes in the file; the first block stands behind them.
std::size_t StorageHeadSize(const StorageHeader& header);

// Takes the first 200 units of `text` as the description; the last unit of the buffer stays zero.
void SetDescription(StorageHeader& header, const char16_t* text, std::size_t units);

// Why a storage was not opened; the numbers are the system's.
enum class OpenStorageResult {
    kOpened = 0,
    kHeaderUnreadable = 1,
    kObjectIdsNotReset = 2,
    kOtherDevice = 3,  // or a newer revision (docs/oddities.md, 5)
    kFileMissing = 4,  // also when another program holds the file: see IsReallyAbsent
    kOutOfMemory = 5,
    kUnsupportedRevision = 6,
};
// Decides whether a stored header may be opened on the device that `device` describes.
OpenStorageResult CheckStorageHeader(const StorageHeader& stored, const StorageHeader& device);

// "StrongARM" and its like; "Unknown" for a number without a name.
const char16_t* ProcessorName(std::uint32_t processorType);

}  // namespace tolvenar
