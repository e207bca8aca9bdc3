// One object version: the 32-byte record of lists and of the journal file. docs/formats/journal.md.
// Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

#include "snapshot/records/object_type.h"

namespace tolvenar {

// Bits of ObjectRecord::flags.
constexpr std::uint16_t JF_PRESENT = 0x0001;       // set by every scanner
constexpr std::uint16_t JF_MATCHED = 0x0002;       // one half of a matched pair: no further match
constexpr std::uint16_t JF_ADD = 0x0004;           // in the newer list only
constexpr std::uint16_t JF_DELETE = 0x0008;        // in the older list only
constexpr std::uint16_t kFlagAddition10 = 0x0010;  // counts as an addition when a state is rebuilt
constexpr std::uint16_t kFlagAddition20 =
    0x0020;                                  // the same; a database's record count is added up
constexpr std::uint16_t JF_FAILED = 0x8000;  // the object could not be stored
constexpr std::uint16_t kAdditionFlags = JF_ADD | kFlagAddition10 | kFlagAddition20;

constexpr std::uint32_t kNoData = 0xFFFFFFFF;        // data_offset of an object without data
constexpr std::uint16_t kScannedFileState = 0xFFFF;  // state_number of a scanned file

// Little-endian, 32 bytes.
struct ObjectRecord {
    std::uint32_t dwOID;    // object-store id; 0 for registry objects and states
    std::uint32_t TolvOID;  // generated id of a registry object; 0 otherwise
    std::uint16_t info_checksum;
    std::uint16_t content_fingerprint;
    std::uint32_t propOffset;   // where its data block stands in the storage file; 0 = never stored
    std::uint32_t data_offset;  // where its data stand; kNoData when it has none; 0 in a scan
    std::uint16_t state_number;
    std::uint16_t flags;
    ObjectType type;
    std::uint8_t reserved[7];  // carried unchanged
};
static_assert(sizeof(ObjectRecord) == 32 && offsetof(ObjectRecord, propOffset) == 12 &&
              offsetof(ObjectRecord, state_number) == 20 && offsetof(ObjectRecord, type) == 24);

inline bool IsRegistryObject(const ObjectRecord& record) { return IsRegistryType(record.type); }

// What a list finds a record by. A node keeps its own copy, which may differ from its record's key.
struct ObjectKey {
    std::uint32_t state_and_info;  // state number | info checksum << 16
    std::uint32_t fingerprint;     // where the type has it in its key, else 0
    std::uint32_t dwOID;
    std::uint32_t TolvOID;

    bool operator==(const ObjectKey& other) const {
        return state_and_info == other.state_and_info && fingerprint == other.fingerprint &&
               dwOID == other.dwOID && TolvOID == other.TolvOID;
    }
    // The key of the same object whichever state it comes from.
    ObjectKey Stateless() const {
        return {state_and_info & 0xFFFF0000u, fingerprint, dwOID, TolvOID};
    }
    // The key under which the scan entered the file of such a key.
    ObjectKey OfScannedFile() const {
        return {state_and_info | kScannedFileState, fingerprint, dwOID, TolvOID};
    }
};
static_assert(sizeof(ObjectKey) == 16);

// The key under which loading and merging enter a record.
inline ObjectKey KeyOf(const ObjectRecord& record) {
    return {record.state_number | static_cast<std::uint32_t>(record.info_checksum) << 16,
            TraitsOf(record.type).fingerprint_in_key ? record.content_fingerprint : 0u,
            record.dwOID, record.TolvOID};
}

// The key of difference lists and of a rebuilt state's list.
inline ObjectKey StatelessKeyOf(const ObjectRecord& record) { return KeyOf(record).Stateless(); }

}  // namespace tolvenar
