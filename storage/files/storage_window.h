// A view of the mapped storage file that moves to where it is looked at.
#pragma once

#include <cstdint>

#include "storage/files/storage_view.h"

namespace tolvenar {

// What lies near the bytes that were asked for last costs no call: blocks and small data stand
// close to one another.
class StorageWindow {
public:
    // `storage` may be opened later, and stays as it is then.
    explicit StorageWindow(const StorageMapping& storage) : storage_(storage) {}
    StorageWindow(const StorageWindow&) = delete;
    StorageWindow& operator=(const StorageWindow&) = delete;

    // `length` bytes at `offset`, which stay until the next call. Null, with a last error, when
    // they are not all inside the file, there are none, or they cannot be mapped. Where a whole
    // window cannot be mapped these bytes alone are.
    const std::uint8_t* At(std::uint32_t offset, std::uint32_t length);
    void Close();

    static constexpr std::uint32_t kWindowBytes = 0x40000;

private:
    bool Holds(std::uint32_t offset, std::uint32_t length) const;
    bool Map(std::uint32_t offset, std::uint32_t length);
    bool MapAround(std::uint32_t offset, std::uint32_t length);

    const StorageMapping& storage_;
    UniqueView view_;
    std::uint32_t begin_ = 0;  // of the view; where it was last, also without one
    std::uint32_t end_ = 0;
};

}  // namespace tolvenar
