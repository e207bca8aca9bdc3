#include <cerrno>
#include <unistd.h>

#include "pc/command/console.h"

namespace tolvenar::pc {
namespace {
constexpr std::size_t kWaitingBytes = 64 * 1024;
}

bool HandleOutput::Put(std::string_view bytes) {
    if (waiting_.size() + bytes.size() <= kWaitingBytes) {
        waiting_ += bytes;
        return true;
    }
    return Flush() && WriteAll(bytes);
}

bool HandleOutput::Flush() {
    const bool written = WriteAll(waiting_);
    waiting_.clear();
    return written;
}

bool HandleOutput::WriteAll(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file_, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace tolvenar::pc
