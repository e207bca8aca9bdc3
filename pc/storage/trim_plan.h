// Which bytes and records a pair with fewer states is made of.
#pragma once

#include <vector>

#include "pc/storage/pair_plan.h"
#include "pc/storage/stored_pair.h"

namespace tolvenar::pc {

// The new state 1 is the first of `kept`, and so on. Each new state has the differences to the one
// before: additions with their blocks and data as they are, and deletions. A Failure when anything
// of a kept state is damaged: a new pair must have no finding.
PairPlan PlanTrim(StoredPair& pair, const std::vector<State>& kept);

// True when every state of `trimmed` holds just the blocks that the state of `kept` holds, and the
// check finds nothing in it.
bool IsTrimOf(StoredPair& trimmed, StoredPair& pair, const std::vector<State>& kept);

}  // namespace tolvenar::pc
