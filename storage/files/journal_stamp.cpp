#include "storage/files/journal_stamp.h"

#include "platform/text.h"
#include "platform/unique_resource.h"

namespace tolvenar {

JournalStamp ReadJournalStamp(const StorageNames& names) {
    WIN32_FIND_DATAW found{};
    UniqueFind search(::FindFirstFileW(Wide(names.journal), &found));
    if (!search) {
        // On a write-protected card the temporary one stays and is loaded in its place.
        search = UniqueFind(::FindFirstFileW(Wide(names.journal_temporary), &found));
    }
    if (!search) {
        return {};
    }
    const FILETIME& time = found.ftLastWriteTime;
    return {true, found.nFileSizeLow,
            static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime};
}

}  // namespace tolvenar
