#include "storage/format/property_encoding.h"

#include <cstring>

#include "snapshot/records/checksum.h"

namespace tolvenar {
namespace {

// The buffer that holds the properties, their strings and their blobs.
struct PropertyBuffer {
    const std::uint8_t* bytes;
    std::size_t size;

    bool HoldsArray(std::size_t count) const { return count <= size / sizeof(StoredProperty); }

    // Buffers may stand at any address.
    StoredProperty At(std::size_t index) const {
        StoredProperty property;
        std::memcpy(&property, bytes + index * sizeof property, sizeof property);
        return property;
    }

    // Bytes of the string at `offset` without terminator; false when it does not end in the buffer.
    bool StringBytes(std::size_t offset, std::size_t& string_bytes) const {
        for (std::size_t end = offset; end < size && size - end >= sizeof(char16_t);
             end += sizeof(char16_t)) {
            if (bytes[end] == 0 && bytes[end + 1] == 0) {
                string_bytes = end - offset;
                return true;
            }
        }
        return false;
    }

    bool HoldsBlob(std::size_t offset, std::size_t blob_bytes) const {
        return offset <= size && blob_bytes <= size - offset;
    }
};

PropertyType TypeOf(const StoredProperty& property) {
    return static_cast<PropertyType>(property.propid & 0xFFFF);
}

// Strings and blobs stand behind the array of `array_bytes` bytes. In the array itself they would
// change with the places that are written there: a string could lose its terminator.
bool RelocateProperty(const PropertyBuffer& buffer, std::size_t array_bytes,
                      StoredProperty& property, std::uint32_t from_base, std::uint32_t to_base) {
    if (TypeOf(property) == kPropertyString) {
        const std::uint32_t offset = property.value - from_base;
        std::size_t string_bytes = 0;
        property.value = offset + to_base;
        return offset >= array_bytes && buffer.StringBytes(offset, string_bytes);
    }
    if (TypeOf(property) == kPropertyBlob) {
        // The place of an empty blob means nothing and may be null.
        const bool is_empty = property.value == 0;
        const std::uint32_t offset = is_empty ? 0 : property.value_high - from_base;
        property.value_high = offset + to_base;
        return is_empty || (offset >= array_bytes && buffer.HoldsBlob(offset, property.value));
    }
    return true;
}

bool Relocate(void* bytes, std::size_t buffer_bytes, std::size_t count, std::uint32_t from_base,
              std::uint32_t to_base) {
    const PropertyBuffer buffer{static_cast<const std::uint8_t*>(bytes), buffer_bytes};
    if (!buffer.HoldsArray(count)) {
        return false;
    }
    for (std::size_t i = 0; i < count; ++i) {
        StoredProperty property = buffer.At(i);
        if (!RelocateProperty(buffer, count * sizeof property, property, from_base, to_base)) {
            return false;
        }
        std::memcpy(static_cast<std::uint8_t*>(bytes) + i * sizeof property, &property,
                    sizeof property);
    }
    return true;
}

// Where a property's value stands in the buffer and how much of it is looked at.
bool LocateValue(const PropertyBuffer& buffer, const StoredProperty& property, std::size_t index,
                 std::size_t& offset, std::size_t& value_bytes) {
    offset = index * sizeof property + offsetof(StoredProperty, value);
    switch (TypeOf(property)) {
        case kPropertyI2:
        case kPropertyUI2: value_bytes = 2; return true;
        case kPropertyI4:
        case kPropertyUI4: value_bytes = 4; return true;
        case kPropertyFileTime: value_bytes = 8; return true;
        case kPropertyString:
            offset = property.value;
            return buffer.StringBytes(offset, value_bytes);
        case kPropertyBlob:
            offset = property.value_high;
            value_bytes = property.value;
            return buffer.HoldsBlob(offset, value_bytes);
        default:
            // Booleans, doubles and unknown types count by their presence alone. Stored states rely
            // on it: a change of such a value by itself is not seen.
            value_bytes = 0;
            return true;
    }
}

// The same with all of the value, of the types that a checksum does not look at, too.
bool LocateWholeValue(const PropertyBuffer& buffer, const StoredProperty& property,
                      std::size_t index, std::size_t& offset, std::size_t& value_bytes) {
    if (!LocateValue(buffer, property, index, offset, value_bytes)) {
        return false;
    }
    const PropertyType type = TypeOf(property);
    if (value_bytes == 0 && type != kPropertyString && type != kPropertyBlob) {
        value_bytes = type == kPropertyBool ? 4 : 8;
    }
    return true;
}

bool SameProperty(const PropertyBuffer& a, const PropertyBuffer& b, std::size_t index) {
    const StoredProperty property_a = a.At(index);
    const StoredProperty property_b = b.At(index);
    std::size_t offset_a = 0;
    std::size_t offset_b = 0;
    std::size_t bytes_a = 0;
    std::size_t bytes_b = 0;
    return property_a.propid == property_b.propid && property_a.flags == property_b.flags &&
           LocateWholeValue(a, property_a, index, offset_a, bytes_a) &&
           LocateWholeValue(b, property_b, index, offset_b, bytes_b) && bytes_a == bytes_b &&
           std::memcmp(a.bytes + offset_a, b.bytes + offset_b, bytes_a) == 0;
}

}  // namespace

bool PointersToOffsets(void* buffer, std::size_t buffer_bytes, std::size_t count,
                       std::uint32_t base) {
    return Relocate(buffer, buffer_bytes, count, base, 0);
}

bool OffsetsToPointers(void* buffer, std::size_t buffer_bytes, std::size_t count,
                       std::uint32_t base) {
    return Relocate(buffer, buffer_bytes, count, 0, base);
}

bool ChecksumOfProperties(const void* bytes, std::size_t buffer_bytes, std::size_t count,
                          std::uint16_t& checksum) {
    const PropertyBuffer buffer{static_cast<const std::uint8_t*>(bytes), buffer_bytes};
    if (!buffer.HoldsArray(count)) {
        return false;
    }
    std::uint16_t sum = kChecksumSeed;
    for (std::size_t i = 0; i < count; ++i) {
        const StoredProperty property = buffer.At(i);
        std::size_t offset = 0;
        std::size_t value_bytes = 0;
        if (!LocateValue(buffer, property, i, offset, value_bytes)) {
            return false;
        }
        sum = Checksum16(&property.propid, sizeof property.propid, sum);
        sum = Checksum16(&property.flags, sizeof property.flags, sum);
        sum = Checksum16(buffer.bytes + offset, value_bytes, sum);
    }
    checksum = sum;
    return true;
}

bool SameProperties(const void* a, const void* b, std::size_t buffer_bytes, std::size_t count) {
    const PropertyBuffer buffer_a{static_cast<const std::uint8_t*>(a), buffer_bytes};
    const PropertyBuffer buffer_b{static_cast<const std::uint8_t*>(b), buffer_bytes};
    if (!buffer_a.HoldsArray(count)) {
        return false;
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (!SameProperty(buffer_a, buffer_b, i)) {
            return false;
        }
    }
    return true;
}

}  // namespace tolvenar
