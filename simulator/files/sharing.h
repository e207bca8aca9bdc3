// Sharing beyond what the host's own rules give: locks that a tester sets, and whether a file is
// free.
#pragma once

#include <cstdint>
#include <string>

#include "simulator/files/file_table.h"

namespace sim::files {

// A lock is a handle open for reading that shares nothing ("none"), reading ("read") or reading and
// writing ("write"); "" is no lock. Whether a file under it opens with this access and sharing.
bool LockAllows(const std::string& lock, std::uint32_t access, std::uint32_t share);

// 0 when no process holds the file open in any way, nor runs it, else a platform error.
std::uint32_t CheckUnused(FileTable& table, const Node& node);

}  // namespace sim::files
