// What an operation works with. The application owns the parts and hands them on together.
#pragma once

#include "snapshot/text/progress.h"
#include "storage/objects/database_layer.h"
#include "storage/objects/object_info.h"
#include "storage/opened/opened_storage.h"

namespace tolvenar {

struct Engine {
    OpenedStorage& storage;
    DatabaseLayer& databases;
    ObjectInfo& info;  // describes from storage.registry_objects and databases
    Progress& progress;
};

}  // namespace tolvenar
