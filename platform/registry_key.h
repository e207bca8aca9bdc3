// Registry keys that exist.
#pragma once

#include <cstdint>

#include "platform/unique_resource.h"

namespace tolvenar {

// The root key of a hive as it is stored: by the value of its handle.
inline HKEY RootKey(std::uint32_t hive) {
    return reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(hive));
}

// The key at `path` below `root`; empty when there is none.
inline UniqueHkey OpenKey(HKEY root, const wchar_t* path, REGSAM access = 0) {
    UniqueHkey key;
    if (::RegOpenKeyExW(root, path, 0, access, key.Put()) != ERROR_SUCCESS) {
        return {};
    }
    return key;
}

}  // namespace tolvenar
