// Registry values that the program keeps for itself: they are in no state. Platform-free.
#pragma once

#include <string_view>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// The values of one key below HKEY_CURRENT_USER whose names begin so, case included.
struct OwnValues {
    std::u16string_view key_path;
    std::u16string_view prefix;
};

// Takes them out of a difference list, whether they were added or deleted. A value that cannot be
// described stays.
void TakeOutOwnValues(ObjectList& difference, const OwnValues& own, InfoSource& info);

}  // namespace tolvenar
