// The description of one object: the head of its data block in the storage file, and the same in
// memory. docs/formats/storage-file.md. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "snapshot/records/object_record.h"

namespace tolvenar {

// Little-endian. The name stands at offset 26, zero-terminated, so the first unit of it is the last
// field here and a block with a name of n bytes has 28 + n bytes.
struct InfoBlockHead {
    union {                            // by the type of the object; 0 for a state
        std::uint32_t hive;            // registry key or value: root key handle value
        std::uint32_t attributes;      // file or folder
        std::uint32_t database_type;   // database
        std::uint32_t property_count;  // database record
    };
    union {                              // 0 for all other types
        std::uint32_t value_type;        // registry value
        std::uint32_t sort_order_count;  // database
    };
    std::uint32_t time_low;  // FILETIME
    std::uint32_t time_high;
    std::uint32_t data_bytes;
    std::uint16_t type;        // ObjectType
    std::uint16_t name_bytes;  // without terminator
    std::uint16_t zero;
    char16_t first_name_unit;
};
static_assert(sizeof(InfoBlockHead) == 28 && offsetof(InfoBlockHead, type) == 20 &&
              offsetof(InfoBlockHead, first_name_unit) == 26);

// Attributes of files that have no data of their own: folder, file in ROM, module in ROM.
constexpr std::uint32_t kAttributesWithoutData = 0x10 | 0x40 | 0x2000;

constexpr std::size_t kStateDescriptionUnits = 200;  // the data of a state, with the terminator

constexpr std::size_t kInfoHeadBytes = 28;
constexpr std::size_t kInfoNameOffset = 26;
constexpr std::size_t kInfoBlockBytes = 548;  // the longest block that is kept or read
// 260 units; the terminator behind them counts with the head.
constexpr std::size_t kMaxNameBytes = kInfoBlockBytes - kInfoHeadBytes;

// A buffer for one block, head and name. The name may be changed in place but never made longer.
class InfoBlock {
public:
    InfoBlock() { Clear(); }
    void Clear() { std::memset(bytes_, 0, sizeof bytes_); }

    InfoBlockHead& head() { return *reinterpret_cast<InfoBlockHead*>(bytes_); }
    const InfoBlockHead& head() const { return *reinterpret_cast<const InfoBlockHead*>(bytes_); }
    char16_t* name() { return reinterpret_cast<char16_t*>(bytes_ + kInfoNameOffset); }
    const char16_t* name() const {
        return reinterpret_cast<const char16_t*>(bytes_ + kInfoNameOffset);
    }
    ObjectType type() const { return static_cast<ObjectType>(head().type); }

    std::uint8_t* bytes() { return bytes_; }
    const std::uint8_t* bytes() const { return bytes_; }
    // Bytes of the block as it is stored and checksummed.
    std::size_t size() const { return kInfoHeadBytes + head().name_bytes; }

    // Sets the name from `units` UTF-16 units; false, and an empty name, when it is too long.
    bool SetName(const char16_t* text, std::size_t units);
    // Adds to the name; false, and the name as it was, when the whole is too long.
    bool AppendName(const char16_t* text, std::size_t units);

private:
    alignas(4) std::uint8_t bytes_[kInfoBlockBytes + 4];
};

// Parses a stored block out of `available` bytes (unaligned) into `block`. False when the bytes end
// inside it, or its name is of odd length or does not fit.
bool ParseInfoBlock(const void* bytes, std::size_t available, InfoBlock& block);

}  // namespace tolvenar
