// Short ways to write records and to look at lists in tests. Header only and platform-free.
#pragma once

#include <cstring>
#include <memory>
#include <vector>

#include "snapshot/records/object_list.h"

namespace tolvenar {

constexpr auto kFile = ObjectType::kFile;  // or a folder
constexpr auto kValue = ObjectType::kRegistryValue;
constexpr auto kKey = ObjectType::kRegistryKey;
constexpr auto kDatabase = ObjectType::kDatabase;
constexpr auto kDbRecord = ObjectType::kDatabaseRecord;
constexpr auto kState = ObjectType::kState;

inline ObjectRecord MakeRecord(ObjectType type, std::uint32_t dwOID, std::uint32_t TolvOID,
                               std::uint16_t info_checksum = 0, std::uint16_t fingerprint = 0) {
    ObjectRecord record{};
    record.type = type;
    record.dwOID = dwOID;
    record.TolvOID = TolvOID;
    record.info_checksum = info_checksum;
    record.content_fingerprint = fingerprint;
    record.flags = JF_PRESENT;
    return record;
}

// The same as a record of the journal.
inline ObjectRecord JournalRecord(ObjectRecord record, std::uint16_t state, std::uint16_t flags,
                                  std::uint32_t propOffset) {
    record.state_number = state;
    record.flags = flags;
    record.propOffset = propOffset;
    return record;
}

struct KeyedRecord {
    ObjectKey key;
    ObjectRecord record;
    bool operator==(const KeyedRecord& other) const {
        return key == other.key && std::memcmp(&record, &other.record, sizeof record) == 0;
    }
};

// What a walk from the front meets.
inline std::vector<KeyedRecord> Walk(const ObjectList& list) {
    std::vector<KeyedRecord> result;
    for (const ObjectList::Node& node : list) {
        result.push_back({node.key, *node.record});
    }
    return result;
}

// The records of a list, from its front, and one field of each.
inline std::vector<ObjectRecord> RecordsOf(const ObjectList& list) {
    std::vector<ObjectRecord> records;
    for (const KeyedRecord& entry : Walk(list)) {
        records.push_back(entry.record);
    }
    return records;
}

template <typename Field>
std::vector<Field> FieldsOf(const ObjectList& list, Field ObjectRecord::*field) {
    std::vector<Field> fields;
    for (const ObjectRecord& record : RecordsOf(list)) {
        fields.push_back(record.*field);
    }
    return fields;
}

// A list whose walk meets the records in the order given, each under its own key.
inline std::unique_ptr<ObjectList> ListOf(const std::vector<ObjectRecord>& records) {
    auto list = ObjectList::CreateList();
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        list->AddObject(*record);
    }
    return list;
}

}  // namespace tolvenar
