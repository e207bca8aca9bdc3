#include "storage/operations/withdrawals.h"

#include <cstddef>

#include "snapshot/compare/object_finder.h"
#include "snapshot/compare/own_files.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/engine/descriptions.h"
#include "storage/objects/presence.h"
#include "storage/operations/left_out_log.h"
#include "storage/operations/unread_databases.h"

namespace tolvenar {
namespace {

constexpr std::uint16_t kUnwritten = JF_ADD | JF_FAILED;

bool IsDeletion(const ObjectRecord& record) {
    return (record.flags & (JF_ADD | JF_DELETE | JF_FAILED)) == JF_DELETE;
}
bool IsUnwritten(const ObjectRecord& record) { return (record.flags & kUnwritten) == kUnwritten; }

bool HoldsDeletion(const ObjectList& list) {
    for (const ObjectList::Node& node : list) {
        if (IsDeletion(*node.record)) {
            return true;
        }
    }
    return false;
}

// False when the stored block cannot be read: such a deletion stays.
bool Describe(const ObjectRecord& deletion, InfoSource& info, InfoBlock& block) {
    return deletion.propOffset != 0 && info.GetInfoFromStorage(deletion.propOffset, block) &&
           block.type() == deletion.type;
}

// What the scan read. Each half is indexed when it is first asked for: the names of a whole
// registry take a while, and a backup without deletions needs none.
class ScannedObjects {
public:
    ScannedObjects(ObjectList& scanned, InfoSource& info)
        : scanned_(scanned), by_id_(info), by_name_(info) {}

    bool HoldsId(ObjectType type, CEOID oid) {
        if (!ids_known_) {
            ids_known_ = Index(by_id_, false);
        }
        return by_id_.FindById(type, oid) != nullptr;
    }
    bool HoldsName(const InfoBlock& block) {
        if (!names_known_) {
            names_known_ = Index(by_name_, true);
        }
        return by_name_.FindByName(block) != nullptr;
    }
    bool out_of_memory() const { return out_of_memory_; }

private:
    bool Index(ObjectFinder& finder, bool registry) {
        if (!finder.Reserve(scanned_.CountRecords())) {
            out_of_memory_ = true;
            return false;
        }
        for (ObjectList::Node& node : scanned_) {
            ObjectRecord& record = *node.record;
            if (IsRegistryObject(record) != registry) {
                continue;
            }
            if (registry) {
                finder.AddByName(record);
            } else {
                finder.AddById(record);
            }
        }
        return true;
    }

    ObjectList& scanned_;
    ObjectFinder by_id_;
    ObjectFinder by_name_;
    bool ids_known_ = false;
    bool names_known_ = false;
    bool out_of_memory_ = false;
};

// The additions of a difference list by name, indexed when one is first asked for. One that could
// not be written is none.
class AddedObjects {
public:
    AddedObjects(ObjectList& difference, InfoSource& info)
        : difference_(difference), by_name_(info) {}

    bool HoldsName(const InfoBlock& block) {
        if (!is_known_) {
            is_known_ = true;
            Index();
        }
        return by_name_.FindByName(block) != nullptr;
    }
    bool out_of_memory() const { return out_of_memory_; }

private:
    void Index() {
        out_of_memory_ = !by_name_.Reserve(difference_.CountRecords());
        if (out_of_memory_) {
            return;
        }
        for (ObjectList::Node& node : difference_) {
            if ((node.record->flags & kUnwritten) == JF_ADD) {
                by_name_.AddByName(*node.record);
            }
        }
    }

    ObjectList& difference_;
    ObjectFinder by_name_;
    bool is_known_ = false;
    bool out_of_memory_ = false;
};

// The objects that are on the device and that the scan did not read. An addition is something that
// the scan read.
class UnreadObjects {
public:
    UnreadObjects(Engine& engine, InfoSource& info)
        : databases_(engine.databases),
          cache_(engine.databases),
          own_files_(engine.storage.names),
          left_out_(engine.storage.left_out),
          scanned_(*engine.storage.newer, info),
          added_(*engine.storage.difference, info) {}

    bool Hold(const ObjectRecord& deletion, const InfoBlock& block) {
        if (IsRegistryObject(deletion)) {
            CEOID none = 0;
            return !scanned_.HoldsName(block) && Find(deletion, block, none);
        }
        // The scan met it: whether it can be read by now or not, it is there.
        if (IsLeftOut(left_out_, deletion, block) &&
            !scanned_.HoldsId(deletion.type, deletion.dwOID)) {
            return true;
        }
        CEOID oid = 0;
        return Find(deletion, block, oid) && !scanned_.HoldsId(deletion.type, oid) &&
               !IsReplaced(deletion, block);
    }
    // True when another object of this name is added. Records share the name of their database.
    bool IsReplaced(const ObjectRecord& deletion, const InfoBlock& block) {
        return deletion.type != ObjectType::kDatabaseRecord && added_.HoldsName(block);
    }
    bool out_of_memory() const { return scanned_.out_of_memory() || added_.out_of_memory(); }

private:
    bool Find(const ObjectRecord& deletion, const InfoBlock& block, CEOID& oid) {
        return IsOnDevice(databases_, own_files_.names(), deletion, block, oid);
    }

