// Registry keys that exist.
#pragma once

#include "platform/unique_resource.h"

namespace tolvenar {

// The key at `path` below `root`; empty when there is none.
inline UniqueHkey OpenKey(HKEY root, const wchar_t* path) {
    UniqueHkey key;
    if (::RegOpenKeyExW(root, path, 0, 0, key.Put()) != ERROR_SUCCESS) {
        return {};
    }
    return key;
}

}  // namespace tolvenar
