// Differences that are never worth storing or restoring. Platform-free.
#pragma once

#include <cstdint>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// One rule; a kind of kEnd closes a table.
struct PruningRule {
    enum Kind : std::uint32_t { kEnd = 0, kRegistryValue = 1, kDatabase = 4 };
    Kind kind;
    std::uint32_t flag_mask;   // database: only records that share a flag with it
    std::uint32_t hive;        // registry value: root key handle value
    const char16_t* key_path;  // registry value
    const char16_t* name;      // value name, null for any; database name
    bool exact;                // the key path is equal, or contains the text
};

extern const PruningRule kBackupPruning[];
extern const PruningRule kRestorePruning[];

// Applies the rules of `table` in order and removes what they name from `diff`.
void PruneDifferences(ObjectList& diff, const PruningRule* table, InfoSource& info);

}  // namespace tolvenar
