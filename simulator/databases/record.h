// The properties of a record and the sort orders of a database, as plain data.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/databases/platform_numbers.h"

namespace sim::databases {

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
