#include "simulator/registry/open_keys.h"

#include <map>
#include <mutex>

#include "simulator/system/handles.h"

namespace sim::registry {
namespace {

constexpr std::uintptr_t kFirstRoot = 0x80000000;

std::mutex mutex;
std::map<KeyId, int> open_counts;

bool IsRootHandle(const void* handle) {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    return value >= kFirstRoot && value < kFirstRoot + kRootCount;
}

}  // namespace

OpenKey::OpenKey(KeyId id) : id_(std::move(id)) {
    std::lock_guard guard(mutex);
    ++open_counts[id_];
}

OpenKey::~OpenKey() {
    std::lock_guard guard(mutex);
    const auto count = open_counts.find(id_);
    if (--count->second == 0) {
        open_counts.erase(count);
    }
}

// Whether the listing still holds; when it does not, it is marked as about to be made.
bool OpenKey::Fits(Listing& listing, const Registry& registry) {
    const std::uint32_t generation = registry.Generation();
    std::string order = registry.device().Setting("order", "stored");
    if (listing.made && listing.generation == generation && listing.order == order) {
        return true;
    }
    listing.made = true;
    listing.generation = generation;
    listing.order = std::move(order);
    return false;
}

const std::vector<KeyId>& OpenKey::Subkeys(const Registry& registry) {
    LogStore::View view(registry.device().store());
    if (!Fits(subkeys_, registry)) {
        subkeys_.items = registry.Subkeys(id_);
    }
    return subkeys_.items;
}

const std::vector<std::u16string>& OpenKey::Values(const Registry& registry) {
    LogStore::View view(registry.device().store());
    if (!Fits(values_, registry)) {
        values_.items = registry.Values(id_);
    }
    return values_.items;
}

std::shared_ptr<OpenKey> KeyOfHandle(const void* handle) {
    if (IsRootHandle(handle)) {
        const auto root = reinterpret_cast<std::uintptr_t>(handle) - kFirstRoot;
        return std::make_shared<OpenKey>(RootId(static_cast<std::uint32_t>(root)));
    }
    return handles::Lookup<OpenKey>(handles::Kind::kRegistryKey, handle);
}

void* OpenHandle(const KeyId& key) {
    return handles::Register(handles::Kind::kRegistryKey, std::make_shared<OpenKey>(key));
}

bool CloseKeyHandle(const void* handle) {
    return IsRootHandle(handle) || handles::Close(handles::Kind::kRegistryKey, handle);
}

bool IsOpen(const KeyId& key) {
    std::lock_guard guard(mutex);
    const auto at = open_counts.lower_bound(key);
    if (at == open_counts.end()) {
        return false;
    }
    if (at->first == key) {
        return true;
    }
    for (auto below = at;
         below != open_counts.end() && below->first.compare(0, key.size(), key) == 0; ++below) {
        if (IsAtOrBelow(below->first, key)) {
            return true;
        }
    }
    return false;
}

}  // namespace sim::registry
