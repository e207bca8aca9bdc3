// What an operation works with. The application owns the parts and hands them on together.
#pragma once

#include "snapshot/progress.h"
#include "storage/database_layer.h"
#include "storage/object_info.h"
#include "storage/opened_storage.h"

namespace tolvenar {

struct Engine {
    OpenedStorage& storage;
    DatabaseLayer& databases;
    ObjectInfo& info;  // describes from storage.registry_objects and databases
    Progress& progress;
};

}  // namespace tolvenar
