// The structures to which a control's messages point.
#pragma once

#include "platform/win32.h"

#include <cstdint>

namespace tolvenar {

// The structure at the address in a message; null if it cannot be read. Any program may put any
// number there, so the caller looks for a window of its own in what is returned.
template <typename Structure>
Structure* StructureAt(LPARAM address) {
    auto* const structure = reinterpret_cast<Structure*>(address);
    // An unaligned load is a fault on a device.
    const bool is_aligned = static_cast<std::uintptr_t>(address) % alignof(Structure) == 0;
    return is_aligned && !::IsBadReadPtr(structure, sizeof(Structure)) ? structure : nullptr;
}

// What `control` tells by WM_NOTIFY; null if the lParam is none of its notifications.
inline NMHDR* NotificationOf(HWND control, LPARAM address) {
    auto* const header = StructureAt<NMHDR>(address);
    return header != nullptr && control != nullptr && header->hwndFrom == control ? header
                                                                                  : nullptr;
}

}  // namespace tolvenar
