// What of a storage can be saved whose journal is lost or damaged, as a plan for a new pair.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pc/storage/block_walk.h"
#include "pc/storage/pair_files.h"
#include "pc/storage/pair_plan.h"
#include "pc/storage/stored_pair.h"

namespace tolvenar::pc {

// A storage file without its journal.
struct SalvageSource {
    // Throws a Failure when a file cannot be read or the ".sav" has no head of a storage.
    explicit SalvageSource(const PairFiles& files);

    FileBytes sav;
    StorageReader reader{sav};
    NoDevice device;
    InfoSource info{reader, device};
    StorageHeader header{};
    std::uint32_t bytes = 0;
    std::string journal;  // whose records are taken; empty when there is none
    SurvivingRecords records;
};

struct SalvagedState {
    std::uint16_t old_number;  // by its surviving record; 0 without one
    FileTime made;
    bool has_own_block;  // else one is made, without a time
    std::size_t stored = 0;
};

// An object, or bytes, of which something must be told.
struct SalvageNote {
    std::uint32_t offset;
    std::u16string path;
};

struct Salvage {
    PairPlan plan;
    std::vector<SalvagedState> states;
    std::vector<Gap> gaps;
    std::vector<SalvageNote> damaged;   // left out
    std::vector<SalvageNote> doubtful;  // kept; they may hold what stood behind them
    std::vector<SalvageNote> deleted;   // kept, though some later state had deleted them
    std::size_t proved = 0;             // objects
    std::size_t unproved = 0;
    std::size_t records_without_id = 0;  // database records: earlier versions of them stay
    std::size_t lost_blocks = 0;         // places that records lead to, where no block is
    bool is_head_made = false;           // the description was lost

    bool has_losses() const {
        return !gaps.empty() || !damaged.empty() || lost_blocks != 0 || is_head_made;
    }
};

Salvage PlanSalvage(SalvageSource& source);

// True when the check finds nothing in the new pair, and every state has as many objects as
// planned, all with sound data.
bool IsSalvageOf(StoredPair& made, const PairPlan& plan);

}  // namespace tolvenar::pc
