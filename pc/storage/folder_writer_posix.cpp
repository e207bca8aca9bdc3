#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "pc/storage/folder_writer.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {
namespace {

// No name of a storage becomes this one: it ends in a dot, which none keeps.
constexpr const char* kPartName = ".tolvenar_part.";

std::string Reason() { return std::strerror(errno); }

bool WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool SetTime(int file, FileTime time) {
    if (time.ticks == 0) {
        return true;
    }
    const UnixTime moment = ToUnix(time);
    const timespec spec{static_cast<std::time_t>(moment.seconds), moment.nanoseconds};
    const timespec times[2] = {spec, spec};
    return ::futimens(file, times) == 0;
}

int CreatePart(int folder) {
    constexpr int kHow = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const int file = ::openat(folder, kPartName, kHow, 0666);
    if (file >= 0 || errno != EEXIST) {
        return file;
    }
    // One that a run before left is nobody's.
    ::unlinkat(folder, kPartName, 0);
    return ::openat(folder, kPartName, kHow, 0666);
}

// Some file systems cannot refuse to replace; there a look before has to do.
bool GiveName(int folder, const char* name) {
    if (::renameat2(folder, kPartName, folder, name, RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL) {
        return false;
    }
    struct stat there {};
    if (::fstatat(folder, name, &there, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::renameat(folder, kPartName, folder, name) == 0;
}

}  // namespace

class FolderWriter::System {
public:
    explicit System(const std::string& root);
    ~System();
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    std::string OpenFolder(const std::vector<std::string>& components, int& folder);
    std::string WriteFile(const std::vector<std::string>& components, FileTime time,
                          const std::function<bool(const Take& take)>& fill);

private:
    std::string Fill(int folder, const std::string& name, FileTime time,
                     const std::function<bool(const Take& take)>& fill);

    int root_;
    std::vector<std::string> opened_;  // the folder that was used last
    int opened_folder_ = -1;
};

FolderWriter::System::System(const std::string& root) {
    std::error_code error;
    std::filesystem::create_directories(root, error);
    root_ = ::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (root_ < 0) {
        throw Failure(ExitCode::kCannot, root + ": " + Reason());
    }
}

FolderWriter::System::~System() {
    if (opened_folder_ >= 0) {
        ::close(opened_folder_);
    }
    ::close(root_);
}

// `folder` stays this object's.
std::string FolderWriter::System::OpenFolder(const std::vector<std::string>& components,
                                             int& folder) {
    if (components.empty()) {
        folder = root_;
        return {};
    }
    if (opened_folder_ >= 0 && components == opened_) {
        folder = opened_folder_;
        return {};
    }
    int current = ::dup(root_);
    for (const std::string& component : components) {
        const bool is_there = ::mkdirat(current, component.c_str(), 0777) == 0 || errno == EEXIST;
        const int below = is_there ? ::openat(current, component.c_str(),
                                              O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)
                                   : -1;
        const std::string reason = below < 0 ? Reason() : std::string();
        ::close(current);
        if (below < 0) {
            return reason;
        }
        current = below;
    }
    if (opened_folder_ >= 0) {
        ::close(opened_folder_);
    }
    opened_ = components;
    folder = opened_folder_ = current;
    return {};
}

std::string FolderWriter::System::WriteFile(const std::vector<std::string>& components,
                                            FileTime time,
                                            const std::function<bool(const Take& take)>& fill) {
    int folder = -1;
    std::string reason = OpenFolder({components.begin(), components.end() - 1}, folder);
    if (!reason.empty()) {
        return reason;
    }
    reason = Fill(folder, components.back(), time, fill);
    if (!reason.empty()) {
        ::unlinkat(folder, kPartName, 0);
    }
    return reason;
}

std::string FolderWriter::System::Fill(int folder, const std::string& name, FileTime time,
                                       const std::function<bool(const Take& take)>& fill) {
    const int file = CreatePart(folder);
    if (file < 0) {
        return Reason();
    }
    std::string reason;
    const bool is_filled = fill([&](std::string_view bytes) {
        const bool written = WriteAll(file, bytes);
        reason = written ? std::string() : Reason();
        return written;
    });
    if (is_filled && !SetTime(file, time)) {
        reason = Reason();
    }
    if (::close(file) != 0 && reason.empty()) {
        reason = Reason();
    }
    if (!is_filled || !reason.empty()) {
        return reason.empty() ? "its contents cannot be read" : reason;
    }
    if (GiveName(folder, name.c_str())) {
        return {};
    }
    return errno == EEXIST ? "something of this name is there already" : Reason();
}

FolderWriter::FolderWriter(const std::string& root) : system_(std::make_unique<System>(root)) {}

FolderWriter::~FolderWriter() = default;

std::string FolderWriter::MakeFolder(const std::vector<std::string>& components) {
    int folder = -1;
    return system_->OpenFolder(components, folder);
}

std::string FolderWriter::WriteFile(const std::vector<std::string>& components, FileTime time,
                                    const std::function<bool(const Take& take)>& fill) {
    return system_->WriteFile(components, time, fill);
}

}  // namespace tolvenar::pc
