// Changes to the tree itself. Every function answers a platform error code, 0 for success, and is
// one step in the device's log: after a kill it has happened or it has not.
#pragma once

#include <cstdint>

#include "simulator/files/file_table.h"

namespace sim::files {

std::uint32_t DeleteOne(Device& device, const wchar_t* path);
std::uint32_t MoveOne(Device& device, const wchar_t* from, const wchar_t* to);
// The copy carries the attributes and the time of the original.
std::uint32_t CopyOne(Device& device, const wchar_t* from, const wchar_t* to, bool fail_if_exists);
std::uint32_t CreateFolder(Device& device, const wchar_t* path);
std::uint32_t RemoveFolder(Device& device, const wchar_t* path);
std::uint32_t GetAttributes(Device& device, const wchar_t* path, std::uint32_t& attributes);
std::uint32_t SetAttributes(Device& device, const wchar_t* path, std::uint32_t attributes);
// Whether `path` (null: the root) lies on the card.
std::uint32_t VolumeOf(Device& device, const wchar_t* path, bool& card);

}  // namespace sim::files
