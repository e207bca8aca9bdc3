// Describes any object as the head of its data block: a live one from the device, a stored one from
// the storage file.
#pragma once

#include "platform/win32.h"

#include <cstddef>
#include <cstdint>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/registry_objects.h"
#include "storage/format/info_block.h"
#include "storage/objects/database_layer.h"

namespace tolvenar {

class ObjectInfo final : public InfoSource {
public:
    ObjectInfo(const RegistryObjects& registry_objects, DatabaseLayer& databases)
        : registry_objects_(registry_objects), databases_(databases) {}

    // A failing object store is asked ten times, 10 ms apart: an object that was just changed may
    // be unavailable for a moment. A record whose database cannot be read is described without its
    // properties. A name that does not fit a block fails.
    bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) override;
    // From the file of UseStorageFile; false without one.
    bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) override;
    const RegistryObject* FindRegistryObject(std::uint32_t TolvOID) override {
        return registry_objects_.RegObjectFind(TolvOID);
    }

    // Borrows the open storage file for GetInfoFromStorage, null when it is closed.
    void UseStorageFile(HANDLE sav_file) { sav_file_ = sav_file; }

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
    HANDLE sav_file_ = nullptr;
    char16_t state_description_[kStateDescriptionUnits] = {};
};

// Lends an open storage file to an ObjectInfo for as long as this lives.
class StorageFileLoan {
public:
    StorageFileLoan(ObjectInfo& info, HANDLE sav_file) : info_(info) {
        info_.UseStorageFile(sav_file);
    }
    ~StorageFileLoan() { info_.UseStorageFile(nullptr); }
    StorageFileLoan(const StorageFileLoan&) = delete;
    StorageFileLoan& operator=(const StorageFileLoan&) = delete;

private:
    ObjectInfo& info_;
};

// Reads the block at `offset` of an open storage file; moves the file's position. False when it is
// not whole there or its name does not fit.
bool ReadBlockFromStorage(std::uint32_t offset, InfoBlock& block, HANDLE sav_file);

}  // namespace tolvenar
