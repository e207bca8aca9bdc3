// How much a backup put into its state, in objects as the user sees them.
#pragma once

#include "storage/opened/engine.h"

namespace tolvenar {

// Counts the difference list of a backup whose blocks are written, before the working lists go. A
// changed object is one, although the list holds a deletion and an addition of it. False when the
// storage file cannot be opened or there is no memory.
bool CountSaved(Engine& engine, SavedCounts& counts);

}  // namespace tolvenar
