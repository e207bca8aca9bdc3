#include "snapshot/compare/lost_containers.h"

#include <algorithm>
#include <new>
#include <string_view>

#include "snapshot/records/registry_objects.h"

namespace tolvenar {
namespace {

using Text = std::u16string_view;

constexpr std::uint32_t kFolderAttribute = 0x10;

bool IsContainer(const InfoBlock& block) {
    switch (block.type()) {
        case ObjectType::kFile: return (block.head().attributes & kFolderAttribute) != 0;
        case ObjectType::kRegistryKey:
        case ObjectType::kDatabase: return true;
        default: return false;
    }
}

// What is behind `path` in `name`; false when `name` does not begin with it.
bool RestBehind(Text path, Text name, Text& rest) {
    if (name.size() <= path.size() || Text(name.data(), path.size()) != path) {
        return false;
    }
    rest = Text(name.data() + path.size(), name.size() - path.size());
    return true;
}

bool IsInKey(const InfoBlock& object, const InfoBlock& key) {
    if (!IsRegistryType(object.type()) || object.head().hive != key.head().hive) {
        return false;
    }
    const Text path(key.name());
    Text rest;
    return RestBehind(path, object.name(), rest) &&
           (path.empty() || rest[0] == u'\\' || rest[0] == kNameSeparator);
}

bool IsIn(const InfoBlock& object, const InfoBlock& container) {
    Text rest;
    switch (container.type()) {
        case ObjectType::kFile:
            return object.type() == ObjectType::kFile &&
                   RestBehind(container.name(), object.name(), rest) && rest[0] == u'\\';
        case ObjectType::kDatabase:
            return object.type() == ObjectType::kDatabaseRecord &&
                   Text(object.name()) == container.name();
        default: return IsInKey(object, container);
    }
}

}  // namespace

void LostContainers::Add(const InfoBlock& object) {
    if (!IsContainer(object)) {
        return;
    }
    if (count_ == room_) {
        const std::size_t room = room_ == 0 ? 4 : 2 * room_;
        std::unique_ptr<InfoBlock[]> grown(new (std::nothrow) InfoBlock[room]);
        if (grown == nullptr) {
            is_overfull_ = true;
            return;
        }
        std::copy_n(blocks_.get(), count_, grown.get());
        blocks_ = std::move(grown);
        room_ = room;
    }
    blocks_[count_++] = object;
}

bool LostContainers::Contain(const InfoBlock& object) const {
    return is_overfull_ ||
           std::any_of(blocks_.get(), blocks_.get() + count_,
                       [&object](const InfoBlock& lost) { return IsIn(object, lost); });
}

}  // namespace tolvenar
