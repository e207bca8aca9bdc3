// Where the description of a stored object comes from. Platform-free.
#pragma once

#include <cstdint>

#include "storage/format/info_block.h"

namespace tolvenar {

class StoredObjects {
public:
    // The block at `offset` of the storage file. False when it cannot be read.
    virtual bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) = 0;

protected:
    ~StoredObjects() = default;
};

}  // namespace tolvenar
