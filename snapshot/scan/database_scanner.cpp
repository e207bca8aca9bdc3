#include "snapshot/scan/database_scanner.h"

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/compare/exclusion.h"
#include "snapshot/records/checksum.h"
#include "storage/objects/stored_record.h"

namespace tolvenar {
namespace {

constexpr DWORD kAllTypes = 0;

// Reads the record that the handle stands on, number `position` of the database, and moves on. A
// record without properties may read as "no data": it is then asked for by its place, since the
// platform does not say whether such a read moves on. 0 when there are no more records.
CEOID ReadNextRecord(DatabaseLayer& layer, HANDLE database, DWORD position, RecordBuffer& buffer) {
    const CEOID oid = layer.ReadRecordProps(database, buffer);
    if (oid != 0 || ::GetLastError() != ERROR_NO_DATA) {
        return oid;
    }
    const CEOID empty_record = layer.SeekRecord(database, CEDB_SEEK_BEGINNING, position);
    layer.SeekRecord(database, CEDB_SEEK_BEGINNING, position + 1);
    return empty_record;
}

void VisitRecords(DatabaseScan& scan, HANDLE database, DatabaseMaker maker) {
    RecordBuffer buffer;
    for (DWORD position = 0;; ++position) {
        const CEOID oid = ReadNextRecord(scan.databases, database, position, buffer);
        if (oid == 0) {
            return;
        }
        maker(scan, {false, oid, buffer.count(), buffer.bytes(), buffer.size()});
    }
}

void VisitDatabase(DatabaseScan& scan, CEOID oid, DatabaseMaker maker) {
    CEOIDINFO info;
    if (!scan.databases.GetObjectInfo(oid, info) || info.wObjType != OBJTYPE_DATABASE) {
        return;
    }
    const char16_t* name = Utf16(info.infDatabase.szDbaseName);
    if (IsExcludedDatabase(name)) {
        return;
    }
    const UniqueHandle database(
        scan.databases.OpenDatabase(oid, nullptr, 0, CEDB_AUTOINCREMENT, nullptr));
    if (!database) {
        scan.left_out.Add(ObjectType::kDatabase, name);
        return;
    }
    maker(scan, {true, oid, info.infDatabase.wNumRecords, nullptr, 0});
    VisitRecords(scan, database.get(), maker);
}

}  // namespace

void ScanDatabases(DatabaseScan& scan, DatabaseMaker maker) {
    const UniqueHandle find(scan.databases.FindFirstDatabase(kAllTypes));
    if (!find) {
        return;
    }
    while (const CEOID oid = scan.databases.FindNextDatabase(find.get())) {
        VisitDatabase(scan, oid, maker);
    }
}

void MakeDatabaseObject(DatabaseScan& scan, const DatabaseEntry& entry) {
    ObjectRecord record{};
    record.content_fingerprint =
        entry.is_database
            ? entry.count
            : FingerprintOfProperties(entry.properties, entry.buffer_bytes, entry.count);
    InfoBlock block;
    if (!scan.info.GetOIDInfo(0, entry.oid, block)) {
        return;
    }
    record.dwOID = entry.oid;
    record.info_checksum = Checksum16(block.bytes(), block.size());
    record.flags = JF_PRESENT;
    record.type = entry.is_database ? ObjectType::kDatabase : ObjectType::kDatabaseRecord;
    scan.list.AddObject(record);
}

}  // namespace tolvenar
