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

}  // namespace tolvenar::pc
