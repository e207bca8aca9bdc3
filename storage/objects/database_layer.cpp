#include "storage/objects/database_layer.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "platform/system_function.h"
#include "platform/text.h"

namespace tolvenar {
namespace {

// Of the four sort orders that a database has room for, a new one is given three (docs/oddities.md,
// 7). Who makes one fills in all of them.
constexpr WORD kMaxNewSortOrders = 3;

}  // namespace

bool DescribeNewDatabase(const char16_t* name, DWORD type, WORD sort_count,
                         const SORTORDERSPEC* sort_specs, CEDBASEINFO& info) {
    info = CEDBASEINFO{};
    if (name != nullptr) {
        const std::u16string_view text(name);
        if (text.size() >= CEDB_MAXDBASENAMELEN) {
            return false;
        }
        text.copy(Utf16(info.szDbaseName), text.size());
        info.dwFlags |= CEDB_VALIDNAME;
    }
    if (type != 0) {
        info.dwFlags |= CEDB_VALIDTYPE;
        info.dwDbaseType = type;
    }
    if (sort_count != 0 && sort_specs != nullptr) {
        info.dwFlags |= CEDB_VALIDSORTSPEC;
        const WORD copied = sort_count < CEDB_MAXSORTORDER ? sort_count : kMaxNewSortOrders;
        for (WORD i = 0; i < copied; ++i) {
            info.rgSortSpecs[i] = sort_specs[i];
        }
    }
    return true;
}

DatabaseLayer::DatabaseLayer() {
    ResetVolume();
    ResetDatabaseCache();
    seek_database_ex_ = FindSystemFunction<SeekDatabaseEx>(L"CeSeekDatabaseEx");
}

void DatabaseLayer::ResetVolume() { volume_ = CEGUID{}; }

CEOID DatabaseLayer::CreateDatabase(const char16_t* name, DWORD type, WORD sort_count,
                                    const SORTORDERSPEC* sort_specs) {
    CEDBASEINFO info;
    if (!DescribeNewDatabase(name, type, sort_count, sort_specs, info)) {
        ::SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return CreateDatabase(info);
}

CEOID DatabaseLayer::CreateDatabase(CEDBASEINFO& info) {
    return ::CeCreateDatabaseEx(&volume_, &info);
}

BOOL DatabaseLayer::DeleteDatabase(CEOID oid) { return ::CeDeleteDatabaseEx(&volume_, oid); }

HANDLE DatabaseLayer::FindFirstDatabase(DWORD type) {
    CEGUID volume = volume_;
    return ::CeFindFirstDatabaseEx(&volume, type);
}

CEOID DatabaseLayer::FindNextDatabase(HANDLE find) {
    CEGUID volume = volume_;
    return ::CeFindNextDatabaseEx(find, &volume);
}

BOOL DatabaseLayer::GetObjectInfo(CEOID oid, CEOIDINFO& info) {
    info = CEOIDINFO{};
    return ::CeOidGetInfoEx(&volume_, oid, &info);
}

HANDLE DatabaseLayer::OpenDatabase(CEOID& oid, const char16_t* name, CEPROPID sort_property,
                                   DWORD flags, HWND notify_window) {
    CENOTIFYREQUEST request{};
    request.dwSize = sizeof request;
    request.hwnd = notify_window;
    CEGUID volume = volume_;
    const HANDLE database =
        ::CeOpenDatabaseEx(&volume, &oid, Wide(const_cast<char16_t*>(name)), sort_property, flags,
                           notify_window == nullptr ? nullptr : &request);
    // The platform answers either for a database that it cannot open.
    return database == nullptr ? INVALID_HANDLE_VALUE : database;
}

CEOID DatabaseLayer::ReadRecordProps(HANDLE database, RecordBuffer& buffer) {
    buffer.count_ = 0;
    return ::CeReadRecordPropsEx(database, CEDB_ALLOWREALLOC, &buffer.count_, nullptr,
                                 &buffer.bytes_, &buffer.size_, PrivateHeapHandle());
}

CEOID DatabaseLayer::SeekRecord(HANDLE database, DWORD seek_type, DWORD value, DWORD* index) {
    DWORD unused = 0;
    DWORD* reached = index == nullptr ? &unused : index;
    return seek_database_ex_ != nullptr ? seek_database_ex_(database, seek_type, value, 1, reached)
                                        : ::CeSeekDatabase(database, seek_type, value, reached);
}

BOOL DatabaseLayer::SetDatabaseInfo(CEOID oid, CEDBASEINFO& info) {
    return ::CeSetDatabaseInfoEx(&volume_, oid, &info);
}

DatabaseLayer::CacheEntry* DatabaseLayer::FindCached(CEOID oid, const char16_t* name) {
    for (CacheEntry& entry : cache_) {
        if (entry.handle == INVALID_HANDLE_VALUE) {
            continue;
        }
        const bool found = oid != 0 ? entry.oid == oid
                                    : name != nullptr && std::u16string_view(name) == entry.name;
        if (found) {
            return &entry;
        }
    }
    return nullptr;
}

HANDLE DatabaseLayer::OpenDatabaseCached(CEOID& oid, const char16_t* name, CEPROPID sort_property,
                                         DWORD flags, HWND notify_window) {
    if (CacheEntry* entry = FindCached(oid, name)) {
        oid = entry->oid;
        ++entry->use_count;
        return entry->handle;
    }
    const HANDLE database = OpenDatabase(oid, name, sort_property, flags, notify_window);
    if (database == INVALID_HANDLE_VALUE) {
        return database;
    }
    const std::u16string_view text(name == nullptr ? u"" : name);
    for (CacheEntry& entry : cache_) {
        if (entry.handle == INVALID_HANDLE_VALUE && text.size() < kCachedNameUnits) {
            entry.name[text.copy(entry.name, text.size())] = 0;
            entry.oid = oid;
            entry.handle = database;
            ++entry.use_count;
            break;
        }
    }
    return database;
}

void DatabaseLayer::CloseDatabaseCached(HANDLE database) {
    if (database == INVALID_HANDLE_VALUE) {
        return;
    }
    const auto entry = std::find_if(std::begin(cache_), std::end(cache_),
                                    [&](const CacheEntry& e) { return e.handle == database; });
    if (entry == std::end(cache_)) {
        const UniqueHandle closed(database);
    } else if (entry->use_count != 0) {
        --entry->use_count;
    }
}

DWORD DatabaseLayer::UsersOf(HANDLE database) const {
    for (const CacheEntry& entry : cache_) {
        if (entry.handle == database && database != INVALID_HANDLE_VALUE) {
            return entry.use_count;
        }
    }
    return 0;
}

bool DatabaseLayer::DropCachedDatabase(const char16_t* name) {
    CacheEntry* entry = FindCached(0, name);
    if (entry == nullptr) {
        return false;
    }
    const UniqueHandle closed(entry->handle);
    Clear(*entry);
    return true;
}

void DatabaseLayer::ResetDatabaseCache() {
    for (CacheEntry& entry : cache_) {
        Clear(entry);
    }
}

void DatabaseLayer::CloseDatabaseCache() {
    for (CacheEntry& entry : cache_) {
        const UniqueHandle closed(entry.handle);
        Clear(entry);
    }
}

void DatabaseLayer::Clear(CacheEntry& entry) {
    entry = CacheEntry{};
    entry.handle = INVALID_HANDLE_VALUE;
}

}  // namespace tolvenar
