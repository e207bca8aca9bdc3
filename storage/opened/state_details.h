// What the user is told about a state: when it was made, and its description.
#pragma once

#include <cstddef>

#include "snapshot/records/object_record.h"
#include "storage/format/info_block.h"
#include "storage/format/storage_names.h"
#include "storage/log/date_text.h"

namespace tolvenar {

struct StateDetails {
    char16_t time[kDateTimeTextUnits];             // local time, short date
    char16_t plain_time[kDateTimeTextUnits];       // the same in digits alone
    char16_t description[kStateDescriptionUnits];  // cut when a damaged block claims more
};

// Reads the block of a state's record. False, and both texts empty, when the storage file or the
// block cannot be read; a description that cannot be read is empty.
bool ReadStateDetails(const StorageNames& names, const ObjectRecord& record, StateDetails& details);

}  // namespace tolvenar
