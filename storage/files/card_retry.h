// Writing to a card while its driver is loaded again. Header only.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

// After a resume the calls to a card fail for seconds with one of these, open files included.
inline bool MayPass(DWORD error) {
    return error == ERROR_ACCESS_DENIED || error == ERROR_DEV_NOT_EXIST;
}

// What `write` answers, which is tried again four times while the card may come back. `write` must
// have a last error of its own call when it answers false.
template <typename Write>
bool WriteToCard(Write write) {
    constexpr int kRetries = 4;
    constexpr DWORD kRetryMs = 500;
    for (int retry = 0; !write(); ++retry) {
        if (retry == kRetries || !MayPass(::GetLastError())) {
            return false;
        }
        ::Sleep(kRetryMs);
    }
    return true;
}

}  // namespace tolvenar
