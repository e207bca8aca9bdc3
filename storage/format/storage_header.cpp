#include "storage/format/storage_header.h"

#include <cstring>

namespace tolvenar {
namespace {

constexpr std::size_t kNameUnits = sizeof(StorageHeader::deviceName) / sizeof(char16_t);

// How much of a file its reader insists on. A description of one unit makes a head of 234 bytes.
std::size_t LeastBytes(std::uint32_t description_bytes) {
    const bool shorter = description_bytes > 0 && description_bytes < 4;
    return shorter ? kDescriptionOffset + description_bytes : kStorageHeadBytes;
}

}  // namespace

bool ParseStorageHeader(const void* bytes, std::size_t available, StorageHeader& header) {
    header = {};
    if (available < kDescriptionOffset) {
        return false;
    }
    const std::size_t whole = available < sizeof header ? available : sizeof header;
    std::memcpy(&header, bytes, whole);
    if (available < LeastBytes(header.descriptionBytes)) {
        header = {};
        return false;
    }
    if (header.descriptionBytes > kMaxDescriptionBytes) {
        header.descriptionBytes = kMaxDescriptionBytes;
    }
    header.deviceName[kNameUnits - 1] = 0;
    // What was read along behind the description is the first block.
    const std::size_t units = header.descriptionBytes / sizeof(char16_t);
    for (std::size_t i = units; i < kMaxDescriptionUnits; ++i) {
        header.description[i] = 0;
    }
    header.description[kMaxDescriptionUnits - 1] = 0;
    return true;
}

std::size_t StorageHeaderBytesToRead(const StorageHeader& header) {
    const std::size_t bytes = header.descriptionBytes;
    return kStorageHeadBytes + (bytes < kMaxDescriptionBytes ? bytes : kMaxDescriptionBytes);
}

std::size_t StorageHeadSize(const StorageHeader& header) {
    return header.descriptionBytes == 0 ? kStorageHeadBytes
                                        : kDescriptionOffset + header.descriptionBytes;
}

void SetDescription(StorageHeader& header, const char16_t* text, std::size_t units) {
    const std::size_t kept = units < kMaxDescriptionUnits ? units : kMaxDescriptionUnits;
    std::memset(header.description, 0, sizeof header.description);
    std::memcpy(header.description, text, kept * sizeof(char16_t));
    header.description[kMaxDescriptionUnits - 1] = 0;
    header.descriptionBytes = static_cast<std::uint32_t>(kept * sizeof(char16_t));
}

OpenStorageResult CheckStorageHeader(const StorageHeader& stored, const StorageHeader& device) {
    if (stored.formatFamily == 1 && stored.formatRevision == 0) {
        return OpenStorageResult::kUnsupportedRevision;
    }
    const bool same_device = stored.processorType == device.processorType &&
                             stored.osMajor == device.osMajor && stored.osMinor == device.osMinor &&
                             stored.formatFamily == device.formatFamily;
    return same_device && stored.formatRevision <= device.formatRevision
               ? OpenStorageResult::kOpened
               : OpenStorageResult::kOtherDevice;
}

const char16_t* ProcessorName(std::uint32_t processorType) {
    constexpr struct {
        std::uint32_t type;
        const char16_t* name;
    } kProcessors[] = {
        {2577, u"StrongARM"},
        {4000, u"MIPS"},
        {10003, u"SH3"},
        {10005, u"SH4"},
    };
    for (const auto& row : kProcessors) {
        if (row.type == processorType) {
            return row.name;
        }
    }
    return u"Unknown";
}

}  // namespace tolvenar
