// Where the matching and pruning code gets an object's description from: the device describes live
// objects, the storage file stored ones. Platform-free.
#pragma once

#include <cstdint>

#include "snapshot/records/registry_objects.h"
#include "storage/format/info_block.h"
#include "storage/format/stored_objects.h"

namespace tolvenar {

class LiveObjects {
public:
    // Describes the live object: a registry object by `TolvOID` from the registry-object table, any
    // other by `dwOID`; both 0 is the state being written. False when it cannot be described.
    virtual bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) = 0;
    // The entry of the registry-object table, in which key path and value name stand apart. Null
    // when there is none.
    virtual const RegistryObject* FindRegistryObject(std::uint32_t TolvOID) = 0;

protected:
    ~LiveObjects() = default;
};

// Both, for what has to describe either.
class InfoSource {
public:
    InfoSource(StoredObjects& stored, LiveObjects& live) : stored_(stored), live_(live) {}

    bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) {
        return stored_.GetInfoFromStorage(offset, block);
    }
    bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) {
        return live_.GetOIDInfo(TolvOID, dwOID, block);
    }
    const RegistryObject* FindRegistryObject(std::uint32_t TolvOID) {
        return live_.FindRegistryObject(TolvOID);
    }

private:
    StoredObjects& stored_;
    LiveObjects& live_;
};

}  // namespace tolvenar
