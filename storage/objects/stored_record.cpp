#include "storage/objects/stored_record.h"

#include "platform/unique_resource.h"
#include "storage/format/property_encoding.h"

namespace tolvenar {

bool ReadRecordOf(DatabaseLayer& databases, const char16_t* database_name, CEOID oid,
                  RecordBuffer& buffer) {
    CEOID database_oid = 0;
    const UniqueHandle database(databases.OpenDatabase(database_oid, database_name, 0, 0, nullptr));
    if (!database || databases.SeekRecord(database.get(), CEDB_SEEK_CEOID, oid) == 0) {
        return false;
    }
    return databases.ReadRecordProps(database.get(), buffer) != 0 ||
           ::GetLastError() == ERROR_NO_DATA;
}

std::uint16_t FingerprintOfProperties(void* properties, DWORD buffer_bytes, WORD count) {
    const auto base = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(properties));
    std::uint16_t checksum = 0;
    if (count == 0 || !PointersToOffsets(properties, buffer_bytes, count, base) ||
        !ChecksumOfProperties(properties, buffer_bytes, count, checksum)) {
        return 0;
    }
    return checksum;
}

bool IsStoredRecord(DatabaseLayer& databases, const InfoBlock& block, const ObjectRecord& record) {
    // The place in the handle that the restore writes through stays.
    RecordBuffer buffer;
    if (record.dwOID == 0 || !ReadRecordOf(databases, block.name(), record.dwOID, buffer)) {
        return false;
    }
    const DWORD bytes = buffer.count() == 0 ? 0 : buffer.size();
    return buffer.count() == block.head().property_count && bytes == block.head().data_bytes &&
           FingerprintOfProperties(buffer.bytes(), bytes, buffer.count()) ==
               record.content_fingerprint;
}

bool HoldsProperties(DatabaseLayer& databases, const InfoBlock& block, CEOID oid,
                     const std::uint8_t* data) {
    RecordBuffer buffer;
    if (!ReadRecordOf(databases, block.name(), oid, buffer) ||
        buffer.count() != block.head().property_count) {
        return false;
    }
    if (buffer.count() == 0) {
        return true;
    }
    const auto base = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(buffer.bytes()));
    return buffer.size() == block.head().data_bytes &&
           PointersToOffsets(buffer.bytes(), buffer.size(), buffer.count(), base) &&
           SameProperties(buffer.bytes(), data, buffer.size(), buffer.count());
}

}  // namespace tolvenar
