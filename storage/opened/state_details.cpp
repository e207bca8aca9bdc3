#include "storage/opened/state_details.h"

#include <algorithm>

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "storage/files/handle_bytes.h"
#include "storage/format/info_block.h"
#include "storage/format/storage_reader.h"

namespace tolvenar {
namespace {

void FormatStateTime(const InfoBlockHead& head, char16_t (&text)[kDateTimeTextUnits]) {
    const FILETIME stored = {head.time_low, head.time_high};
    FILETIME local{};
    if (::FileTimeToLocalFileTime(&stored, &local)) {
        FormatFileTimeText(local, text, LOCALE_SSHORTDATE);
    }
}

// Takes what is there of the description: a block may claim more than the file holds.
void ReadDescription(StorageReader& storage, const ObjectRecord& record, std::uint32_t data_bytes,
                     char16_t (&text)[kStateDescriptionUnits]) {
    constexpr std::uint32_t kRoom = sizeof text - sizeof(char16_t);
    std::uint32_t read = 0;
    if (record.data_offset != kNoData) {
        storage.ReadUpTo(record.data_offset, text, std::min(data_bytes, kRoom), read);
    }
    text[read / sizeof(char16_t)] = 0;
}

}  // namespace

bool ReadStateDetails(const StorageNames& names, const ObjectRecord& record,
                      StateDetails& details) {
    details = {};
    const UniqueHandle file = OpenSavFile(names);
    HandleBytes bytes(file.get());
    StorageReader storage(bytes);
    InfoBlockHead head{};
    std::uint32_t read = 0;
    if (!file || !storage.ReadUpTo(record.propOffset, &head, sizeof head, read) ||
        read != sizeof head) {
        return false;
    }
    FormatStateTime(head, details.time);
    ReadDescription(storage, record, head.data_bytes, details.description);
    return true;
}

}  // namespace tolvenar
