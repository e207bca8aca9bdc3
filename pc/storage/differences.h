// What differs between two states, as the device's program finds it for its tree.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "pc/storage/stored_object.h"
#include "snapshot/compare/own_values.h"

namespace tolvenar::pc {

// What the device's program keeps for itself in the registry is in no state.
constexpr OwnValues kOwnValues = {u"Software\\Kestrin2\\Tolvenar", u"Own"};

// The difference list: JF_DELETE what only `older` has, JF_ADD what only `newer` has. A state 0 is
// empty.
std::unique_ptr<ObjectList> FindDifferences(StoredPair& pair, std::uint16_t older,
                                            std::uint16_t newer);

// One object of it. A changed one has both versions.
struct Change {
    std::optional<StoredObject> before;
    std::optional<StoredObject> after;

    const StoredObject& object() const { return after ? *after : *before; }
    bool is_damaged() const {
        return (before && before->is_damaged) || (after && after->is_damaged);
    }
};

// The objects of a difference list in the order of their paths.
std::vector<Change> ChangesOf(StoredPair& pair, const ObjectList& differences);

}  // namespace tolvenar::pc
