#include "pc/storage/versions.h"

#include <algorithm>
#include <map>

#include "pc/storage/lifetimes.h"
#include "pc/storage/state_objects.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar::pc {
namespace {

std::u16string Folded(std::u16string path) {
    std::transform(path.begin(), path.end(), path.begin(), Capital);
    return path;
}

}  // namespace

std::u16string IdentityOf(const StoredObject& object) {
    return Folded(PathOf(object)) + static_cast<char16_t>(object.type());
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

std::string Ranges(const std::vector<std::uint16_t>& states) {
    std::string text;
    for (std::size_t i = 0; i < states.size();) {
        std::size_t last = i;
        while (last + 1 < states.size() && states[last + 1] == states[last] + 1) {
            ++last;
        }
        text += text.empty() ? "" : ", ";
        text += last == i ? std::to_string(states[i])
                          : std::to_string(states[i]) + " to " + std::to_string(states[last]);
        i = last + 1;
    }
    return text.empty() ? "none" : text;
}

Histories FindHistories(StoredPair& pair, const ObjectFilter& filter) {
    Histories found;
    found.states = StatesOf(pair);
    const Lifetimes lifetimes(pair, found.states);
    std::map<std::u16string, History> by_identity;
    // In the order of the storage file, which is that of their age.
    for (StoredObject& object : DescribeAll(pair, AdditionsOf(pair.journal()))) {
        const std::u16string path = PathOf(object);
        if (object.is_damaged) {
            ++found.damaged_versions;
        } else if (filter.Takes(path)) {
            History& history = by_identity[IdentityOf(object)];
            history.path = path;
            std::vector<std::uint16_t> states = lifetimes.StatesOf(object.record.propOffset);
            history.versions.push_back({std::move(object), std::move(states)});
        }
    }
    for (auto& [identity, history] : by_identity) {
        found.objects.push_back(std::move(history));
    }
    std::sort(found.objects.begin(), found.objects.end(), [](const History& a, const History& b) {
        return StandsBefore(a.versions.back().object, b.versions.back().object);
    });
    return found;
}

}  // namespace tolvenar::pc
