// The platform's numbers for databases: types and flags of what they hold, ways to seek in them,
// errors and limits.
#pragma once

#include <cstddef>
#include <cstdint>

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

// The platform's ways to seek.
enum Seek : std::uint32_t {
    kSeekOid = 0x1,
    kSeekBeginning = 0x2,
    kSeekEnd = 0x4,
    kSeekCurrent = 0x8,
    kSeekSmaller = 0x10,
    kSeekFirstEqual = 0x20,
    kSeekGreater = 0x40,
    kSeekNextEqual = 0x80,
};

// The platform's error codes that database calls set.
enum Error : std::uint32_t {
    kOk = 0,
    kNotFound = 2,
    kAccessDenied = 5,
    kInvalidHandle = 6,
    kSharingViolation = 32,
    kDupName = 52,
    kInvalidParameter = 87,
    kDiskFull = 112,
    kAlreadyExists = 183,
    kNoMoreItems = 259,
    kKeyDeleted = 1018,
};

constexpr std::size_t kMaxNameUnits = 31;
constexpr std::size_t kMaxRecords = 0xFFFF;

}  // namespace sim::databases
