// A text of the program's string table.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

constexpr int kResourceTextUnits = 256;  // the longest one and its terminator

class ResourceText {
public:
    // Loads text `id`; an absent one is empty.
    ResourceText(HINSTANCE instance, UINT id) {
        if (::LoadStringW(instance, id, text_, kResourceTextUnits) == 0) {
            text_[0] = 0;
        }
    }
    // The same of the running program.
    explicit ResourceText(UINT id) : ResourceText(::GetModuleHandleW(nullptr), id) {}

    const wchar_t* text() const { return text_; }

private:
    wchar_t text_[kResourceTextUnits];
};

}  // namespace tolvenar
