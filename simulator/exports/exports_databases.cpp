// Windows CE's view of databases: which there are, making, opening, describing and deleting them,
// and what stands behind an object id. Records are in exports_records.cpp.
#include <cstring>
#include <windbase.h>
#include <windows.h>

#include "simulator/databases/open_database.h"
#include "simulator/exports/gated.h"
#include "simulator/files/files.h"
#include "simulator/store/names.h"
#include "simulator/system/handles.h"

namespace {

using sim::databases::Database;
using sim::databases::DatabaseSearch;
using sim::databases::DatabaseStore;
using sim::databases::OpenDatabase;
using sim::handles::Kind;

constexpr DWORD kStoredFlags = CEDB_NOCOMPRESS | CEDB_SYSTEMDB;

// The two guids that name no mounted volume: all zero is the object store, all ones is any volume.
bool IsFilledWith(const CEGUID* guid, DWORD word) {
    return guid != nullptr && guid->Data1 == word && guid->Data2 == word && guid->Data3 == word &&
           guid->Data4 == word;
}
bool IsSystemGuid(const CEGUID* guid) { return IsFilledWith(guid, 0); }
bool IsInvalidGuid(const CEGUID* guid) { return IsFilledWith(guid, 0xFFFFFFFF); }

// What a call leaves in the volume's id that it was given.
void WriteVolume(PCEGUID volume) {
    if (volume == nullptr) {
        return;
    }
    if (Device::Current().Setting("database.volume", "kept") == "written") {
        *volume = {1, 2, 3, 4};
    } else {
        CREATE_SYSTEMGUID(volume);
    }
}

// A text of a fixed field, which may fill it without a terminator.
std::u16string FieldText(const WCHAR* field, std::size_t units) {
    std::size_t length = 0;
    while (length < units && field[length] != L'\0') {
        ++length;
    }
    return std::u16string(field, field + length);
}

template <std::size_t N>
void PutField(WCHAR (&field)[N], const std::wstring& text) {
    const std::size_t length = text.size() < N ? text.size() : N - 1;
    std::memcpy(field, text.data(), length * sizeof(WCHAR));
    field[length] = L'\0';
}

FILETIME ToFileTime(std::uint64_t time) {
    return {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
}

std::uint64_t FromFileTime(const FILETIME& time) {
    return (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

// Takes over the fields that `info.dwFlags` says are told.
void Merge(const CEDBASEINFO& info, Database& database) {
    if ((info.dwFlags & CEDB_VALIDNAME) != 0) {
        database.name = FieldText(info.szDbaseName, CEDB_MAXDBASENAMELEN);
    }
    if ((info.dwFlags & CEDB_VALIDTYPE) != 0) {
        database.type = info.dwDbaseType;
    }
    if ((info.dwFlags & CEDB_VALIDSORTSPEC) != 0) {
        database.sort_orders.clear();
        for (WORD i = 0; i < info.wNumSortOrder && i < CEDB_MAXSORTORDER; ++i) {
            // One of no property stands for none.
            if (info.rgSortSpecs[i].propid != 0) {
                database.sort_orders.push_back(
                    {info.rgSortSpecs[i].propid, info.rgSortSpecs[i].dwFlags});
            }
        }
    }
    if ((info.dwFlags & CEDB_VALIDMODTIME) != 0) {
        database.modified = FromFileTime(info.ftLastModified);
    }
    if ((info.dwFlags & CEDB_VALIDDBFLAGS) != 0) {
        database.flags = info.dwFlags & kStoredFlags;
    }
}

bool IsUsable(PCEGUID volume, const CEDBASEINFO* info) {
    const bool is_sorted = info != nullptr && (info->dwFlags & CEDB_VALIDSORTSPEC) != 0;
    return IsSystemGuid(volume) && info != nullptr &&
           (!is_sorted || info->wNumSortOrder <= CEDB_MAXSORTORDER);
}

// Some systems refuse sort orders whose keys are unique.
bool TakesOrders(const CEDBASEINFO& info) {
    bool takes = true;
    for (WORD i = 0; (info.dwFlags & CEDB_VALIDSORTSPEC) != 0 && i < info.wNumSortOrder; ++i) {
        takes = takes && (info.rgSortSpecs[i].dwFlags & CEDB_SORT_UNIQUE) == 0;
    }
    return takes || Device::Current().Setting("database.unique", "taken") == "taken";
}

CEOID Create(CEDBASEINFO& info, LastError& error) {
    Device& device = Device::Current();
    if (!TakesOrders(info)) {
        error.Set(ERROR_INVALID_PARAMETER);
        return 0;
    }
    sim::LogStore::Change change(device.store());
    Database database;
    database.modified = device.WriteTimeUtc();
    Merge(info, database);
    return error.Answer(DatabaseStore(device).Create(database)) ? database.oid : 0;
}

// The database that an open names: by oid, or by name when that is 0 or any volume may hold it.
// `failure` is what an absent one answers.
std::optional<Database> Named(const DatabaseStore& store, PCEGUID volume, PCEOID oid, LPCWSTR name,
                              DWORD& failure) {
    const bool anywhere = IsInvalidGuid(volume);
    failure = ERROR_INVALID_PARAMETER;
    if (!anywhere && (!IsSystemGuid(volume) || oid == nullptr)) {
        return std::nullopt;
    }
    if (!anywhere && *oid != 0) {
        return store.Get(*oid);
    }
    if (name == nullptr) {
        return std::nullopt;
    }
    failure = ERROR_FILE_NOT_FOUND;
    return store.ByName(sim::StoredText(name));
}

bool HasSortOrder(const Database& database, CEPROPID propid) {
    for (const sim::databases::SortOrder& order : database.sort_orders) {
        if (order.propid == propid) {
            return true;
        }
    }
    return propid == 0;
}

HANDLE Open(PCEGUID volume, PCEOID oid, LPCWSTR name, CEPROPID sort, DWORD flags) {
    LastError error;
    DWORD failure = 0;
    Device& device = Device::Current();
    sim::LogStore::View view(device.store());
    const std::optional<Database> database =
        Named(DatabaseStore(device), volume, oid, name, failure);
    if (!database || !HasSortOrder(*database, sort)) {
        error.Set(database ? ERROR_INVALID_PARAMETER : failure);
        return INVALID_HANDLE_VALUE;
    }
    if (oid != nullptr) {
        *oid = database->oid;
    }
    WriteVolume(volume);
    return sim::handles::Register(
        Kind::kDatabase,
        std::make_shared<OpenDatabase>(device, *database, sort, (flags & CEDB_AUTOINCREMENT) != 0));
}

void Describe(const DatabaseStore& store, const Database& database, CEDBASEINFO& info) {
    info.dwFlags = CEDB_VALIDCREATE | CEDB_VALIDMODTIME | database.flags;
    PutField(info.szDbaseName, std::wstring(database.name.begin(), database.name.end()));
    info.dwDbaseType = database.type;
    info.wNumRecords = static_cast<WORD>(store.RecordCount(database.oid));
    info.wNumSortOrder = static_cast<WORD>(database.sort_orders.size());
    info.dwSize = store.SizeOf(database.oid);
    info.ftLastModified = ToFileTime(database.modified);
    if (database.sort_orders.empty() &&
        Device::Current().Setting("database.no.orders", "none") == "placeholder") {
        info.wNumSortOrder = 1;
    }
    for (std::size_t i = 0; i < database.sort_orders.size(); ++i) {
        info.rgSortSpecs[i] = {database.sort_orders[i].propid, database.sort_orders[i].flags};
    }
}

bool DescribeFile(CEOID oid, CEOIDINFO& info) {
    const std::optional<sim::files::Entry> entry = sim::files::InfoByOid(Device::Current(), oid);
    if (!entry) {
        return false;
    }
    if (entry->is_folder) {
        info.wObjType = OBJTYPE_DIRECTORY;
        info.infDirectory.dwAttributes = entry->attributes;
        info.infDirectory.oidParent = entry->parent_oid;
        PutField(info.infDirectory.szDirName, entry->path);
        return true;
    }
    info.wObjType = OBJTYPE_FILE;
    info.infFile.dwAttributes = entry->attributes;
    info.infFile.oidParent = entry->parent_oid;
    PutField(info.infFile.szFileName, entry->path);
    info.infFile.ftLastChanged = ToFileTime(entry->modified);
    info.infFile.dwLength = entry->size;
    return true;
}

bool DescribeObject(CEOID oid, CEOIDINFO& info) {
    Device& device = Device::Current();
    sim::LogStore::View view(device.store());
    const DatabaseStore store(device);
    info = CEOIDINFO{};
    if (const std::optional<Database> database = store.Get(oid)) {
        info.wObjType = OBJTYPE_DATABASE;
        Describe(store, *database, info.infDatabase);
        return true;
    }
    if (const CEOID owner = store.DatabaseOf(oid)) {
        info.wObjType = OBJTYPE_RECORD;
        info.infRecord.oidParent = owner;
        return true;
    }
    return oid != 0 && DescribeFile(oid, info);
}

DWORD Delete(CEOID oid) {
    Device& device = Device::Current();
    DatabaseStore store(device);
    sim::LogStore::Change change(device.store());
    if (!store.Get(oid)) {
        return ERROR_INVALID_PARAMETER;
    }
    if (sim::databases::IsOpen(device, oid)) {
        return ERROR_SHARING_VIOLATION;
    }
    return store.Delete(oid) ? NO_ERROR : ERROR_INVALID_PARAMETER;
}

}  // namespace

HANDLE WINAPI CeFindFirstDatabaseEx(PCEGUID volume, DWORD type) {
    return Gated(
        Call::CeFindFirstDatabaseEx, INVALID_HANDLE_VALUE,
        [&]() -> HANDLE {
            LastError error;
            if (!IsSystemGuid(volume) && !IsInvalidGuid(volume)) {
                error.Set(ERROR_INVALID_PARAMETER);
                return INVALID_HANDLE_VALUE;
            }
            return sim::handles::Register(
                Kind::kDatabaseFind, std::make_shared<DatabaseSearch>(Device::Current(), type));
        },
        type);
}

CEOID WINAPI CeFindNextDatabaseEx(HANDLE search, PCEGUID volume) {
    return Gated(
        Call::CeFindNextDatabaseEx, CEOID{},
        [&]() -> CEOID {
            LastError last;
            const auto databases =
                sim::handles::Lookup<DatabaseSearch>(Kind::kDatabaseFind, search);
            if (!databases) {
                last.Set(ERROR_INVALID_PARAMETER);
                return 0;
            }
            sim::databases::Error error = sim::databases::kOk;
            const CEOID oid = databases->Next(error);
            if (last.Answer(error)) {
                WriteVolume(volume);
            }
            return oid;
        },
        search);
}

CEOID WINAPI CeCreateDatabaseEx(PCEGUID volume, CEDBASEINFO* info) {
    return Gated(
        Call::CeCreateDatabaseEx, CEOID{},
        [&]() -> CEOID {
            LastError error;
            if (!IsUsable(volume, info)) {
                error.Set(ERROR_INVALID_PARAMETER);
                return 0;
            }
            return Create(*info, error);
        },
        info != nullptr ? info->szDbaseName : L"");
}

HANDLE WINAPI CeOpenDatabaseEx(PCEGUID volume, PCEOID oid, LPWSTR name, CEPROPID sort, DWORD flags,
                               CENOTIFYREQUEST*) {
    return Gated(
        Call::CeOpenDatabaseEx, INVALID_HANDLE_VALUE,
        [&] { return Open(volume, oid, name, sort, flags); }, oid != nullptr ? *oid : 0, name, sort,
        flags);
}

BOOL WINAPI CeDeleteDatabaseEx(PCEGUID volume, CEOID oid) {
    return GatedAnswer(
        Call::CeDeleteDatabaseEx,
        [&]() -> DWORD { return IsSystemGuid(volume) ? Delete(oid) : ERROR_INVALID_PARAMETER; },
        oid);
}

BOOL WINAPI CeSetDatabaseInfoEx(PCEGUID volume, CEOID oid, CEDBASEINFO* info) {
    return GatedAnswer(
        Call::CeSetDatabaseInfoEx,
        [&]() -> DWORD {
            Device& device = Device::Current();
            sim::LogStore::Change change(device.store());
            DatabaseStore store(device);
            std::optional<Database> database = store.Get(oid);
            if (!IsUsable(volume, info) || !database || !TakesOrders(*info)) {
                return ERROR_INVALID_PARAMETER;
            }
            if (device.Setting("database.info.open", "changed") == "refused" &&
                sim::databases::IsOpen(device, oid)) {
                return ERROR_SHARING_VIOLATION;
            }
            Merge(*info, *database);
            return store.Change(*database);
        },
        oid);
}

BOOL WINAPI CeOidGetInfoEx(PCEGUID volume, CEOID oid, CEOIDINFO* info) {
    return GatedAnswer(
        Call::CeOidGetInfoEx,
        [&]() -> DWORD {
            if (info == nullptr || (!IsSystemGuid(volume) && !IsInvalidGuid(volume))) {
                return ERROR_INVALID_PARAMETER;
            }
            return DescribeObject(oid, *info) ? 0 : ERROR_INVALID_HANDLE;
        },
        oid);
}
