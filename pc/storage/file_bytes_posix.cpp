#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "pc/storage/file_bytes.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {

FileBytes::FileBytes(const std::string& path) : file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (file_ < 0) {
        throw Failure(ExitCode::kCannot, path + ": " + std::strerror(errno));
    }
}

FileBytes::~FileBytes() { ::close(file_); }

bool FileBytes::ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                       std::uint32_t& read) {
    for (read = 0; read < bytes;) {
        const ssize_t taken = ::pread(file_, static_cast<char*>(buffer) + read, bytes - read,
                                      static_cast<off_t>(offset) + read);
        if (taken == 0) {
            break;
        }
        if (taken > 0) {
            read += static_cast<std::uint32_t>(taken);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool FileBytes::Size(std::uint32_t& bytes) {
    struct stat status {};
    if (::fstat(file_, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > 0xFFFFFFFF) {
        return false;
    }
    bytes = static_cast<std::uint32_t>(status.st_size);
    return true;
}

}  // namespace tolvenar::pc
