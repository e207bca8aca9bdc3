#include "storage/objects/presence.h"

#include <string_view>

#include "platform/file_entry.h"
#include "platform/registry_key.h"
#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/records/registry_objects.h"
#include "storage/files/card_space.h"

namespace tolvenar {
namespace {

// Calls `is_sought` with what is before and behind each `separator` of the block's name, each with
// a terminator, until it answers true.
template <typename Predicate>
bool AnySplit(const InfoBlock& block, char16_t separator, Predicate is_sought) {
    InfoBlock split = block;
    char16_t* const name = split.name();
    const std::u16string_view whole(block.name());
    for (std::size_t at = whole.find(separator); at != whole.npos;
         at = whole.find(separator, at + 1)) {
        name[at] = 0;
        if (is_sought(name, name + at + 1)) {
            return true;
        }
        name[at] = separator;
    }
    return false;
}

bool IsExcludedPath(const InfoBlock& block, const StorageFileNames& storage_files) {
    InfoBlock split = block;
    const std::size_t backslash = std::u16string_view(split.name()).rfind(u'\\');
    if (backslash == std::u16string_view::npos) {
        return true;
    }
    split.name()[backslash] = 0;
    return IsExcluded(ExclusionKind::kFile, split.name(), split.name() + backslash + 1,
                      &storage_files);
}

bool IsFileOnDevice(const InfoBlock& block, const StorageFileNames& storage_files, CEOID& oid) {
    WIN32_FIND_DATAW found{};
    if (!FindEntry(block.name(), found) || IsInRom(found.dwFileAttributes) ||
        IsMountedCard(found)) {
        return false;
    }
    oid = found.dwOID;
    const DWORD other_kind =
        (found.dwFileAttributes ^ block.head().attributes) & FILE_ATTRIBUTE_DIRECTORY;
    return other_kind == 0 && !IsExcludedPath(block, storage_files) &&
           !IsOnMountedCard(block.name());
}

bool IsKeyOnDevice(const InfoBlock& block) {
    const std::uint32_t hive = block.head().hive;
    return OpenKey(RootKey(hive), Wide(block.name())) &&
           !IsExcludedRegistryObject(hive, block.name(), nullptr);
}

// Calls `is_meant` with each key path and value name that the block's name may be joined of, and
// answers whether there is such a value that is.
template <typename Predicate>
bool AnyValue(const InfoBlock& block, Predicate is_meant) {
    const HKEY root = RootKey(block.head().hive);
    return AnySplit(block, kNameSeparator, [&](const char16_t* key_path, const char16_t* name) {
        const UniqueHkey key = OpenKey(root, Wide(key_path));
        return key && is_meant(key_path, name) &&
               ::RegQueryValueExW(key.get(), Wide(name), nullptr, nullptr, nullptr, nullptr) ==
                   ERROR_SUCCESS;
    });
}

bool IsValueOnDevice(const InfoBlock& block) {
    const std::uint32_t hive = block.head().hive;
    return AnyValue(block, [hive](const char16_t* key_path, const char16_t* name) {
        return !IsExcludedRegistryObject(hive, key_path, name);
    });
}

// The database of that name, and the record when `record_oid` is not 0. What a database holds that
// cannot be opened is not known: it counts as there.
bool IsInDatabase(DatabaseLayer& databases, const char16_t* name, CEOID record_oid, CEOID& oid) {
    if (IsExcludedDatabase(name)) {
        return false;
    }
    const HANDLE database = databases.OpenDatabaseCached(oid, name, 0, 0, nullptr);
    if (database == INVALID_HANDLE_VALUE) {
        return ::GetLastError() != ERROR_FILE_NOT_FOUND;
    }
    if (record_oid != 0) {
        oid = databases.SeekRecord(database, CEDB_SEEK_CEOID, record_oid);
    }
    databases.CloseDatabaseCached(database);
    return oid != 0;
}

}  // namespace

bool IsOnDevice(DatabaseLayer& databases, const StorageFileNames& storage_files,
                const ObjectRecord& record, const InfoBlock& block, CEOID& oid) {
    oid = 0;
    if (IsRegistryObject(record) && !IsHive(block.head().hive)) {
        return false;
    }
    switch (record.type) {
        case ObjectType::kRegistryValue: return IsValueOnDevice(block);
        case ObjectType::kRegistryKey: return IsKeyOnDevice(block);
        case ObjectType::kFile: return IsFileOnDevice(block, storage_files, oid);
        case ObjectType::kDatabase: return IsInDatabase(databases, block.name(), 0, oid);
        case ObjectType::kDatabaseRecord:
            return record.dwOID != 0 && IsInDatabase(databases, block.name(), record.dwOID, oid);
        default: return false;
    }
}

bool IsNameTaken(DatabaseLayer& databases, const InfoBlock& block) {
    WIN32_FIND_DATAW found{};
    CEOID oid = 0;
    switch (block.type()) {
        case ObjectType::kRegistryValue:
            return AnyValue(block, [](const char16_t*, const char16_t*) { return true; });
        case ObjectType::kRegistryKey:
            return static_cast<bool>(OpenKey(RootKey(block.head().hive), Wide(block.name())));
        case ObjectType::kFile: return FindEntry(block.name(), found);
        default:
            return static_cast<bool>(
                UniqueHandle(databases.OpenDatabase(oid, block.name(), 0, 0, nullptr)));
    }
}

bool LeadsOntoCard(const InfoBlock& block) {
    WIN32_FIND_DATAW found{};
    return IsOnMountedCard(block.name()) ||
           (FindEntry(block.name(), found) && IsMountedCard(found));
}

}  // namespace tolvenar
