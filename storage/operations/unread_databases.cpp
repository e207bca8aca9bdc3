#include "storage/operations/unread_databases.h"

#include "snapshot/compare/object_finder.h"
#include "snapshot/compare/own_files.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/text/letter_case.h"
#include "storage/objects/presence.h"
#include "storage/operations/held_back.h"

namespace tolvenar {
namespace {

bool IsRecord(const ObjectRecord& record) { return record.type == ObjectType::kDatabaseRecord; }

// What the scan read of databases.
class ScannedDatabases {
public:
    ScannedDatabases(ObjectList& scanned, InfoSource& info) : scanned_(scanned), finder_(info) {}

    // False when there is no memory.
    bool Index() {
        if (!finder_.Reserve(2 * scanned_.CountRecords())) {
            return false;
        }
        for (ObjectList::Node& node : scanned_) {
            if (IsOfDatabase(*node.record)) {
                finder_.AddById(*node.record);
            }
            if (node.record->type == ObjectType::kDatabase) {
                finder_.AddByName(*node.record);
            }
        }
        return true;
    }
    bool HoldId(const ObjectRecord& record) const {
        return finder_.FindById(record.type, record.dwOID) != nullptr;
    }
    // Whether the database was read of which the block is, or a record's.
    bool HoldDatabase(const InfoBlock& block) const {
        InfoBlock database = block;
        database.head().type = static_cast<std::uint16_t>(ObjectType::kDatabase);
        return finder_.FindByName(database) != nullptr;
    }

private:
    ObjectList& scanned_;
    ObjectFinder finder_;
};

class UnreadGuard {
public:
    UnreadGuard(Engine& engine, InfoSource& info)
        : storage_(engine.storage),
          databases_(engine.databases),
          cache_(engine.databases),
          own_files_(engine.storage.names),
          info_(info),
          scanned_(*engine.storage.newer, info) {}

    bool HoldBackAll() {
        if (!scanned_.Index()) {
            return false;
        }
        HoldBackIf([this](const ObjectRecord& record, const InfoBlock& block) {
            return IsUnread(record, block);
        });
        // Only now it is known which of the unread records no state's version is of.
        HoldBackIf([this](const ObjectRecord& record, const InfoBlock& block) {
            return IsRecord(record) && !scanned_.HoldId(record) && HasUnknownRecord(block);
        });
        return true;
    }

private:
    template <typename Predicate>
    void HoldBackIf(Predicate is_meant) {
        for (const ObjectList::Node& node : *storage_.difference) {
            ObjectRecord& record = *node.record;
            InfoBlock block;
            if (IsOfDatabase(record) && IsPendingVersion(record) &&
                info_.GetInfoFromStorage(record.propOffset, block) && is_meant(record, block)) {
                storage_.left_out.MarkKept(record.type, block.name(), IdInLeftOut(record));
                HoldBack(record, FailureReason::kInUse, storage_.failures);
            }
        }
    }
    bool IsUnread(const ObjectRecord& record, const InfoBlock& block) {
        if (IsLeftOut(storage_.left_out, record, block) && !scanned_.HoldId(record)) {
            return true;
        }
        return storage_.left_out.has_unlisted_databases() && !scanned_.HoldDatabase(block) &&
               IsDatabaseThere(block);
    }
    // A record's database, too.
    bool IsDatabaseThere(const InfoBlock& block) {
        ObjectRecord database{};
        database.type = ObjectType::kDatabase;
        CEOID oid = 0;
        return IsOnDevice(databases_, own_files_.names(), database, block, oid);
    }
    // A record of the database that was not read and whose id no version has: it may be any.
    bool HasUnknownRecord(const InfoBlock& block) const {
        const LeftOut::Entry* entry = storage_.left_out.First();
        for (; entry != nullptr; entry = entry->next) {
            if (entry->type == ObjectType::kDatabaseRecord && !entry->is_kept &&
                EqualIgnoringCase(entry->name, block.name())) {
                return true;
            }
        }
        return false;
    }

    OpenedStorage& storage_;
    DatabaseLayer& databases_;
    const DatabaseCacheScope cache_;
    const OwnFiles own_files_;
    InfoSource& info_;
    ScannedDatabases scanned_;
};

bool HasUnreadDatabases(const LeftOut& left_out) {
    bool has_any = left_out.has_unlisted_databases();
    for (const LeftOut::Entry* entry = left_out.First(); entry != nullptr; entry = entry->next) {
        has_any |= entry->type != ObjectType::kFile;
    }
    return has_any;
}

}  // namespace

std::uint32_t IdInLeftOut(const ObjectRecord& record) {
    return IsRecord(record) ? record.dwOID : 0;
}

bool IsLeftOut(const LeftOut& left_out, const ObjectRecord& record, const InfoBlock& block) {
    if (!IsOfDatabase(record)) {
        return false;
    }
    const char16_t* const name = block.name();
    return left_out.Contains(ObjectType::kDatabase, name) ||
           (IsRecord(record) &&
            (left_out.Contains(ObjectType::kDatabaseRecord, name) ||
             left_out.Contains(ObjectType::kDatabaseRecord, name, record.dwOID)));
}

bool HoldBackUnread(RestorePlan& plan, Descriptions& descriptions) {
    OpenedStorage& storage = plan.engine.storage;
    if (!HasUnreadDatabases(storage.left_out)) {
        return true;
    }
    plan.leaves_unread = true;
    return UnreadGuard(plan.engine, descriptions.source).HoldBackAll();
}

}  // namespace tolvenar
