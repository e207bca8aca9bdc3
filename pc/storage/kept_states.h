// Which states stay when a storage is trimmed.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "pc/storage/stored_pair.h"

namespace tolvenar::pc {

struct KeepRules {
    std::size_t last = 0;             // so many newest states
    std::size_t daily = 0;            // of so many newest days that have states the last one each
    std::size_t monthly = 0;          // the same of months
    std::vector<std::string> states;  // these, as a command line names them
};

// What any rule keeps, in order. A Failure when no rule is given, or a state is not there.
std::vector<State> ChooseStates(const StoredPair& pair, const KeepRules& rules);

}  // namespace tolvenar::pc
