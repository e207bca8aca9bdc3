// Reads the data of registry values.
#pragma once

#include <cstdint>
#include <memory>

#include "snapshot/records/registry_objects.h"
#include "storage/objects/kept_key.h"

namespace tolvenar {

// The key of the value that was read last stays open until Close.
class ValueReader {
public:
    // All data of the value, which stay until the next call. Null when there are not just as many
    // `bytes`, they cannot be read, or there is no memory.
    const std::uint8_t* Read(const RegistryObject& value, std::uint32_t bytes);
    void Close();

private:
    bool Reserve(std::uint32_t bytes);

    KeptKey key_{KEY_ALL_ACCESS};
    std::unique_ptr<std::uint8_t[]> buffer_;
    std::uint32_t capacity_ = 0;
};

}  // namespace tolvenar
