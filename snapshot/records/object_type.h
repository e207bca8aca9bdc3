// What an object record can be of, and what follows from it. Platform-free.
#pragma once

#include <cstdint>

namespace tolvenar {

// Any value of the byte may be met in a damaged journal.
enum class ObjectType : std::uint8_t {
    kNone = 0,
    kRegistryValue = 1,
    kRegistryKey = 2,
    kDatabase = 4,
    kDatabaseRecord = 8,
    kFile = 16,  // or folder
    kState = 32,
};

// Where the id of an object comes from.
enum class IdSource : std::uint8_t {
    kObjectStore,  // dwOID
    kGenerated,    // TolvOID, for what is in the registry
    kNone,
};

// What the content fingerprint of a record is.
enum class FingerprintKind : std::uint8_t {
    kData,         // checksum of the data
    kRecordCount,  // number of a database's records, which is no property of the database
    kFixed,        // the same for all
};

// When a restore writes an object back: files and folders first.
enum class RestorePhase : std::uint8_t { kFiles, kOthers };

struct TypeTraits {
    bool is_known;
    IdSource id;
    FingerprintKind fingerprint;
    bool fingerprint_in_key;
    RestorePhase phase;
};

// The table: a row for each type, the last one for every other value of the byte.
constexpr TypeTraits TraitsOf(ObjectType type) {
    using Id = IdSource;
    using Print = FingerprintKind;
    using Phase = RestorePhase;
    // clang-format off
    switch (type) {
        case ObjectType::kRegistryValue:  return {true,  Id::kGenerated,   Print::kData,        true,  Phase::kOthers};
        case ObjectType::kRegistryKey:    return {true,  Id::kGenerated,   Print::kFixed,       false, Phase::kOthers};
        case ObjectType::kDatabase:       return {true,  Id::kObjectStore, Print::kRecordCount, false, Phase::kOthers};
        case ObjectType::kDatabaseRecord: return {true,  Id::kObjectStore, Print::kData,        true,  Phase::kOthers};
        case ObjectType::kFile:           return {true,  Id::kObjectStore, Print::kData,        false, Phase::kFiles};
        case ObjectType::kState:          return {true,  Id::kNone,        Print::kData,        false, Phase::kOthers};
        default:                          return {false, Id::kObjectStore, Print::kData,        false, Phase::kOthers};
    }
    // clang-format on
}

constexpr bool IsKnownType(ObjectType type) { return TraitsOf(type).is_known; }
constexpr bool HasObjectStoreId(ObjectType type) {
    return TraitsOf(type).id == IdSource::kObjectStore;
}
constexpr bool IsRegistryType(ObjectType type) { return TraitsOf(type).id == IdSource::kGenerated; }
constexpr bool CarriesDataChecksum(ObjectType type) {
    return TraitsOf(type).fingerprint == FingerprintKind::kData;
}
constexpr bool CountsRecords(ObjectType type) {
    return TraitsOf(type).fingerprint == FingerprintKind::kRecordCount;
}

}  // namespace tolvenar
