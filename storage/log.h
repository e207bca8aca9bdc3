// The operation log: one line for each thing that went wrong or is worth knowing. Platform-free
// declaration; the native tests bring a log of their own.
#pragma once

#include <cstdint>

namespace tolvenar {

// Message-box style words that callers pass; only bit 0x10 decides the level.
constexpr std::uint32_t kLogError = 0x10010;
constexpr std::uint32_t kLogNote = 0x10040;
constexpr std::uint32_t kLogPlain = 0x10000;

// Appends one line to "tolvenar_log.txt" beside the storage file. Never fails visibly; returns 1.
int LogMessage(const char16_t* message, const char16_t* module, std::uint32_t flags);

}  // namespace tolvenar
