#include "storage/opened/state_details.h"

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "storage/files/block_io.h"
#include "storage/format/info_block.h"

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
void ReadDescription(HANDLE file, const ObjectRecord& record, std::uint32_t data_bytes,
                     char16_t (&text)[kStateDescriptionUnits]) {
    constexpr std::uint32_t kRoom = sizeof text - sizeof(char16_t);
    if (record.data_offset == kNoData || !MoveTo(file, record.data_offset)) {
        return;
    }
    DWORD done = 0;
    const DWORD wanted = data_bytes < kRoom ? data_bytes : kRoom;
    if (!::ReadFile(file, text, wanted, &done, nullptr)) {
        done = 0;
    }
    text[done / sizeof(char16_t)] = 0;
}

}  // namespace

bool ReadStateDetails(const StorageNames& names, const ObjectRecord& record,
                      StateDetails& details) {
    details = {};
    const UniqueHandle file =
        OpenFile(names.sav, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING);
    InfoBlockHead head{};
    if (!file || !MoveTo(file.get(), record.propOffset) ||
        !ReadAll(file.get(), &head, sizeof head)) {
        return false;
    }
    FormatStateTime(head, details.time);
    ReadDescription(file.get(), record, head.data_bytes, details.description);
    return true;
}

}  // namespace tolvenar
