// What a snapshot leaves out. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

// Root key handle values of the four hives.
constexpr std::uint32_t kHiveClassesRoot = 0x80000000;
constexpr std::uint32_t kHiveCurrentUser = 0x80000001;
constexpr std::uint32_t kHiveLocalMachine = 0x80000002;
constexpr std::uint32_t kHiveUsers = 0x80000003;
// A damaged block may name any root.
constexpr bool IsHive(std::uint32_t root) { return root >= kHiveClassesRoot && root <= kHiveUsers; }

enum class ExclusionKind { kRegistryValue = 1, kRegistryKey = 3, kFile = 16 };

// The names of the storage's own files without folder, read at the time of the scan: ".sav",
// ".jrn", ".jrn_1".
struct StorageFileNames {
    const char16_t* names[3];
    // Where they are, without a backslash at its end: in it the log is the program's own, too.
    const char16_t* folder = nullptr;
};
constexpr std::size_t kJournalName = 1;

// True when the object is left out. kFile: `path` is the folder, `name` the entry's name; registry
// kinds are asked for HKEY_LOCAL_MACHINE only and need no storage names.
bool IsExcluded(ExclusionKind kind, const char16_t* path, const char16_t* name,
                const StorageFileNames* storage_files);
// True for the storage's files and its log, whatever their letters' case; `path` is the file's.
bool IsStoragesOwn(const char16_t* path, const StorageFileNames& storage_files);

// The rules for values of any hive; false when an argument is absent.
bool IsExcludedValue(std::uint32_t hive, const char16_t* key_path, const char16_t* value_name);
// All rules for a key, whose value name is null, or a value.
bool IsExcludedRegistryObject(std::uint32_t hive, const char16_t* key_path,
                              const char16_t* value_name);
// Databases of the recycle bin.
bool IsExcludedDatabase(const char16_t* name);

}  // namespace tolvenar
