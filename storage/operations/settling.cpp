#include "storage/operations/settling.h"

#include <cstring>
#include <memory>

#include "snapshot/records/indexed_array.h"
#include "storage/objects/stored_record.h"
#include "storage/operations/held_back.h"

namespace tolvenar {
namespace {

bool IsLiveDeletion(const ObjectRecord& record) {
    return IsPendingDeletion(record) && record.propOffset == 0 && HasObjectStoreId(record.type);
}
bool IsVersion(const ObjectRecord& record) {
    return IsPendingVersion(record) && HasObjectStoreId(record.type);
}

// Of a database the fingerprint is the number of its records.
bool HaveEqualChecksums(const ObjectRecord& a, const ObjectRecord& b) {
    return a.type == b.type && a.info_checksum == b.info_checksum &&
           (CountsRecords(a.type) || a.content_fingerprint == b.content_fingerprint);
}

// The device's objects that are to be deleted, by what must be equal.
class LiveObjectsOfList {
public:
    bool Build(ObjectList& difference) {
        if (!entries_.Reserve(difference.CountRecords())) {
            return false;
        }
        for (ObjectList::Node& node : difference) {
            if (IsLiveDeletion(*node.record)) {
                entries_.Add({node.record, nullptr});
            }
        }
        return true;
    }

    // The first for which `is_equal` holds of those with the checksums of `version`, or null.
    template <typename Predicate>
    ObjectRecord* Find(const ObjectRecord& version, Predicate is_equal) const {
        const Entry* entry = entries_.Find(HashOf(version), [&](const Entry& present) {
            return IsLiveDeletion(*present.record) &&
                   HaveEqualChecksums(*present.record, version) && is_equal(*present.record);
        });
        return entry == nullptr ? nullptr : entry->record;
    }

private:
    static std::uint32_t HashOf(const ObjectRecord& record) {
        return MixBits(static_cast<std::uint32_t>(record.type), record.info_checksum);
    }
    struct Entry {
        ObjectRecord* record;
        Entry* bucket_next;
        std::uint32_t Hash() const { return HashOf(*record); }
    };

    IndexedArray<Entry> entries_;
};

class Settler {
public:
    Settler(Engine& engine, Descriptions& descriptions)
        : databases_(engine.databases), descriptions_(descriptions) {}

    // The device's object that is `version`, or null.
    ObjectRecord* Find(const LiveObjectsOfList& live, const ObjectRecord& version) {
        const auto is_any = [](const ObjectRecord&) { return true; };
        InfoBlock block;
        if (live.Find(version, is_any) == nullptr ||
            !descriptions_.blocks.GetInfoFromStorage(version.propOffset, block) ||
            block.type() != version.type) {
            return nullptr;
        }
        const std::uint32_t data_bytes = HasComparedData(block) ? block.head().data_bytes : 0;
        const std::unique_ptr<std::uint8_t[]> data =
            descriptions_.stored.ReadData(data_bytes == 0 ? 0 : version.data_offset, data_bytes);
        if (data == nullptr) {
            return nullptr;
        }
        return live.Find(version, [&](const ObjectRecord& candidate) {
            InfoBlock described;
            return descriptions_.source.GetOIDInfo(0, candidate.dwOID, described) &&
                   std::memcmp(described.bytes(), block.bytes(), block.size()) == 0 &&
                   HoldsData(candidate.dwOID, block, data.get());
        });
    }

private:
    // The contents of a file are compared by their checksum.
    static bool HasComparedData(const InfoBlock& block) {
        return block.type() == ObjectType::kDatabase || block.type() == ObjectType::kDatabaseRecord;
    }

    bool HoldsData(CEOID oid, const InfoBlock& block, const std::uint8_t* data) {
        switch (block.type()) {
            case ObjectType::kDatabase: return HasSortOrders(oid, block, data);
            case ObjectType::kDatabaseRecord: return HoldsProperties(databases_, block, oid, data);
            default: return true;
        }
    }

    bool HasSortOrders(CEOID oid, const InfoBlock& block, const std::uint8_t* data) {
        CEOIDINFO info;
        const std::size_t bytes = block.head().sort_order_count * sizeof(SORTORDERSPEC);
        return bytes <= block.head().data_bytes && bytes <= sizeof info.infDatabase.rgSortSpecs &&
               databases_.GetObjectInfo(oid, info) && info.wObjType == OBJTYPE_DATABASE &&
               std::memcmp(info.infDatabase.rgSortSpecs, data, bytes) == 0;
    }

    DatabaseLayer& databases_;
    Descriptions& descriptions_;
};

}  // namespace

bool Settle(Engine& engine, Descriptions& descriptions, RestoreRun& run, bool& settled) {
    settled = false;
    ObjectList& difference = *engine.storage.difference;
    LiveObjectsOfList live;
    if (!live.Build(difference)) {
        return false;
    }
    Settler settler(engine, descriptions);
    for (ObjectList::Node& node : difference) {
        ObjectRecord& version = *node.record;
        ObjectRecord* const object = IsVersion(version) ? settler.Find(live, version) : nullptr;
        if (object == nullptr) {
            continue;
        }
        if (version.type == ObjectType::kDatabaseRecord && !run.written.Add(object->dwOID)) {
            return false;
        }
        run.journal.UpdateJournalOid(version, object->dwOID);
        version.flags = 0;
        object->flags = 0;
        settled = true;
    }
    RemoveHandled(difference);
    return true;
}

}  // namespace tolvenar
