// The database records among what is exported, one by one.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "pc/command/exports.h"
#include "pc/storage/record_properties.h"

namespace tolvenar::pc {

// Calls `take` with each record that is whole, and its properties; only with those of databases
// that `is_wanted`. Damaged ones are told.
using IsWanted = std::function<bool(const std::u16string& database)>;
using TakeRecord =
    std::function<void(const StoredObject& record, const std::vector<RecordProperty>& properties)>;
void ForEachRecord(StoredPair& pair, const std::vector<StoredObject>& objects, Omissions& omissions,
                   const IsWanted& is_wanted, const TakeRecord& take);

}  // namespace tolvenar::pc
