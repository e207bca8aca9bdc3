#include "storage/files/journal_stamp.h"

#include "platform/text.h"
#include "platform/unique_resource.h"

namespace tolvenar {

JournalStamp ReadJournalStamp(const StorageNames& names) {
    WIN32_FIND_DATAW found{};
    const UniqueFind search(::FindFirstFileW(Wide(names.journal), &found));
    if (!search) {
        return {};
    }
    const FILETIME& time = found.ftLastWriteTime;
    return {true, found.nFileSizeLow,
            static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime};
}

}  // namespace tolvenar
