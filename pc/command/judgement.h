// Every stored version of a storage, proved with its contents.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "pc/command/console.h"
#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

struct Judged {
    StoredObject object;
    std::vector<std::uint16_t> states;  // that hold it
    const char* damage;                 // null for none, "block" or "contents"
};

struct StateCount {
    std::size_t objects = 0;
    std::size_t damaged = 0;
};

struct Judgement {
    std::vector<Judged> objects;  // in the order of the storage file
    std::map<std::uint16_t, StateCount> states;
    std::size_t damaged = 0;
    std::size_t damaged_states = 0;  // whose own blocks are
};

// `what` is told while it goes on. A Failure when it is interrupted under an InterruptWatch.
Judgement Judge(StoredPair& pair, const char* what, Console& console);

// The states that hold a whole version of a damaged object; of one without a name nobody knows.
std::vector<std::uint16_t> StatesWithWhole(const Judgement& judgement, const Judged& damaged);

}  // namespace tolvenar::pc
