#include "snapshot/compare/own_values.h"

#include "snapshot/compare/exclusion.h"
#include "snapshot/compare/record_info.h"

namespace tolvenar {
namespace {

// Key path, separator and the beginning of a value's name.
bool IsOwnName(std::u16string_view name, const OwnValues& own) {
    const std::size_t separator = own.key_path.size();
    return name.substr(0, separator) == own.key_path && name.size() > separator &&
           name[separator] == kNameSeparator &&
           name.substr(separator + 1, own.prefix.size()) == own.prefix;
}

}  // namespace

void TakeOutOwnValues(ObjectList& difference, const OwnValues& own, InfoSource& info) {
    difference.RemoveIf([&](const ObjectList::Node& node) {
        InfoBlock block;
        return node.record->type == ObjectType::kRegistryValue &&
               FetchInfo(*node.record, info, block) && block.head().hive == kHiveCurrentUser &&
               IsOwnName(block.name(), own);
    });
}

}  // namespace tolvenar
