// Times as the calendar of this machine has them.
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>

#include "pc/text/file_time.h"

namespace tolvenar::pc {
namespace {

TEST(FileTimes, AreToldInUtcAndLocalTime) {
    ::setenv("TZ", "ABC-2", 1);
    ::tzset();
    const FileTime time{0x01DD7583957AC700};
    EXPECT_EQ("2026-11-16T04:33:10Z", UtcText(time));
    EXPECT_EQ("2026-11-16 06:33:10", LocalText(time));
    EXPECT_EQ("-", LocalText({}));
    EXPECT_EQ(1794803590, ToUnix(time).seconds);
    EXPECT_EQ(100u, ToUnix({time.ticks + 1}).nanoseconds);
    // The latest that there is.
    EXPECT_EQ("60056-05-28T05:36:10Z", UtcText({0xFFFFFFFFFFFFFFFF}));
    ::setenv("TZ", "UTC0", 1);
    ::tzset();
}

TEST(FileTimes, AreTakenToTheEndOfWhatIsSaid) {
    ::setenv("TZ", "UTC0", 1);
    ::tzset();
    EXPECT_EQ("2026-11-16T23:59:59Z", UtcText(*ParseLocalTime("2026-11-16")));
    EXPECT_EQ("2026-11-16T04:33:59Z", UtcText(*ParseLocalTime("2026-11-16 04:33")));
    EXPECT_EQ("2026-11-16T04:33:10Z", UtcText(*ParseLocalTime("2026-11-16T04:33:10")));
    for (const char* text : {"", "x", "2026-02-30", "2026-11", "2026-11-16x", "2026-11-16 04",
                             "2026-11-16 04:33:10 ", "2026-13-01", "0000-01-01"}) {
        EXPECT_FALSE(ParseLocalTime(text)) << text;
    }
}

}  // namespace
}  // namespace tolvenar::pc
