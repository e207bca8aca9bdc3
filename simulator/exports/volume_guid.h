// The two guids that name no mounted volume: all zero is the object store, all ones is any volume.
#pragma once

#include <windbase.h>
#include <windows.h>

namespace sim::exports {

inline bool IsFilledWith(const CEGUID* guid, DWORD word) {
    return guid != nullptr && guid->Data1 == word && guid->Data2 == word && guid->Data3 == word &&
           guid->Data4 == word;
}
inline bool IsSystemGuid(const CEGUID* guid) { return IsFilledWith(guid, 0); }
inline bool IsInvalidGuid(const CEGUID* guid) { return IsFilledWith(guid, 0xFFFFFFFF); }

}  // namespace sim::exports
