// Describes any object of the device as the head of its data block.
#pragma once

#include "platform/win32.h"

#include <cstddef>
#include <cstdint>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/registry_objects.h"
#include "storage/format/info_block.h"
#include "storage/objects/database_layer.h"
#include "storage/objects/record_reader.h"
#include "storage/objects/value_reader.h"

namespace tolvenar {

// A database record that was just read.
struct ReadRecord {
    CEOID oid;
    CEOID database_oid;
    const char16_t* database_name;
    WORD count;   // properties
    DWORD bytes;  // of the fresh buffer that it was read into
};

class ObjectInfo final : public LiveObjects {
public:
    ObjectInfo(const RegistryObjects& registry_objects, DatabaseLayer& databases)
        : registry_objects_(registry_objects), databases_(databases), records_(databases) {}

    // A failing object store is asked ten times, 10 ms apart: an object that was just changed may
    // be unavailable for a moment. A record whose database cannot be read is described without its
    // properties. A name that does not fit a block fails.
    bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) override;
    const RegistryObject* FindRegistryObject(std::uint32_t TolvOID) override {
        return registry_objects_.RegObjectFind(TolvOID);
    }
    // The same description of a record as GetOIDInfo gives, without reading the record again.
    bool DescribeReadRecord(const ReadRecord& record, InfoBlock& block);

    // The description of the state being written, cut to 199 units; null is an empty one.
    void SetStateDescription(const char16_t* text);
    const char16_t* state_description() const { return state_description_; }

    // While one lives the database of the record and the key of the value that were asked for last
    // stay open, and the record stays.
    class KeptOpen {
    public:
        explicit KeptOpen(ObjectInfo& info) : info_(info) { ++info_.users_; }
        ~KeptOpen() { info_.EndUse(); }
        KeptOpen(const KeptOpen&) = delete;
        KeptOpen& operator=(const KeptOpen&) = delete;

    private:
        ObjectInfo& info_;
    };
    // The properties that the last description is of, when it is this record's and they could be
    // read; else null.
    RecordBuffer* DescribedRecord(CEOID oid);
    // The data of a value, as ValueReader::Read.
    const std::uint8_t* ReadValue(std::uint32_t TolvOID, std::uint32_t bytes);

private:
    bool DescribeRegistryObject(std::uint32_t TolvOID, InfoBlock& block) const;
    bool DescribeState(InfoBlock& block) const;
    bool DescribeStoreObject(CEOID oid, InfoBlock& block);
    bool DescribeRecord(CEOID oid, CEOID database_oid, InfoBlock& block);
    bool OpenDatabase(CEOID oid);
    bool GetObjectInfoPatiently(CEOID oid, CEOIDINFO& info);
    void EndUse();

    const RegistryObjects& registry_objects_;
    DatabaseLayer& databases_;
    RecordReader records_;
    ValueReader values_;
    CEOID described_record_ = 0;
    int users_ = 0;
    char16_t state_description_[kStateDescriptionUnits] = {};
};

}  // namespace tolvenar
