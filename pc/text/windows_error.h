// What the last call of Windows that failed says. Header only.
#pragma once

#include <string>
#include <windows.h>

#include "pc/text/utf.h"

namespace tolvenar::pc {

inline std::string LastErrorText() {
    const DWORD error = ::GetLastError();
    wchar_t text[256] = L"";
    DWORD units = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                   nullptr, error, 0, text, 256, nullptr);
    while (units != 0 && text[units - 1] <= L' ') {
        --units;
    }
    return units == 0 ? "error " + std::to_string(error)
                      : ToUtf8(std::u16string(text, text + units));
}

}  // namespace tolvenar::pc
