// Where the matching and pruning code gets an object's description from. Platform-free.
#pragma once

#include <cstdint>

#include "snapshot/records/registry_objects.h"
#include "storage/format/info_block.h"

namespace tolvenar {

class InfoSource {
public:
    // Describes the live object: a registry object by `TolvOID` from the registry-object table, any
    // other by `dwOID`; both 0 is the state being written. False when it cannot be described.
    virtual bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) = 0;
    // Reads the block at `offset` of the open storage file. False when it cannot be read.
    virtual bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) = 0;
    // The entry of the registry-object table, in which key path and value name stand apart. Null
    // when there is none.
    virtual const RegistryObject* FindRegistryObject(std::uint32_t) { return nullptr; }

protected:
    ~InfoSource() = default;
};

}  // namespace tolvenar
