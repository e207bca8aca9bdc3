#include "snapshot/compare/value_names.h"

#include "snapshot/compare/difference.h"
#include "snapshot/compare/record_info.h"

namespace tolvenar {

bool ValueNames::FindSeparator(const ObjectRecord& value, const InfoBlock& block,
                               std::size_t& place) {
    const std::u16string_view name(block.name());
    const std::size_t first = name.find(kNameSeparator);
    if (first == name.npos) {
        return false;
    }
    place = name.rfind(kNameSeparator);
    if (place == first) {
        return true;
    }
    if (!PrepareState(value.state_number)) {
        return false;
    }
    while (place != first && !IsKey(block.head().hive, name.substr(0, place))) {
        place = name.rfind(kNameSeparator, place - 1);
    }
    return true;
}

bool ValueNames::PrepareState(std::uint16_t state) {
    if (keys_ != nullptr && state_ == state) {
        return true;
    }
    if (!ResetList(keys_)) {
        return false;
    }
    state_ = state;
    if (journal_ == nullptr || BuildStateList(*keys_, *journal_, state, info_)) {
        return true;
    }
    keys_.reset();
    return false;
}

bool ValueNames::IsKey(std::uint32_t hive, std::u16string_view key_path) {
    const std::uint32_t TolvOID = MakeKeyTolvOID(hive, key_path);
    for (const ObjectList::Node& node : *keys_) {
        const ObjectRecord& record = *node.record;
        InfoBlock block;
        if (record.type == ObjectType::kRegistryKey && (record.TolvOID & kTolvOidMask) == TolvOID &&
            FetchInfo(record, info_, block) && block.head().hive == hive &&
            key_path == block.name()) {
            return true;
        }
    }
    return false;
}

}  // namespace tolvenar
