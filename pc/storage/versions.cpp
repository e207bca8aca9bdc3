#include "pc/storage/versions.h"

#include <algorithm>
#include <map>

#include "pc/storage/state_objects.h"
#include "snapshot/compare/states.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar::pc {
namespace {

// By the place of a version's block.
using Holders = std::map<std::uint32_t, std::vector<std::uint16_t>>;

std::u16string Folded(std::u16string path) {
    std::transform(path.begin(), path.end(), path.begin(), Capital);
    return path;
}

// A key and a value, a folder and a file may be called alike at different times: one history each
// of keys and values, one of what is a file now and a folder then.
std::u16string IdentityOf(const StoredObject& object) {
    return Folded(PathOf(object)) + static_cast<char16_t>(object.type());
}

Holders FindHolders(StoredPair& pair, const std::vector<std::uint16_t>& states) {
    Holders holders;
    for (const std::uint16_t number : states) {
        const std::unique_ptr<ObjectList> list = pair.BuildState(number);
        for (const ObjectList::Node& node : *list) {
            holders[node.record->propOffset].push_back(number);
        }
    }
    return holders;
}

std::vector<ObjectRecord> AdditionsOf(const ObjectList& journal) {
    std::vector<ObjectRecord> additions;
    for (const ObjectList::Node& node : journal) {
        if ((node.record->flags & kAdditionFlags) != 0 && node.record->type != ObjectType::kState) {
            additions.push_back(*node.record);
        }
    }
    return additions;
}

}  // namespace

Histories FindHistories(StoredPair& pair, const ObjectFilter& filter) {
    Histories found;
    for (std::uint32_t number = 1; number <= LastStoredState(&pair.journal()); ++number) {
        if (HasState(pair.journal(), number)) {
            found.states.push_back(static_cast<std::uint16_t>(number));
        }
    }
    Holders holders = FindHolders(pair, found.states);
    std::map<std::u16string, History> by_identity;
    // In the order of the storage file, which is that of their age.
    for (StoredObject& object : DescribeAll(pair, AdditionsOf(pair.journal()))) {
        const std::u16string path = PathOf(object);
        if (object.is_damaged) {
            ++found.damaged_versions;
        } else if (filter.Takes(path)) {
            History& history = by_identity[IdentityOf(object)];
            history.path = path;
            std::vector<std::uint16_t>& states = holders[object.record.propOffset];
            history.versions.push_back({std::move(object), std::move(states)});
        }
    }
    for (auto& [identity, history] : by_identity) {
        found.objects.push_back(std::move(history));
    }
    return found;
}

}  // namespace tolvenar::pc
