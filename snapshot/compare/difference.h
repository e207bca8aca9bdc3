// Rebuilding a state's list from the journal and matching two lists. Platform-free.
#pragma once

#include <cstdint>

#include "snapshot/compare/info_source.h"
#include "snapshot/compare/list_matching.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// Fills `out`, an empty list, with the objects of `state` by replaying `all` from its first state
// on. Node keys of `out` carry state number 0; the records keep theirs. False when there is no
// memory: `out` is then incomplete and must not be used.
bool BuildStateList(ObjectList& out, const ObjectList& all, std::uint32_t state, InfoSource& info);

// Compares the older list with the newer and fills `diff` with what is in one only: JF_ADD for the
// newer's, JF_DELETE for the older's. An absent list is an empty one. Records for which `may_match`
// does not hold are no pair; null asks nothing. False when there is no memory.
bool CmpLists(ObjectList* older, ObjectList* newer, ObjectList& diff, InfoSource& info,
              PairTest may_match = nullptr);

// CmpLists as backups and restores need it: two registry objects that are no equal versions of one
// object are no pair. An identifier shows a change of a value's data in one byte alone and a change
// of its type not at all, and a value may have the name and the identifier of a key.
bool FindChanges(ObjectList* older, ObjectList* newer, ObjectList& diff, InfoSource& info);

}  // namespace tolvenar
