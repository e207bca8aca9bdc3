#include "storage/files/card_space.h"

#include <string_view>

#include "platform/file_entry.h"
#include "platform/text.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {

bool FreeBytesOfCard(const StorageNames& names, std::uint64_t& free_bytes) {
    const std::size_t backslash = std::u16string_view(names.path).rfind(u'\\');
    TextBuffer<kStoragePathUnits> folder;
    if (backslash == 0 || backslash == std::u16string_view::npos) {
        folder.AppendUnit(u'\\');
    } else {
        folder.Append(names.path, backslash);
    }
    ULARGE_INTEGER available{};
    ULARGE_INTEGER total{};
    ULARGE_INTEGER free_total{};
    if (!::GetDiskFreeSpaceExW(Wide(folder.text()), &available, &total, &free_total)) {
        return false;
    }
    free_bytes = available.QuadPart;
    return true;
}

bool IsOnMountedCard(const char16_t* path) {
    const std::u16string_view whole(path);
    TextBuffer<kStorageNameUnits> folder;
    for (std::size_t at = whole.find(u'\\', 1); at != whole.npos; at = whole.find(u'\\', at + 1)) {
        WIN32_FIND_DATAW found{};
        folder.Clear();
        folder.Append(path, at);
        if (FindEntry(folder.text(), found) && IsMountedCard(found)) {
            return true;
        }
    }
    return false;
}

}  // namespace tolvenar
