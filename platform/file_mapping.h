// A whole file as a read-only mapping.
#pragma once

#include "platform/unique_resource.h"

namespace tolvenar {

// The unit that the offsets of views must be a multiple of; asked for once.
DWORD AllocationGranularity();

// A read-only mapping of the existing file `path`; `share` as for opening a file, `flags` its
// attribute and FILE_FLAG bits; `size`, when given, receives its bytes. Empty, with the last error,
// when it cannot be opened or mapped; a file without bytes cannot.
UniqueHandle MapFileForReading(const wchar_t* path, DWORD share, DWORD flags,
                               DWORD* size = nullptr);

}  // namespace tolvenar
