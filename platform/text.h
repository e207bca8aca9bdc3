// Text is UTF-16 everywhere. Stored text and the platform-free code use char16_t; the platform's
// own type is wchar_t, which has the same 16 bits on the device.
#pragma once

#include "platform/win32.h"

namespace tolvenar {
static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline const wchar_t* Wide(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }
inline wchar_t* Wide(char16_t* text) { return reinterpret_cast<wchar_t*>(text); }
inline const char16_t* Utf16(const wchar_t* text) {
    return reinterpret_cast<const char16_t*>(text);
}
inline char16_t* Utf16(wchar_t* text) { return reinterpret_cast<char16_t*>(text); }

}  // namespace tolvenar
