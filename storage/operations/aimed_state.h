// The stored state that a difference list leads to, and a list's change of direction.
#pragma once

#include <memory>

#include "snapshot/compare/info_source.h"
#include "storage/opened/opened_storage.h"

namespace tolvenar {

// Turns the sense of a difference list round, and with it the state that the list leads to.
void TurnRound(OpenedStorage& storage, ObjectList& difference);

// The list of the state that the difference list leads to, an empty one when that is none. Null
// when no journal is loaded or there is no memory.
std::unique_ptr<ObjectList> AimedState(const OpenedStorage& storage, InfoSource& info);

// A file whose path the state `aimed` holds is not deleted to get there: each such deletion of the
// difference list becomes the write-back of that state's version, unless the list writes the path
// back already. Two versions of a file may have one key, and the list then holds one of them. False
// when there is no memory.
bool WriteBackAimedVersions(ObjectList& difference, const ObjectList& aimed, InfoSource& info);

}  // namespace tolvenar
