// The versions of objects through all states: which states hold which.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pc/storage/object_filter.h"
#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

// The records of every stored version of an object; the states' own are not among them.
std::vector<ObjectRecord> AdditionsOf(const ObjectList& journal);

// "1 to 3, 5"; "none".
std::string Ranges(const std::vector<std::uint16_t>& states);

// What tells one object from another whatever its version: kind and path, in letters that stand for
// either case. A record of a device that was restored has another id, and so is another one.
std::u16string IdentityOf(const StoredObject& object);

struct Version {
    StoredObject object;
    std::vector<std::uint16_t> states;  // that hold it, in order
};

// The versions of one object, oldest first.
struct History {
    std::u16string path;  // of the newest version
    std::vector<Version> versions;
};

struct Histories {
    std::vector<History> objects;       // in the order of lists
    std::vector<std::uint16_t> states;  // of the storage
    std::size_t damaged_versions = 0;   // whose names nobody knows
};

Histories FindHistories(StoredPair& pair, const ObjectFilter& filter);

}  // namespace tolvenar::pc
