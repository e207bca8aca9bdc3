#include "storage/objects/value_reader.h"

#include <algorithm>
#include <new>

#include "platform/text.h"

namespace tolvenar {

// The names come from the table: a key path may hold the character that joins them in a block.
const std::uint8_t* ValueReader::Read(const RegistryObject& value, std::uint32_t bytes) {
    // A value may have no data; reading it still wants a buffer.
    if (!Reserve(std::max<std::uint32_t>(bytes, 1))) {
        return nullptr;
    }
    DWORD read = 0;
    const LONG status = key_.With(value.hive, value.key_path, [&](HKEY key) {
        read = bytes;
        return ::RegQueryValueExW(key, Wide(value.value_name), nullptr, nullptr, buffer_.get(),
                                  &read);
    });
    return status == ERROR_SUCCESS && read == bytes ? buffer_.get() : nullptr;
}

bool ValueReader::Reserve(std::uint32_t bytes) {
    if (bytes <= capacity_) {
        return true;
    }
    capacity_ = 0;
    buffer_.reset(new (std::nothrow) std::uint8_t[bytes]);
    if (buffer_ == nullptr) {
        return false;
    }
    capacity_ = bytes;
    return true;
}

void ValueReader::Close() {
    key_.Close();
    buffer_.reset();
    capacity_ = 0;
}

}  // namespace tolvenar
