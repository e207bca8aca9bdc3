// Every call on the platform's object-store databases, and the handles that a restore keeps open.
#pragma once

#include "platform/win32.h"

#include <cstddef>

#include "platform/heap.h"
#include "platform/unique_resource.h"

namespace tolvenar {

// The buffer that ReadRecordProps fills. The platform allocates it from the private heap and may
// move it with every read, also with one that fails. Freed at the end.
class RecordBuffer {
public:
    RecordBuffer() = default;
    ~RecordBuffer() { Clear(); }
    RecordBuffer(const RecordBuffer&) = delete;
    RecordBuffer& operator=(const RecordBuffer&) = delete;

    BYTE* bytes() const { return bytes_; }
    DWORD size() const { return size_; }   // bytes of the record that was read last
    WORD count() const { return count_; }  // its properties

    void Clear() {
        HeapRelease(bytes_);
        bytes_ = nullptr;
        size_ = 0;
        count_ = 0;
    }

private:
    friend class DatabaseLayer;
    BYTE* bytes_ = nullptr;
    DWORD size_ = 0;
    WORD count_ = 0;
};

// Fills in what makes a new database. An absent name, a type of 0 and no sort orders are left out;
// of four sort orders or more the first three are taken, and their number stays 0. False when the
// name does not fit.
bool DescribeNewDatabase(const char16_t* name, DWORD type, WORD sort_count,
                         const SORTORDERSPEC* sort_specs, CEDBASEINFO& info);

// The wrappers give the platform's results unchanged: 0 or FALSE is a failure with a last error, a
// handle that could not be had is INVALID_HANDLE_VALUE. Used by one thread at a time.
class DatabaseLayer {
public:
    DatabaseLayer();
    ~DatabaseLayer() { CloseDatabaseCache(); }
    DatabaseLayer(const DatabaseLayer&) = delete;
    DatabaseLayer& operator=(const DatabaseLayer&) = delete;

    // Sets the volume that all calls work on back to the object store.
    void ResetVolume();

    // The id of the new database, made as DescribeNewDatabase says.
    CEOID CreateDatabase(const char16_t* name, DWORD type, WORD sort_count,
                         const SORTORDERSPEC* sort_specs);
    // The same of what is filled in already.
    CEOID CreateDatabase(CEDBASEINFO& info);
    BOOL DeleteDatabase(CEOID oid);
    // Walks the databases of `type`, of all types with 0. Closed with CloseHandle.
    HANDLE FindFirstDatabase(DWORD type);
    CEOID FindNextDatabase(HANDLE find);
    BOOL GetObjectInfo(CEOID oid, CEOIDINFO& info);
    // Opens by `oid`, or by `name` when `oid` is 0; gives the id back in `oid`.
    HANDLE OpenDatabase(CEOID& oid, const char16_t* name, CEPROPID sort_property, DWORD flags,
                        HWND notify_window);
    // Reads all properties of the record that the handle stands on; its id.
    CEOID ReadRecordProps(HANDLE database, RecordBuffer& buffer);
    // Moves to a record, one seek value; its id, 0 when there is none. `index` may be null.
    CEOID SeekRecord(HANDLE database, DWORD seek_type, DWORD value, DWORD* index = nullptr);
    BOOL SetDatabaseInfo(CEOID oid, CEDBASEINFO& info);

    // As OpenDatabase, but a database that is open already gives its handle again. Looked for by
    // name (case matters) when `oid` is 0, else by `oid`; sort order and flags are those of the
    // first opening. Given back with CloseDatabaseCached, never closed directly.
    HANDLE OpenDatabaseCached(CEOID& oid, const char16_t* name, CEPROPID sort_property, DWORD flags,
                              HWND notify_window);
    // Keeps a cached handle open, with one user less; closes any other.
    void CloseDatabaseCached(HANDLE database);
    // How many have a cached handle now; 0 for any other.
    DWORD UsersOf(HANDLE database) const;
    // Closes the database's cached handle before it is deleted or changed; false when there is
    // none.
    bool DropCachedDatabase(const char16_t* name);
    // Begins with an empty cache; nothing is closed.
    void ResetDatabaseCache();
    void CloseDatabaseCache();

private:
    static constexpr std::size_t kCacheEntries = 50;
    static constexpr std::size_t kCachedNameUnits = 34;  // with terminator

    struct CacheEntry {
        char16_t name[kCachedNameUnits];
        CEOID oid;
        HANDLE handle;  // INVALID_HANDLE_VALUE: none
        DWORD use_count;
    };
    using SeekDatabaseEx = CEOID WINAPI(HANDLE, DWORD, DWORD, WORD, LPDWORD);

    static void Clear(CacheEntry& entry);
    CacheEntry* FindCached(CEOID oid, const char16_t* name);

    CEGUID volume_;                     // calls that may write a volume's id get a copy
    SeekDatabaseEx* seek_database_ex_;  // null on devices that have CeSeekDatabase only
    CacheEntry cache_[kCacheEntries];
};

// The cached handles of one piece of work, closed at its end.
class DatabaseCacheScope {
public:
    explicit DatabaseCacheScope(DatabaseLayer& databases) : databases_(databases) {
        databases_.ResetDatabaseCache();
    }
    ~DatabaseCacheScope() { databases_.CloseDatabaseCache(); }
    DatabaseCacheScope(const DatabaseCacheScope&) = delete;
    DatabaseCacheScope& operator=(const DatabaseCacheScope&) = delete;

private:
    DatabaseLayer& databases_;
};

}  // namespace tolvenar
