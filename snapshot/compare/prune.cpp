#include "snapshot/compare/prune.h"

#include <string_view>

#include "snapshot/compare/exclusion.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/text/log.h"

namespace tolvenar {

const PruningRule kBackupPruning[] = {
    {PruningRule::kRegistryValue, 0, kHiveCurrentUser, u"Software\\Kestrin", u"LQN", false},
    {PruningRule::kRegistryValue, 0, kHiveCurrentUser, u"Software\\Kestrin2\\Tolvenar", nullptr,
     true},
    {PruningRule::kRegistryValue, 0, kHiveClassesRoot, u"{000214A1-0000-0000-C000-000000000046}",
     u"DefaultIcon", true},
    {PruningRule::kRegistryValue, 0, kHiveCurrentUser, u"Comm\\Security\\Crypto\\UserKeys\\Jornada",
     u"RandSeed", false},
    {PruningRule::kEnd, 0, 0, nullptr, nullptr, false},
};

const PruningRule kRestorePruning[] = {
    {PruningRule::kDatabase, JF_ADD, 0, nullptr, u"\\URL Cache", false},
    {PruningRule::kEnd, 0, 0, nullptr, nullptr, false},
};

namespace {

using Text = std::u16string_view;
using Node = ObjectList::Node;

constexpr const char16_t* kDatabaseModule = u"RemoveDBOperationFromJournal";
constexpr const char16_t* kRegistryModule = u"RemoveKestrinAddDeleteLQNRegValue";

struct ValueNames {
    Text key_path;
    Text value_name;
};

// False when the block has no value name.
bool SplitName(const InfoBlock& block, ValueNames& names) {
    const Text name(block.name());
    const std::size_t separator = name.find(kNameSeparator);
    if (separator == Text::npos) {
        return false;
    }
    names.key_path = Text(name.data(), separator);
    names.value_name = Text(name.data() + separator + 1, name.size() - separator - 1);
    return true;
}

// The names of a live value stand apart in the registry-object table, so that a separator inside
// the key path misleads nobody; the joined name is split where there is no table.
bool LiveNames(const ObjectRecord& record, InfoSource& info, const InfoBlock& block,
               ValueNames& names) {
    const RegistryObject* object = info.FindRegistryObject(record.TolvOID);
    if (object == nullptr || object->value_name == nullptr) {
        return SplitName(block, names);
    }
    names = {object->key_path, object->value_name};
    return true;
}

bool PassesRule(const InfoBlock& block, const ValueNames& names, const PruningRule& rule) {
    if (block.type() != ObjectType::kRegistryValue || block.head().hive != rule.hive) {
        return false;
    }
    return rule.exact ? names.key_path == rule.key_path
                      : names.key_path.find(rule.key_path) != Text::npos;
}

bool IsDeletedValue(const ObjectRecord& record, const PruningRule& rule, InfoSource& info,
                    InfoBlock& block, ValueNames& names) {
    if (record.propOffset == 0 || !(record.flags & JF_DELETE)) {
        return false;
    }
    if (!info.GetInfoFromStorage(record.propOffset, block)) {
        LogMessage(u"Fail GetInfoFromStorage", kRegistryModule, kLogError);
        return false;
    }
    return SplitName(block, names) && PassesRule(block, names, rule) &&
           (rule.name == nullptr || names.value_name == rule.name);
}

// True for the new version of the rule's value `value_name`.
bool IsAddedValue(const ObjectRecord& record, const PruningRule& rule, Text value_name,
                  InfoSource& info) {
    if (record.type != ObjectType::kRegistryValue || !(record.flags & JF_ADD)) {
        return false;
    }
    InfoBlock block;
    if (!info.GetOIDInfo(record.TolvOID, record.dwOID, block)) {
        LogMessage(u"Fail GetOIDInfo", kRegistryModule, kLogError);
        return false;
    }
    ValueNames names;
    return LiveNames(record, info, block, names) && PassesRule(block, names, rule) &&
           names.value_name == value_name;
}

// The first node of `diff` with the new version of the rule's value, or null.
Node* FindAddedValue(ObjectList& diff, const PruningRule& rule, Text value_name, InfoSource& info) {
    for (Node& node : diff) {
        if (IsAddedValue(*node.record, rule, value_name, info)) {
            return &node;
        }
    }
    return nullptr;
}

// Removes both versions of the first changed value that the rule names; false when there is none. A
// value that only appeared or only disappeared stays: its pair is what shows that it changed.
bool RemoveChangedValue(ObjectList& diff, const PruningRule& rule, InfoSource& info) {
    InfoBlock block;
    ValueNames names;
    for (Node& deleted : diff) {
        if (!IsDeletedValue(*deleted.record, rule, info, block, names)) {
            continue;
        }
        Node* const added = FindAddedValue(diff, rule, names.value_name, info);
        if (added == nullptr) {
            continue;
        }
        if (added != &deleted) {
            diff.Remove(*added);
        }
        diff.Remove(deleted);
        return true;
    }
    return false;
}

bool IsRuledDatabase(const ObjectRecord& record, const PruningRule& rule, InfoSource& info) {
    // A damaged type that has the database's bit among others counts as one.
    constexpr auto kDatabaseBit = static_cast<std::uint8_t>(ObjectType::kDatabase);
    const bool is_database = (static_cast<std::uint8_t>(record.type) & kDatabaseBit) != 0;
    if (!is_database || !(record.flags & rule.flag_mask)) {
        return false;
    }
    InfoBlock block;
    if (!FetchInfo(record, info, block)) {
        LogMessage(u"Fail GetOIDInfo or GetInfoFromStorage", kDatabaseModule, kLogError);
        return false;
    }
    return Text(block.name()) == rule.name;
}

}  // namespace

void PruneDifferences(ObjectList& diff, const PruningRule* table, InfoSource& info) {
    for (const PruningRule* rule = table; rule->kind != PruningRule::kEnd; ++rule) {
        if (rule->kind == PruningRule::kDatabase) {
            diff.RemoveIf([rule, &info](const Node& node) {
                return IsRuledDatabase(*node.record, *rule, info);
            });
        } else {
            while (RemoveChangedValue(diff, *rule, info)) {
            }
        }
    }
}

}  // namespace tolvenar
