// Paths as Windows takes them. Header only.
#pragma once

#include <string>

#include "pc/text/utf.h"

namespace tolvenar::pc {

inline std::wstring WidePath(const std::string& path) {
    const std::u16string units = ToUtf16(path);
    return {units.begin(), units.end()};
}

}  // namespace tolvenar::pc
