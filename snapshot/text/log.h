// The operation log as everything writes to it: one line for each thing that went wrong or is worth
// knowing. Where the lines go is installed from above. Platform-free.
#pragma once

#include <cstdint>

namespace tolvenar {

// Message-box style words that callers pass; only bit 0x10 decides the level.
constexpr std::uint32_t kLogError = 0x10010;
constexpr std::uint32_t kLogNote = 0x10040;
constexpr std::uint32_t kLogPlain = 0x10000;

// Takes one line. Never fails visibly.
using LogSink = void (*)(const char16_t* message, const char16_t* module, std::uint32_t flags);

// Sends all further lines to `sink`; null drops them. The sink of before.
LogSink InstallLogSink(LogSink sink);

// Drops the lines of what is found out only and done perhaps later: they would tell of it as done.
class LogPause {
public:
    LogPause() : paused_(InstallLogSink(nullptr)) {}
    ~LogPause() { InstallLogSink(paused_); }
    LogPause(const LogPause&) = delete;
    LogPause& operator=(const LogPause&) = delete;

private:
    LogSink paused_;
};

// Hands one line to the installed sink. Always returns 1.
int LogMessage(const char16_t* message, const char16_t* module, std::uint32_t flags);

}  // namespace tolvenar
