// The versions of objects through all states: which states hold which.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pc/storage/object_filter.h"
#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

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
    std::vector<History> objects;      // in the order of their paths
    std::vector<std::uint16_t> states; // of the storage
    std::size_t damaged_versions = 0;  // whose names nobody knows
};

Histories FindHistories(StoredPair& pair, const ObjectFilter& filter);

}  // namespace tolvenar::pc
