#include "simulator/registry/registry_dump.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "simulator/registry/registry.h"
#include "simulator/store/hex.h"
#include "simulator/store/utf8.h"

namespace sim::registry {
namespace {

using nlohmann::json;

bool IsTerminated(const Value& value) {
    const std::string& data = value.data;
    return (value.type == kSz || value.type == kExpandSz) && data.size() >= 2 &&
           data.size() % 2 == 0 && data[data.size() - 1] == '\0' && data[data.size() - 2] == '\0';
}

json ValueJson(const Value& value) {
    const std::size_t size = value.data.size() - (IsTerminated(value) ? sizeof(char16_t) : 0);
    return {{"name", Utf8(value.name)},
            {"type", value.type},
            {"data", ToHex(std::string_view(value.data).substr(0, size))}};
}

void DumpKey(const Registry& registry, const KeyId& key, const std::u16string& path, json& keys) {
    std::vector<std::u16string> names = registry.Values(key);
    std::sort(names.begin(), names.end());
    json values = json::array();
    for (const std::u16string& name : names) {
        values.push_back(ValueJson(*registry.Find(key, name)));
    }
    std::vector<KeyId> subkeys = registry.Subkeys(key);
    std::sort(subkeys.begin(), subkeys.end());
    const bool is_root = key == RootId(key[0] - u'0');
    if (!is_root || !values.empty()) {
        keys.push_back({{"key", Utf8(path)}, {"values", std::move(values)}});
    }
    for (const KeyId& subkey : subkeys) {
        DumpKey(registry, subkey, path + u"\\" + registry.NamesOf(subkey).name, keys);
    }
}

}  // namespace

json DumpJson(Device& device) {
    LogStore::View view(device.store());
    const Registry registry(device);
    json keys = json::array();
    for (std::uint32_t root = 0; root < kRootCount; ++root) {
        DumpKey(registry, RootId(root), RootName(RootId(root), true), keys);
    }
    return keys;
}

}  // namespace sim::registry
