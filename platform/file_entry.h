// What the platform tells of a file or folder: the entry that a search finds.
#pragma once

#include "platform/text.h"
#include "platform/unique_resource.h"

namespace tolvenar {

// The entry at `path`; false, with the last error telling why, when there is none.
inline bool FindEntry(const char16_t* path, WIN32_FIND_DATAW& entry) {
    UniqueFind search(::FindFirstFileW(Wide(path), &entry));
    const bool is_found = static_cast<bool>(search);
    if (is_found) {
        search.Close();
    }
    return is_found;
}

inline bool IsInRom(DWORD attributes) {
    return (attributes & (FILE_ATTRIBUTE_INROM | FILE_ATTRIBUTE_ROMMODULE)) != 0;
}

inline bool IsFolder(const WIN32_FIND_DATAW& entry) {
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// The platform marks the folder that a card hangs in as temporary, and those on it.
inline bool IsMountedCard(const WIN32_FIND_DATAW& entry) {
    return IsFolder(entry) && (entry.dwFileAttributes & FILE_ATTRIBUTE_TEMPORARY) != 0;
}

}  // namespace tolvenar
