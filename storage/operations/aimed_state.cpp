#include "storage/operations/aimed_state.h"

#include <cstddef>
#include <utility>

#include "snapshot/compare/difference.h"
#include "snapshot/compare/journal_update.h"
#include "snapshot/compare/object_finder.h"
#include "snapshot/compare/record_info.h"

namespace tolvenar {
namespace {

bool IsFileDeletion(const ObjectRecord& record) {
    return record.type == ObjectType::kFile && (record.flags & JF_ADD) != 0;
}
bool IsFileToWrite(const ObjectRecord& record) {
    return record.type == ObjectType::kFile && (record.flags & (JF_ADD | JF_DELETE)) == JF_DELETE;
}

// The files that a list deletes and does not write back, by their paths.
class LostFiles {
public:
    explicit LostFiles(InfoSource& info) : info_(info), written_back_(info), deleted_(info) {}

    // False when there is no memory.
    bool Build(ObjectList& difference) {
        const std::size_t count = difference.CountRecords();
        if (!written_back_.Reserve(count) || !deleted_.Reserve(count)) {
            return false;
        }
        for (ObjectList::Node& node : difference) {
            if (IsFileToWrite(*node.record)) {
                written_back_.AddByName(*node.record);
            }
        }
        for (ObjectList::Node& node : difference) {
            Enter(*node.record);
        }
        return true;
    }
    bool empty() const { return empty_; }

    // The deletion of the file of `version` becomes the version's write-back.
    void WriteBack(const ObjectRecord& version) {
        InfoBlock block;
        if (!FetchInfo(version, info_, block)) {
            return;
        }
        ObjectRecord* deletion = deleted_.FindByName(block);
        if (deletion != nullptr && IsFileDeletion(*deletion)) {
            *deletion = version;
            deletion->flags = JF_DELETE;
        }
    }

private:
    void Enter(ObjectRecord& record) {
        InfoBlock block;
        if (IsFileDeletion(record) && FetchInfo(record, info_, block) &&
            written_back_.FindByName(block) == nullptr && deleted_.AddByName(record)) {
            empty_ = false;
        }
    }

    InfoSource& info_;
    ObjectFinder written_back_;
    ObjectFinder deleted_;
    bool empty_ = true;
};

bool HoldsFileDeletion(const ObjectList& difference) {
    for (const ObjectList::Node& node : difference) {
        if (IsFileDeletion(*node.record)) {
            return true;
        }
    }
    return false;
}

}  // namespace

void TurnRound(OpenedStorage& storage, ObjectList& difference) {
    InvertPendingFlags(difference);
    std::swap(storage.aimed_state, storage.opposite_state);
}

std::unique_ptr<ObjectList> AimedState(const OpenedStorage& storage, InfoSource& info) {
    std::unique_ptr<ObjectList> aimed =
        storage.journal != nullptr ? ObjectList::CreateList() : nullptr;
    const bool is_built =
        aimed != nullptr && (storage.aimed_state == 0 ||
                             BuildStateList(*aimed, *storage.journal, storage.aimed_state, info));
    return is_built ? std::move(aimed) : nullptr;
}

bool WriteBackAimedVersions(ObjectList& difference, const ObjectList& aimed, InfoSource& info) {
    if (!HoldsFileDeletion(difference)) {
        return true;
    }
    LostFiles lost(info);
    if (!lost.Build(difference)) {
        return false;
    }
    if (lost.empty()) {
        return true;
    }
    for (const ObjectList::Node& node : aimed) {
        if (node.record->type == ObjectType::kFile) {
            lost.WriteBack(*node.record);
        }
    }
    return true;
}

}  // namespace tolvenar
