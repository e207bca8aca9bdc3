// Describes any object of the device as the head of its data block.
#pragma once

#include "platform/win32.h"

#include <cstddef>
#include <cstdint>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/registry_objects.h"
#include "storage/format/info_block.h"
#include "storage/objects/database_layer.h"

namespace tolvenar {

class ObjectInfo final : public LiveObjects {
public:
    ObjectInfo(const RegistryObjects& registry_objects, DatabaseLayer& databases)
        : registry_objects_(registry_objects), databases_(databases) {}

    // A failing object store is asked ten times, 10 ms apart: an object that was just changed may
    // be unavailable for a moment. A record whose database cannot be read is described without its
    // properties. A name that does not fit a block fails.
    bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) override;
    const RegistryObject* FindRegistryObject(std::uint32_t TolvOID) override {
        return registry_objects_.RegObjectFind(TolvOID);
    }

    // The description of the state being written, cut to 199 units; null is an empty one.
    void SetStateDescription(const char16_t* text);
    const char16_t* state_description() const { return state_description_; }

private:
    bool DescribeRegistryObject(std::uint32_t TolvOID, InfoBlock& block) const;
    bool DescribeState(InfoBlock& block) const;
    bool DescribeStoreObject(CEOID oid, InfoBlock& block);
    bool DescribeRecord(CEOID oid, CEOID database_oid, InfoBlock& block);
    void CountProperties(const char16_t* database_name, CEOID oid, InfoBlock& block);
    bool GetObjectInfoPatiently(CEOID oid, CEOIDINFO& info);

    const RegistryObjects& registry_objects_;
    DatabaseLayer& databases_;
    char16_t state_description_[kStateDescriptionUnits] = {};
};

}  // namespace tolvenar
