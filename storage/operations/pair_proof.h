// The check of the open storage's pair of files, and of an older list of states beside it.
#pragma once

#include "snapshot/compare/pair_check.h"
#include "snapshot/engine/descriptions.h"

namespace tolvenar {

// Runs the check of the loaded journal. False when the storage file's size cannot be told or there
// is no memory.
bool CheckOpenPair(Engine& engine, Descriptions& descriptions, PairCheck& check);

// A list of states that was moved aside.
struct OlderList {
    char16_t path[kStorageNameUnits];
    std::uint32_t states;
};

// The newest one, when the storage file proves it: it has states and no findings. False otherwise.
bool FindOlderList(Engine& engine, Descriptions& descriptions, OlderList& older);

}  // namespace tolvenar
