// The stored state that a difference list leads to, and a list's change of direction.
#pragma once

#include "storage/opened/engine.h"

namespace tolvenar {

// Turns the sense of a difference list round, and with it the state that the list leads to.
void TurnRound(OpenedStorage& storage, ObjectList& difference);

// A file whose path the aimed-at state holds is not deleted to get there: each such deletion of the
// difference list becomes the write-back of that state's version, unless the list writes the path
// back already. Two versions of a file may have one key, and the list then holds one of them. False
// when the storage file cannot be opened, no journal is loaded or there is no memory.
bool WriteBackAimedVersions(Engine& engine);

}  // namespace tolvenar
