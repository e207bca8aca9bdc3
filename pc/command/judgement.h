// Every stored version of a storage, proved with its contents.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "pc/command/console.h"
#include "pc/storage/content_proof.h"
#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

struct Judged {
    StoredObject object;
    std::vector<std::uint16_t> states;           // that hold it
    Damage damage;                               // of the block or of the contents
    std::vector<std::uint16_t> whole_in_states;  // other versions of a damaged one
};

struct StateCount {
    std::size_t objects = 0;
    std::size_t damaged = 0;
};

struct Judgement {
    std::vector<Judged> objects;  // those that are told of, in the order of the storage file
    std::map<std::uint16_t, StateCount> states;
    std::size_t damaged = 0;
    std::size_t damaged_states = 0;  // whose own blocks are
};

// "block" or "contents".
const char* WordOf(Damage damage);

// Tells of all objects, or of the damaged ones alone. `what` is told while it goes on.
// A Failure when it is interrupted under an InterruptWatch.
Judgement Judge(StoredPair& pair, bool all, const char* what, Console& console);

}  // namespace tolvenar::pc
