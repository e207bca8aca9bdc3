#include "storage/opened/state_details.h"

#include <cstring>

#include "platform/unique_resource.h"
#include "storage/files/handle_bytes.h"
#include "storage/format/state_block.h"

namespace tolvenar {
namespace {

void FormatStateTime(const StateBlock& block, StateDetails& details) {
    const FILETIME stored = {block.time_low, block.time_high};
    FILETIME local{};
    if (::FileTimeToLocalFileTime(&stored, &local)) {
        FormatFileTimeText(local, details.time, LOCALE_SSHORTDATE);
        FormatPlainFileTime(local, details.plain_time);
    }
}

}  // namespace

bool ReadStateDetails(const StorageNames& names, const ObjectRecord& record,
                      StateDetails& details) {
    details = {};
    const UniqueHandle file = OpenSavFile(names);
    HandleBytes bytes(file.get());
    StorageReader storage(bytes);
    StateBlock block;
    if (!file || !ReadStateBlock(storage, record, block)) {
        return false;
    }
    FormatStateTime(block, details);
    std::memcpy(details.description, block.description, sizeof details.description);
    return true;
}

}  // namespace tolvenar
