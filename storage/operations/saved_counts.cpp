#include "storage/operations/saved_counts.h"

#include "snapshot/compare/object_finder.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/engine/descriptions.h"

namespace tolvenar {
namespace {

bool IsCounted(const ObjectRecord& record, std::uint16_t flag) {
    return (record.flags & (flag | JF_FAILED)) == flag && record.type != ObjectType::kState;
}

std::uint32_t Count(const ObjectList& list, std::uint16_t flag) {
    std::uint32_t count = 0;
    for (const ObjectList::Node& node : list) {
        count += IsCounted(*node.record, flag) ? 1 : 0;
    }
    return count;
}

// What a list deletes.
class Deletions {
public:
    explicit Deletions(InfoSource& info) : info_(info), finder_(info) {}

    // False when there is no memory.
    bool Build(ObjectList& difference) {
        if (!finder_.Reserve(difference.CountRecords())) {
            return false;
        }
        for (ObjectList::Node& node : difference) {
            ObjectRecord& record = *node.record;
            if (!IsCounted(record, JF_DELETE)) {
                continue;
            }
            // Records share the name of their database.
            if (record.type == ObjectType::kDatabaseRecord) {
                finder_.AddById(record);
            } else {
                finder_.AddByName(record);
            }
        }
        return true;
    }
    bool HoldObjectOf(const ObjectRecord& addition) const {
        if (addition.type == ObjectType::kDatabaseRecord) {
            return finder_.FindById(addition.type, addition.dwOID) != nullptr;
        }
        InfoBlock block;
        return FetchInfo(addition, info_, block) && finder_.FindByName(block) != nullptr;
    }

private:
    InfoSource& info_;
    ObjectFinder finder_;
};

// A file whose contents alone changed has one key for both versions, and no deletion.
bool Replaces(const ObjectList::Node& addition, const ObjectList* older) {
    const ObjectList::Node* const found =
        older != nullptr ? older->FindByKey(addition.key) : nullptr;
    return found != nullptr && found->record->type == addition.record->type;
}

}  // namespace

bool CountSaved(Engine& engine, SavedCounts& counts) {
    ObjectList& difference = *engine.storage.difference;
    counts.added = Count(difference, JF_ADD);
    counts.deleted = Count(difference, JF_DELETE);
    Descriptions descriptions(engine);
    Deletions deletions(descriptions.source);
    if (!descriptions.sav_file || !deletions.Build(difference)) {
        return false;
    }
    for (const ObjectList::Node& node : difference) {
        if (!IsCounted(*node.record, JF_ADD)) {
            continue;
        }
        const bool has_deletion = counts.deleted != 0 && deletions.HoldObjectOf(*node.record);
        if (has_deletion || Replaces(node, engine.storage.older.get())) {
            ++counts.changed;
            --counts.added;
            counts.deleted -= has_deletion ? 1 : 0;
        }
    }
    return true;
}

}  // namespace tolvenar
