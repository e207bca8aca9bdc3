// The properties of a stored database record, one by one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "storage/format/property_encoding.h"

namespace tolvenar::pc {

struct RecordProperty {
    std::uint32_t propid;
    std::uint16_t flags;
    std::string bytes;  // little-endian; a text's units without terminator

    std::uint16_t type() const { return static_cast<std::uint16_t>(propid & 0xFFFF); }
    std::uint16_t id() const { return static_cast<std::uint16_t>(propid >> 16); }
};

// Those of proved data, in their order. One that is not whole inside the data has no bytes.
std::vector<RecordProperty> PropertiesOf(const std::vector<std::uint8_t>& data, std::size_t count);

// A number, a time in UTC, a text; bytes in hexadecimal.
std::string TextOf(const RecordProperty& property);

}  // namespace tolvenar::pc
