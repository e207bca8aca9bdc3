#include "pc/command/progress_line.h"

#include <algorithm>
#include <fmt/format.h>

namespace tolvenar::pc {
namespace {

constexpr auto kBetween = std::chrono::milliseconds(200);
constexpr double kMega = 1e6;

}  // namespace

ProgressLine::ProgressLine(Console& console, const char* what, std::uint64_t total_bytes,
                           Clock::time_point now)
    : console_(console), what_(what), total_(total_bytes), begin_(now), shown_(now) {}

// The line goes: the result stands where it was.
ProgressLine::~ProgressLine() {
    if (is_shown_) {
        console_.err.Write("\r\x1b[K");
        console_.err.Finish();
    }
}

void ProgressLine::Add(std::uint64_t bytes, Clock::time_point now) {
    done_ += bytes;
    if (!console_.is_watched || now - shown_ < kBetween) {
        return;
    }
    shown_ = now;
    is_shown_ = true;
    const double seconds = std::chrono::duration<double>(now - begin_).count();
    const double rate = static_cast<double>(done_) / seconds;
    const double left = static_cast<double>(total_ - std::min(total_, done_)) / std::max(rate, 1.0);
    const double part = total_ == 0 ? 1 : static_cast<double>(done_) / static_cast<double>(total_);
    console_.err.Write(fmt::format("\r{}: {:.0f} %, {:.1f} MB/s, {:.0f} s left\x1b[K", what_,
                                   100 * std::min(part, 1.0), rate / kMega, left));
    console_.err.Finish();
}

}  // namespace tolvenar::pc
