// Names of the storage's files, made from the settings.
#pragma once

#include <cstddef>

namespace tolvenar {

// A folder of 259 units at most and the stem behind it, with extension and terminator.
constexpr std::size_t kStoragePathUnits = 260;
constexpr std::size_t kStorageNameUnits = kStoragePathUnits + 8;

struct StorageNames {
    char16_t path[kStoragePathUnits];       // full storage path: folder and stem, no extension
    char16_t sav[kStorageNameUnits];        // cut at the first dot of the whole path + ".sav"
    char16_t journal[kStorageNameUnits];    // path + ".jrn"
    char16_t journal_temporary[kStorageNameUnits];  // path + ".jrn_1"
};

}  // namespace tolvenar
