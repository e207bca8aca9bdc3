// Reading and writing at places of an open storage or journal file.
#pragma once

#include "platform/win32.h"

#include <cstdint>

#include "platform/unique_resource.h"

namespace tolvenar {

// A file of normal attributes; empty when it cannot be opened, with the last error telling why.
UniqueHandle OpenFile(const char16_t* path, DWORD access, DWORD sharing, DWORD disposition);

// Puts the position of `file` into `offset_out`, then writes `length` bytes of `buffer`, and as
// many more as the name length at its bytes 22 and 23 says when `with_name` is set, in one call.
// Returns WriteFile's result; 0 also when the position is not to be had or less was written.
int WriteBlock(HANDLE file, const void* buffer, std::uint32_t length, std::uint32_t& offset_out,
               bool with_name);

// Position from the file's begin. False when it is not to be had.
bool FilePosition(HANDLE file, std::uint32_t& offset);
bool MoveTo(HANDLE file, std::uint32_t offset);
bool MoveToEnd(HANDLE file);
// False when the size is not to be had, or is 4 GB and more: offsets have 32 bits.
bool FileBytes(HANDLE file, std::uint32_t& bytes);

// True when all of `bytes` were read or written.
bool ReadAll(HANDLE file, void* buffer, std::uint32_t bytes);
bool WriteAll(HANDLE file, const void* buffer, std::uint32_t bytes);

}  // namespace tolvenar
