// What a report tells of a storage, gathered before a line of it is written.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pc/command/console.h"
#include "pc/command/judgement.h"
#include "pc/storage/totals.h"
#include "pc/storage/versions.h"

namespace tolvenar::pc {

struct ReportState {
    State state;
    StateTotals totals;
    StateCount count;           // of the objects that it holds
    std::uint64_t bytes_until;  // that the storage took with it
};

struct LargeObject {
    std::u16string path;
    const char* kind;
    std::uint32_t bytes;
};

struct ChangedObject {
    std::u16string path;
    const char* kind;
    std::vector<std::uint16_t> stored_by;  // the states that brought a version
};

struct Loss {
    std::u16string path;
    const char* damage;  // "block" or "contents"
    std::vector<std::uint16_t> states;
    std::vector<std::uint16_t> whole_in;
};

struct ReportData {
    std::vector<ReportState> states;
    std::uint64_t unclaimed_bytes = 0;
    std::vector<LargeObject> largest;  // of the last state
    std::vector<ChangedObject> most_changed;
    std::vector<Loss> losses;  // the first of them
    std::size_t damaged = 0;
    std::size_t damaged_states = 0;
    bool list_is_sound = true;
    std::vector<std::u16string> findings;

    bool is_sound() const { return damaged == 0 && damaged_states == 0 && list_is_sound; }
};

// Proves every content.
ReportData GatherReport(StoredPair& pair, Console& console);

}  // namespace tolvenar::pc
