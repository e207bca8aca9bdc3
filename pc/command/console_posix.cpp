#include <cerrno>
#include <unistd.h>

#include "pc/command/console.h"

namespace tolvenar::pc {
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
