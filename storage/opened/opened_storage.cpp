#include "storage/opened/opened_storage.h"

namespace tolvenar {

void FreeWorkingLists(OpenedStorage& storage, bool all) {
    storage.older.reset();
    storage.newer.reset();
    storage.left_out.Clear();
    if (all) {
        storage.difference.reset();
        storage.failures.Clear();
    }
}

void CloseStorage(OpenedStorage& storage) {
    FreeWorkingLists(storage, true);
    storage.journal.reset();
    storage.saved = {};
    storage.registry_objects.RegObjectClear();
    storage.header.reset();
}

}  // namespace tolvenar
