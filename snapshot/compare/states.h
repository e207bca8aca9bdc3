// The states that a journal holds. Platform-free.
#pragma once

#include <cstdint>

#include "snapshot/records/object_list.h"

namespace tolvenar {

// The greatest number of a state that has a state record: a backup whose first block could not be
// written leaves objects without one. 0 when there is none.
std::uint32_t LastStoredState(const ObjectList* journal);
// The record of that state; null when there is none.
const ObjectRecord* FindLastState(const ObjectList* journal);

// Whether any record of the journal has that number.
bool HasState(const ObjectList& journal, std::uint32_t state);

}  // namespace tolvenar
