#include "snapshot/scan/database_scanner.h"

#include <algorithm>

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/compare/exclusion.h"
#include "snapshot/records/checksum.h"
#include "snapshot/scan/database_listing.h"
#include "snapshot/scan/record_walk.h"
#include "storage/objects/stored_record.h"

namespace tolvenar {
namespace {

// A walk that began again meets a record again.
void LeaveOutRecord(DatabaseScan& scan, const char16_t* database_name, CEOID oid) {
    if (!scan.left_out.Contains(ObjectType::kDatabaseRecord, database_name, oid)) {
        scan.left_out.Add(ObjectType::kDatabaseRecord, database_name, oid);
    }
}

void VisitRecords(DatabaseScan& scan, RecordWalk& walk, CEOID database_oid, const char16_t* name,
                  DatabaseMaker maker) {
    for (;;) {
        switch (walk.Next()) {
            case RecordWalk::Step::kRead:
                maker(scan, {false, walk.oid(), database_oid, name, walk.record().count(),
                             walk.record().bytes(), walk.record().size()});
                break;
            case RecordWalk::Step::kUnread: LeaveOutRecord(scan, name, walk.oid()); break;
            case RecordWalk::Step::kCut:
                scan.left_out.Add(ObjectType::kDatabaseRecord, name);
                return;
            case RecordWalk::Step::kNoMemory: scan.left_out.NoteLackOfMemory(); return;
            case RecordWalk::Step::kEnd: return;
        }
    }
}

// A database that was deleted since it was listed is not there.
void NoteUndescribed(DatabaseScan& scan, DWORD error) {
    if (error != ERROR_INVALID_HANDLE) {
        scan.left_out.NoteUnlistedDatabases();
    }
}

void VisitDatabase(DatabaseScan& scan, CEOID oid, DatabaseMaker maker) {
    CEOIDINFO info;
    if (!scan.databases.GetObjectInfo(oid, info)) {
        NoteUndescribed(scan, ::GetLastError());
        return;
    }
    if (info.wObjType != OBJTYPE_DATABASE) {
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
    RecordWalk walk(scan.databases, database.get(), info.infDatabase.wNumRecords);
    VisitRecords(scan, walk, oid, name, maker);
}

bool Describe(ObjectInfo& info, const DatabaseEntry& entry, InfoBlock& block) {
    return entry.is_database
               ? info.GetOIDInfo(0, entry.oid, block)
               : info.DescribeReadRecord({entry.oid, entry.database_oid, entry.database_name,
                                          entry.count, entry.buffer_bytes},
                                         block);
}

void LeaveOut(DatabaseScan& scan, const DatabaseEntry& entry) {
    if (entry.is_database) {
        scan.left_out.Add(ObjectType::kDatabase, entry.database_name);
    } else {
        LeaveOutRecord(scan, entry.database_name, entry.oid);
    }
}

}  // namespace

void ScanDatabases(DatabaseScan& scan, DatabaseMaker maker) {
    DatabaseListing listing;
    switch (listing.Read(scan.databases)) {
        case DatabaseListing::End::kWhole: break;
        case DatabaseListing::End::kCut: scan.left_out.NoteUnlistedDatabases(); break;
        case DatabaseListing::End::kNoMemory: scan.left_out.NoteLackOfMemory(); break;
    }
    for (const CEOID oid : listing) {
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
        LeaveOut(scan, entry);
        return;
    }
    record.dwOID = entry.oid;
    record.info_checksum = Checksum16(block.bytes(), block.size());
    record.flags = JF_PRESENT;
    record.type = entry.is_database ? ObjectType::kDatabase : ObjectType::kDatabaseRecord;
    if (!scan.list.AddObject(record)) {
        scan.left_out.NoteLackOfMemory();
    }
}

}  // namespace tolvenar
