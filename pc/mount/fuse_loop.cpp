#define FUSE_USE_VERSION 31

#include "pc/mount/fuse_loop.h"

#include <cerrno>
#include <cstring>
#include <fuse3/fuse.h>
#include <new>
#include <unistd.h>

#include "pc/text/failure.h"

namespace tolvenar::pc {
namespace {

MountedTree& Tree() { return *static_cast<MountedTree*>(::fuse_get_context()->private_data); }

OpenedFile& Opened(const fuse_file_info& info) { return *reinterpret_cast<OpenedFile*>(info.fh); }

// No exception gets into the library: it is C.
template <typename Call>
int Guarded(Call call) {
    try {
        return -call();
    } catch (const std::bad_alloc&) {
        return -ENOMEM;
    } catch (const std::exception&) {
        return -EIO;
    }
}

timespec TimeOf(FileTime time) {
    const UnixTime moment = ToUnix(time);
    return {static_cast<time_t>(moment.seconds), moment.nanoseconds};
}

int GetAttributes(const char* path, struct stat* status, fuse_file_info*) {
    return Guarded([&] {
        FileAttributes attributes;
        const int failure = Tree().Look(path, attributes);
        *status = {};
        status->st_mode = attributes.is_folder ? S_IFDIR | 0555 : S_IFREG | 0444;
        status->st_nlink = 1;
        status->st_uid = ::getuid();
        status->st_gid = ::getgid();
        status->st_size = static_cast<off_t>(attributes.bytes);
        if (attributes.time.ticks != 0) {
            status->st_mtim = status->st_ctim = status->st_atim = TimeOf(attributes.time);
        }
        return failure;
    });
}

int ListFolder(const char* path, void* buffer, fuse_fill_dir_t fill, off_t, fuse_file_info*,
               fuse_readdir_flags) {
    return Guarded([&] {
        std::vector<std::string> names = {".", ".."};
        const int failure = Tree().List(path, names);
        for (const std::string& name : names) {
            fill(buffer, name.c_str(), nullptr, 0, static_cast<fuse_fill_dir_flags>(0));
        }
        return failure;
    });
}

int OpenFile(const char* path, fuse_file_info* info) {
    return Guarded([&] {
        if ((info->flags & O_ACCMODE) != O_RDONLY) {
            return EROFS;
        }
        std::unique_ptr<OpenedFile> file;
        const int failure = Tree().Open(path, file);
        info->fh = reinterpret_cast<std::uint64_t>(file.release());
        return failure;
    });
}

int ReadFile(const char*, char* buffer, std::size_t bytes, off_t offset, fuse_file_info* info) {
    std::string piece;
    const int failure = Guarded(
        [&] { return Opened(*info).Read(static_cast<std::uint64_t>(offset), bytes, piece); });
    if (failure != 0) {
        return failure;
    }
    std::memcpy(buffer, piece.data(), piece.size());
    return static_cast<int>(piece.size());
}

int CloseFile(const char*, fuse_file_info* info) {
    delete &Opened(*info);
    return 0;
}

// What is not here is refused by the kernel: the file system is mounted for reading.
fuse_operations Operations() {
    fuse_operations operations{};
    operations.getattr = GetAttributes;
    operations.readdir = ListFolder;
    operations.open = OpenFile;
    operations.read = ReadFile;
    operations.release = CloseFile;
    return operations;
}

}  // namespace

FuseMount::FuseMount(MountedTree& tree, const std::string& folder) {
    const char* arguments[] = {"tolvenar", "-o",
                               "ro,nosuid,nodev,fsname=tolvenar,subtype=tolvenar"};
    fuse_args parsed = FUSE_ARGS_INIT(3, const_cast<char**>(arguments));
    const fuse_operations operations = Operations();
    fuse_ = ::fuse_new(&parsed, &operations, sizeof operations, &tree);
    ::fuse_opt_free_args(&parsed);
    if (fuse_ == nullptr) {
        throw Failure(ExitCode::kCannot, "the system has no file systems of programs");
    }
    if (::fuse_mount(fuse_, folder.c_str()) != 0) {
        ::fuse_destroy(fuse_);
        throw Failure(ExitCode::kCannot, folder + ": cannot be mounted on");
    }
    // They take no signal that somebody else watches.
    if (::fuse_set_signal_handlers(::fuse_get_session(fuse_)) != 0) {
        ::fuse_unmount(fuse_);
        ::fuse_destroy(fuse_);
        throw Failure(ExitCode::kCannot, "signals cannot be watched");
    }
}

FuseMount::~FuseMount() {
    ::fuse_remove_signal_handlers(::fuse_get_session(fuse_));
    ::fuse_unmount(fuse_);
    ::fuse_destroy(fuse_);
}

bool FuseMount::Run() { return ::fuse_loop(fuse_) >= 0; }

}  // namespace tolvenar::pc
