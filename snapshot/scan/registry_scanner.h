// Walks a registry hive and makes a record of every key and value.
#pragma once

#include "platform/win32.h"

#include <cstdint>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/left_out.h"
#include "snapshot/records/object_list.h"
#include "snapshot/records/registry_objects.h"

namespace tolvenar {

struct RegistryScan {
    ObjectList& list;
    LiveObjects& info;  // describes what `objects` holds
    RegistryObjects& objects;
    LeftOut& left_out;  // gets a lack of memory
    // Whose identifiers no other object gets; may be null.
    IdentifierHolders* holders = nullptr;
};

using RegistryMaker = void (*)(RegistryScan& scan, const RegistryEntry& entry);

// Visits the key and everything below it: a key, its subkeys with all that is in them, its values.
// What cannot be opened or queried is passed over with everything below it; so is what lies deeper
// than a block can name.
void ScanRegistry(RegistryScan& scan, std::uint32_t hive, const char16_t* key_path,
                  RegistryMaker maker);

// Enters an object in the registry-object table and its record in the list, or nothing: what is
// excluded, has no free identifier or too long a name is left out.
void MakeRegistryObject(RegistryScan& scan, const RegistryEntry& entry);

}  // namespace tolvenar
