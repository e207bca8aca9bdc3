// Walks the object store's databases and makes a record of every database and database record.
#pragma once

#include "snapshot/records/left_out.h"
#include "snapshot/records/object_list.h"
#include "storage/objects/database_layer.h"
#include "storage/objects/object_info.h"

namespace tolvenar {

struct DatabaseScan {
    ObjectList& list;
    ObjectInfo& info;
    DatabaseLayer& databases;
    LeftOut& left_out;  // gets what is there and cannot be read, and a lack of memory
};

// A database or one of its records as the walk meets it.
struct DatabaseEntry {
    bool is_database;
    CEOID oid;
    CEOID database_oid;  // its own or that of its database
    const char16_t* database_name;
    WORD count;  // database: number of records; record: number of properties
    // Record: the properties as the platform gives them, strings and blobs as pointers into this
    // buffer, a fresh one; the maker may change it.
    void* properties;
    DWORD buffer_bytes;
};

using DatabaseMaker = void (*)(DatabaseScan& scan, const DatabaseEntry& entry);

// Visits every database, each before its records. Databases of the recycle bin are passed over.
// Databases that cannot be listed or opened and records that cannot be read are left out.
void ScanDatabases(DatabaseScan& scan, DatabaseMaker maker);

// Enters the record of one object; one that cannot be described is left out.
void MakeDatabaseObject(DatabaseScan& scan, const DatabaseEntry& entry);

}  // namespace tolvenar
