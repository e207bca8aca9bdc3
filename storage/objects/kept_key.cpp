#include "storage/objects/kept_key.h"

#include <string_view>

#include "platform/text.h"

namespace tolvenar {

bool KeptKey::Holds(std::uint32_t hive, const char16_t* path) const {
    return key_ && hive_ == hive && std::u16string_view(path) == path_;
}

LONG KeptKey::Open(std::uint32_t hive, const char16_t* path) {
    Close();
    const std::u16string_view text(path);
    if (text.size() >= kPathUnits) {
        return ERROR_FILENAME_EXCED_RANGE;
    }
    path_[text.copy(path_, text.size())] = 0;
    hive_ = hive;
    const LONG status = ::RegOpenKeyExW(RootKey(hive), Wide(path), 0, access_, key_.Put());
    if (status != ERROR_SUCCESS) {
        key_.Release();
    }
    return status;
}

void KeptKey::Close() {
    if (key_) {
        key_.Close();
    }
}

}  // namespace tolvenar
