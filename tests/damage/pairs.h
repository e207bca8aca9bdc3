// The two files of a storage as bytes, sound ones to begin with: those of one storage after each of
// its states, and those of other storages that they may be mixed up with.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/damage/holdings.h"
#include "tests/support/bytes.h"

namespace tolvenar {

// A file that is missing is nothing.
struct Pair {
    std::optional<Bytes> sav;
    std::optional<Bytes> journal;
};

// A storage: its pair after each state, the last one being what it is now, and what each state has.
struct SoundStorage {
    std::vector<Pair> pairs;
    std::vector<Holdings> states;

    const Bytes& sav() const { return *pairs.back().sav; }
    const Bytes& journal() const { return *pairs.back().journal; }
};

struct Storages {
    SoundStorage own;
    SoundStorage fresh;    // begun anew on the same device when it had the last state
    SoundStorage foreign;  // another device's
};

std::vector<ObjectRecord> RecordsIn(const Bytes& journal);
// As a load and a save leave it: its records in reverse order.
Bytes Reversed(const Bytes& journal);

// "state 2, deletion of type 16".
std::string Describe(const ObjectRecord& record);

}  // namespace tolvenar