    DatabaseLayer& databases_;
    const DatabaseCacheScope cache_;
    const OwnFiles own_files_;
    const LeftOut& left_out_;
    ScannedObjects scanned_;
    AddedObjects added_;
};

// What the scan read under the key of a deletion, in another version or because the stored one
// could not be read to be compared with; null when there is none.
const ObjectRecord* FindReplaced(const ObjectList::Node& deletion, const ObjectList& scanned) {
    const bool is_file = deletion.record->type == ObjectType::kFile;
    if (!is_file && !IsRegistryObject(*deletion.record)) {
        return nullptr;
    }
    const ObjectList::Node* newer =
        scanned.FindByKey(is_file ? deletion.key.OfScannedFile() : deletion.key);
    if (newer == nullptr || newer->record->type != deletion.record->type ||
        (newer->record->flags & JF_MATCHED) != 0) {
        return nullptr;
    }
    const bool is_same_file =
        is_file && newer->record->content_fingerprint == deletion.record->content_fingerprint;
    return is_same_file ? nullptr : newer->record;
}

// A file whose contents alone changed has one key for both versions, and so has a registry object
// whose stored block cannot be read; the deletion of the older then took the place of the newer's
// addition (docs/oddities.md, 11). The replay lets the addition replace the older version.
void TurnIntoAdditions(ObjectList& difference, const ObjectList& scanned) {
    for (ObjectList::Node& node : difference) {
        const ObjectRecord* newer =
            IsDeletion(*node.record) ? FindReplaced(node, scanned) : nullptr;
        if (newer != nullptr) {
            *node.record = *newer;
            node.record->flags = JF_ADD;
        }
    }
}

bool TakeOutUnread(Engine& engine, BackupResult& result) {
    OpenedStorage& storage = engine.storage;
    Descriptions descriptions(engine);
    if (!descriptions.sav_file) {
        return false;
    }
    UnreadObjects unread(engine, descriptions.source);
    storage.difference->RemoveIf([&](const ObjectList::Node& node) {
        const ObjectRecord& record = *node.record;
        InfoBlock block;
        if (!IsDeletion(record) || !Describe(record, descriptions.source, block) ||
            !unread.Hold(record, block) || unread.out_of_memory()) {
            return false;
        }
        storage.left_out.MarkKept(record.type, block.name(), IdInLeftOut(record));
        LogKept(record, block);
        ++result.kept;
        return true;
    });
    return !unread.out_of_memory();
}

// False when there is no memory.
bool IndexUnwritten(ObjectList& difference, ObjectFinder& unwritten) {
    if (!unwritten.Reserve(difference.CountRecords())) {
        return false;
    }
    for (ObjectList::Node& node : difference) {
        ObjectRecord& record = *node.record;
        if (!IsUnwritten(record)) {
            continue;
        }
        // Records share the name of their database.
        if (record.type == ObjectType::kDatabaseRecord || !unwritten.AddByName(record)) {
            unwritten.AddById(record);
        }
    }
    return true;
}

}  // namespace

bool WithdrawDeletions(Engine& engine, BackupResult& result) {
    OpenedStorage& storage = engine.storage;
    TurnIntoAdditions(*storage.difference, *storage.newer);
    if (HoldsDeletion(*storage.difference) && !TakeOutUnread(engine, result)) {
        return false;
    }
    result.held = LogNotStored(storage.left_out);
    return true;
}

bool WithdrawDeletionsOfFailed(Engine& engine) {
    ObjectList& difference = *engine.storage.difference;
    if (!HoldsDeletion(difference)) {
        return true;
    }
    Descriptions descriptions(engine);
    ObjectFinder unwritten(descriptions.source);
    if (!descriptions.sav_file || !IndexUnwritten(difference, unwritten)) {
        return false;
    }
    UnreadObjects unread(engine, descriptions.source);
    for (ObjectList::Node& node : difference) {
        ObjectRecord& record = *node.record;
        InfoBlock block;
        if (!IsDeletion(record)) {
            continue;
        }
        const bool has_name = Describe(record, descriptions.source, block);
        if (has_name && unread.IsReplaced(record, block)) {
            continue;
        }
        if (unwritten.FindById(record.type, record.dwOID) != nullptr ||
            (has_name && (unwritten.FindByName(block) != nullptr || unread.Hold(record, block)))) {
            record.flags |= JF_FAILED;
        }
    }
    return !unread.out_of_memory();
}

}  // namespace tolvenar
