// The properties of a record and the sort orders of a database, as plain data.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sim::databases {

// The platform's property types, the low word of a property id.
enum ValueType : std::uint16_t {
    kI2 = 2,
    kI4 = 3,
    kR8 = 5,
    kBool = 11,
    kUi2 = 18,
    kUi4 = 19,
    kText = 31,
    kFileTime = 64,
    kBlob = 65,
};

// The platform's sort flags.
enum SortFlag : std::uint32_t {
    kDescending = 0x1,
    kCaseInsensitive = 0x2,
    kUnknownFirst = 0x4,
    kUnique = 0x200,
    kNonNull = 0x400,
};

constexpr std::size_t kMaxPropertyBytes = 65471;
constexpr std::size_t kMaxRecordBytes = 131072;
constexpr std::size_t kMaxSortOrders = 4;

// `value` holds the little-endian bytes; a text's units without terminator.
struct Property {
    std::uint32_t propid = 0;
    std::uint16_t flags = 0;
    std::string value;

    ValueType type() const { return static_cast<ValueType>(propid & 0xFFFF); }
};

// Sorted by property id, each id once.
using Record = std::vector<Property>;

struct SortOrder {
    std::uint32_t propid = 0;
    std::uint32_t flags = 0;
};

// Bytes of a value of fixed size; 0 for texts and blobs, -1 for what is no type.
int FixedBytes(ValueType type);
bool IsValid(const Property& property);

const Property* Find(const Record& record, std::uint32_t propid);
void Put(Record& record, const Property& property);
void Remove(Record& record, std::uint32_t propid);

std::string Encode(const Record& record);
Record Decode(const std::string& bytes);

// The order of two values of one type under a sort order: below, at or above zero. A null pointer
// is a record without the property: behind all others, or before them with kUnknownFirst.
int Compare(const SortOrder& order, const Property* a, const Property* b);

}  // namespace sim::databases
