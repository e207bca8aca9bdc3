// What a device holds, as the judgement looks at it: lines that tell everything, and objects by
// name with the version of each.
#pragma once

#include <map>
#include <set>
#include <string>

#include "tests/support/contents.h"

namespace tolvenar {

// An object's name without regard to case, and what it holds: of a file its bytes, of a value type
// and data, of a record its properties. A record is named by its database and its number. A device
// may hold two records of one number.
using Objects = std::map<std::string, std::set<std::string>>;

struct Holdings {
    Holdings() = default;
    explicit Holdings(const tests::DeviceImage& image);

    tests::Contents lines;
    Objects objects;
};

}  // namespace tolvenar
