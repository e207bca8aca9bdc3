// What a snapshot leaves out. Platform-free.
#pragma once

#include <cstdint>

namespace tolvenar {

// Root key handle values of the four hives.
constexpr std::uint32_t kHiveClassesRoot = 0x80000000;
constexpr std::uint32_t kHiveCurrentUser = 0x80000001;
constexpr std::uint32_t kHiveLocalMachine = 0x80000002;
constexpr std::uint32_t kHiveUsers = 0x80000003;

enum class ExclusionKind { kRegistryValue = 1, kRegistryKey = 3, kFile = 16 };

// The names of the storage's own files without folder, read at the time of the scan.
struct StorageFileNames {
    const char16_t* names[3];
};

// True when the object is left out. kFile: `path` is the folder, `name` the entry's name; registry
// kinds are asked for HKEY_LOCAL_MACHINE only and need no storage names.
bool IsExcluded(ExclusionKind kind, const char16_t* path, const char16_t* name,
                const StorageFileNames* storage_files);
// The rules for values of any hive; false when an argument is absent.
bool IsExcludedValue(std::uint32_t hive, const char16_t* key_path, const char16_t* value_name);
// Databases of the recycle bin.
bool IsExcludedDatabase(const char16_t* name);

}  // namespace tolvenar
