#include "storage/objects/stored_record.h"

#include "platform/unique_resource.h"
#include "storage/format/property_encoding.h"

namespace tolvenar {
namespace {

// A record without properties reads as "no data".
bool ReadRecord(DatabaseLayer& databases, HANDLE database, RecordBuffer& buffer) {
    return databases.ReadRecordProps(database, buffer) != 0 || ::GetLastError() == ERROR_NO_DATA;
}

}  // namespace

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
    CEOID database_oid = 0;
    // A handle of its own: the place in the one that the restore writes through stays.
    const UniqueHandle database(databases.OpenDatabase(database_oid, block.name(), 0, 0, nullptr));
    RecordBuffer buffer;
    if (!database || record.dwOID == 0 ||
        databases.SeekRecord(database.get(), CEDB_SEEK_CEOID, record.dwOID) == 0 ||
        !ReadRecord(databases, database.get(), buffer)) {
        return false;
    }
    const DWORD bytes = buffer.count() == 0 ? 0 : buffer.size();
    return buffer.count() == block.head().property_count && bytes == block.head().data_bytes &&
           FingerprintOfProperties(buffer.bytes(), bytes, buffer.count()) ==
               record.content_fingerprint;
}

}  // namespace tolvenar
