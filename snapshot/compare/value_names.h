// Where the joined name of a stored value splits into key path and value name. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// The separator may stand in key paths and value names, too. Then the keys of the state that stored
// the value tell: the value's own key is one of them.
class ValueNames {
public:
    // `journal` may be null: there are no keys then.
    ValueNames(const ObjectList* journal, StoredObjects& stored, LiveObjects& live)
        : journal_(journal), info_(stored, live) {}

    // The place of the separator in the name of `block`, which `value` describes. Of several the
    // one behind the longest key of the value's state; of none behind a key the first. False
    // without a separator, and when there is no memory.
    bool FindSeparator(const ObjectRecord& value, const InfoBlock& block, std::size_t& place);

private:
    bool PrepareState(std::uint16_t state);
    bool IsKey(std::uint32_t hive, std::u16string_view key_path);

    const ObjectList* journal_;
    InfoSource info_;
    std::unique_ptr<ObjectList> keys_;  // the objects of the state that was asked for last
    std::uint16_t state_ = 0;
};

}  // namespace tolvenar
