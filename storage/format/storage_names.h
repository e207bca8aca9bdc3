// Names of the storage's files, made from the storage path. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

// A folder of 259 units at most and the stem behind it, with the terminator.
constexpr std::size_t kStoragePathUnits = 260;
constexpr std::size_t kStorageNameUnits = kStoragePathUnits + 12;  // ".jrn_old" and four digits

struct StorageNames {
    char16_t path[kStoragePathUnits];     // full storage path: folder and stem, no extension
    char16_t sav[kStorageNameUnits];      // cut at the first dot of the whole path + ".sav"
    char16_t journal[kStorageNameUnits];  // path + ".jrn"
    char16_t journal_temporary[kStorageNameUnits];  // path + ".jrn_1"
};

// Makes all names from the full storage path. False, and all names empty, when it is empty or
// longer than 259 units.
bool MakeStorageNames(const char16_t* full_path, StorageNames& names);
// The ".sav" name of `path`: cut at its first dot, a folder's too (docs/oddities.md, 4).
bool MakeSavName(const char16_t* path, char16_t (&sav)[kStorageNameUnits]);

// The name under which a journal that is no longer in use is kept: path + ".jrn_old" for number 1,
// with the number behind it for those from 2 to 9999. False, and an empty name, when it is too
// long.
bool MakeOldJournalName(const StorageNames& names, std::uint32_t number,
                        char16_t (&name)[kStorageNameUnits]);

// The part of a path behind its last backslash.
const char16_t* NameWithoutFolder(const char16_t* path);

// What a chosen file's path means as settings.
struct StorageLocation {
    char16_t folder[kStoragePathUnits];  // without its last backslash
    char16_t stem[kStoragePathUnits];    // the name cut at its first dot
};
// False, and both empty, when the path is longer than 259 units.
bool SplitStoragePath(const char16_t* chosen_path, StorageLocation& location);

// Of the settings each, the folder with its backslash and the stem, is read back up to 129 units.
constexpr std::size_t kLocationTextUnits = 130;

// What keeps the name of a chosen file from being a storage's.
enum class NameFault {
    kNone,
    kTooLong,    // folder or stem could not be read back
    kForbidden,  // a character that the platform allows in no name
    kEmpty,      // no stem; a pair that has such a name already can be opened
};
NameFault JudgeStorageName(const char16_t* chosen_path);

}  // namespace tolvenar
