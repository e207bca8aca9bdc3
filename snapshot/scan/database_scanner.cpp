#include "snapshot/scan/database_scanner.h"

#include <algorithm>

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
    buffer.Clear();
    const CEOID oid = layer.ReadRecordProps(database, buffer);
    if (oid != 0 || ::GetLastError() != ERROR_NO_DATA) {
        return oid;
    }
    buffer.Clear();
    const CEOID empty_record = layer.SeekRecord(database, CEDB_SEEK_BEGINNING, position);
    layer.SeekRecord(database, CEDB_SEEK_BEGINNING, position + 1);
    return empty_record;
}

// A larger buffer of before would be told as the size of the record.
void VisitRecords(DatabaseScan& scan, HANDLE database, CEOID database_oid, const char16_t* name,
                  DatabaseMaker maker) {
    RecordBuffer buffer;
    for (DWORD position = 0;; ++position) {
        const CEOID oid = ReadNextRecord(scan.databases, database, position, buffer);
        if (oid == 0) {
            return;
        }
        maker(scan,
              {false, oid, database_oid, name, buffer.count(), buffer.bytes(), buffer.size()});
    }
}

void VisitDatabase(DatabaseScan& scan, CEOID oid, DatabaseMaker maker) {
    CEOIDINFO info;
    if (!scan.databases.GetObjectInfo(oid, info) || info.wObjType != OBJTYPE_DATABASE) {
        return;
    }
    // The platform may fill the name to the last unit.
    char16_t name[CEDB_MAXDBASENAMELEN + 1] = {};
    std::copy_n(Utf16(info.infDatabase.szDbaseName), CEDB_MAXDBASENAMELEN, name);
    if (IsExcludedDatabase(name)) {
        return;
    }
    const UniqueHandle database(
        scan.databases.OpenDatabase(oid, nullptr, 0, CEDB_AUTOINCREMENT, nullptr));
    if (!database) {
        scan.left_out.Add(ObjectType::kDatabase, name);
        return;
    }
    maker(scan, {true, oid, oid, name, info.infDatabase.wNumRecords, nullptr, 0});
    VisitRecords(scan, database.get(), oid, name, maker);
}

bool Describe(ObjectInfo& info, const DatabaseEntry& entry, InfoBlock& block) {
    return entry.is_database
               ? info.GetOIDInfo(0, entry.oid, block)
               : info.DescribeReadRecord({entry.oid, entry.database_oid, entry.database_name,
                                          entry.count, entry.buffer_bytes},
                                         block);
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
    if (!Describe(scan.info, entry, block)) {
        return;
    }
    record.dwOID = entry.oid;
    record.info_checksum = Checksum16(block.bytes(), block.size());
    record.flags = JF_PRESENT;
    record.type = entry.is_database ? ObjectType::kDatabase : ObjectType::kDatabaseRecord;
    scan.list.AddObject(record);
}

}  // namespace tolvenar
