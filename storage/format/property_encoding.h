// The properties of a database record as the device hands them out and as they are stored: an array
// of 16-byte values with the strings and blobs behind it in one buffer. On the device strings and
// blobs are pointers into that buffer, in the storage file offsets from its start. Platform-free;
// any count, offset and length may be wrong in a damaged storage file.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

// Low half of a property's identifier.
enum PropertyType : std::uint16_t {
    kPropertyI2 = 2,
    kPropertyI4 = 3,
    kPropertyR8 = 5,
    kPropertyBool = 11,
    kPropertyUI2 = 18,
    kPropertyUI4 = 19,
    kPropertyString = 31,
    kPropertyFileTime = 64,
    kPropertyBlob = 65,
};

struct StoredProperty {
    std::uint32_t propid;  // type in the low half, identifier in the high half
    std::uint16_t length;
    std::uint16_t flags;
    std::uint32_t value;       // number; string: its place; blob: its length
    std::uint32_t value_high;  // file time, double; blob: its place
};
static_assert(sizeof(StoredProperty) == 16);

// Turns the pointers of `count` properties into offsets. `base` is the address of the buffer as the
// pointers count it. False, and the buffer in part turned, when the array, a terminated string or a
// blob is not whole inside it.
bool PointersToOffsets(void* buffer, std::size_t buffer_bytes, std::size_t count,
                       std::uint32_t base);
// The reverse, with the same checks.
bool OffsetsToPointers(void* buffer, std::size_t buffer_bytes, std::size_t count,
                       std::uint32_t base);

// Checksum of the canonical form of stored properties: of each, in order, identifier, flags and,
// but for the types that are not looked at (Boolean and double among them), the value; strings
// without terminator. False when a property is not whole inside the buffer.
bool ChecksumOfProperties(const void* buffer, std::size_t buffer_bytes, std::size_t count,
                          std::uint16_t& checksum);

// True when two buffers hold the same properties, with offsets, in the same order: identifiers,
// flags and values of every type, byte for byte. What lies between values is not looked at. False
// also when a property is not whole inside its buffer.
bool SameProperties(const void* a, const void* b, std::size_t buffer_bytes, std::size_t count);

}  // namespace tolvenar
