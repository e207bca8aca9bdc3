#include "pc/storage/differences.h"

#include <algorithm>
#include <map>
#include <new>

#include "pc/storage/state_objects.h"
#include "pc/storage/versions.h"
#include "snapshot/compare/difference.h"
#include "snapshot/compare/prune.h"

namespace tolvenar::pc {
namespace {

std::unique_ptr<ObjectList> StateOrNothing(StoredPair& pair, std::uint16_t number) {
    return number == 0 ? nullptr : pair.BuildState(number);
}

}  // namespace

std::unique_ptr<ObjectList> FindDifferences(StoredPair& pair, std::uint16_t older,
                                            std::uint16_t newer) {
    const std::unique_ptr<ObjectList> from = StateOrNothing(pair, older);
    const std::unique_ptr<ObjectList> to = StateOrNothing(pair, newer);
    std::unique_ptr<ObjectList> differences = ObjectList::CreateList();
    if (differences == nullptr || !FindChanges(from.get(), to.get(), *differences, pair.info())) {
        throw std::bad_alloc();
    }
    PruneDifferences(*differences, kBackupPruning, pair.info());
    TakeOutOwnValues(*differences, kOwnValues, pair.info());
    return differences;
}

std::vector<Change> ChangesOf(StoredPair& pair, const ObjectList& differences) {
    std::vector<ObjectRecord> records;
    for (const ObjectList::Node& node : differences) {
        if (node.record->type != ObjectType::kState) {
            records.push_back(*node.record);
        }
    }
    std::map<std::u16string, Change> by_identity;
    for (StoredObject& object : DescribeAll(pair, std::move(records))) {
        Change& change = by_identity[IdentityOf(object)];
        const bool is_added = (object.record.flags & JF_ADD) != 0;
        (is_added ? change.after : change.before) = std::move(object);
    }
    std::vector<Change> changes;
    for (auto& [identity, change] : by_identity) {
        changes.push_back(std::move(change));
    }
    std::sort(changes.begin(), changes.end(), [](const Change& a, const Change& b) {
        return StandsBefore(a.object(), b.object());
    });
    return changes;
}

}  // namespace tolvenar::pc
