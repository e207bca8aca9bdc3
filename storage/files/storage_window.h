// A view of the storage file that moves to where something is read: reading one small block after
// the other costs no call for most of them.
#pragma once

#include <cstdint>

#include "storage/files/storage_view.h"

namespace tolvenar {

struct WindowBytes {
    const std::uint8_t* bytes;  // null when they cannot be had
    std::uint32_t length;
};

class StorageWindow {
public:
    // False when the file cannot be opened.
    bool Open(const char16_t* sav_path) { return mapping_.Open(sav_path); }
    // The bytes at `offset`, all of `length`; valid until the next call.
    WindowBytes Read(std::uint32_t offset, std::uint32_t length);
    // The same, fewer where the file ends before.
    WindowBytes ReadUpTo(std::uint32_t offset, std::uint32_t length);

private:
    bool Holds(std::uint32_t offset, std::uint32_t length) const;

    StorageMapping mapping_;
    StoredBytes view_;
    std::uint32_t view_offset_ = 0;
};

}  // namespace tolvenar
