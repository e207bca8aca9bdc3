// A storage's times, FILETIMEs in UTC, as this machine tells and takes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tolvenar::pc {

struct FileTime {
    std::uint64_t ticks = 0;  // of 100 ns since 1 January 1601; 0 is no time

    static FileTime Of(std::uint32_t low, std::uint32_t high) {
        return {std::uint64_t{high} << 32 | low};
    }
};

struct UnixTime {
    std::int64_t seconds;
    std::uint32_t nanoseconds;
};
UnixTime ToUnix(FileTime time);

// "2026-11-16 04:33:12" in the time zone of this machine; "-" for no time.
std::string LocalText(FileTime time);
// "2026-11-16T04:33:12Z"; empty for no time.
std::string UtcText(FileTime time);

// The last moment that is meant by a local time "2026-11-16", "2026-11-16 04:33" or
// "2026-11-16 04:33:12", with a blank or a "T" between: of a day its end. Nothing for another text.
std::optional<FileTime> ParseLocalTime(const std::string& text);

}  // namespace tolvenar::pc
