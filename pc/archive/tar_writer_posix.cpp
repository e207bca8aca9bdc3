#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <clocale>
#include <unistd.h>

#include "pc/archive/tar_writer.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {
namespace {

// As files are that somebody makes with the usual mask.
constexpr int kFilePermissions = 0644;
constexpr int kFolderPermissions = 0755;

struct FreeEntry {
    void operator()(archive_entry* entry) const { ::archive_entry_free(entry); }
};

// libarchive takes names for text of the locale, which need not be one of UTF-8.
class Utf8Locale {
public:
    Utf8Locale() : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
        if (locale_ != nullptr) {
            before_ = ::uselocale(locale_);
        }
    }
    ~Utf8Locale() {
        if (locale_ != nullptr) {
            ::uselocale(before_);
            ::freelocale(locale_);
        }
    }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

private:
    const locale_t locale_;
    locale_t before_ = nullptr;
};

la_ssize_t TakeBytes(archive* writer, void* take, const void* bytes, std::size_t count) {
    const auto& taker = *static_cast<const FileSink::Take*>(take);
    if (taker({static_cast<const char*>(bytes), count})) {
        return static_cast<la_ssize_t>(count);
    }
    ::archive_set_error(writer, EIO, "the archive cannot be written");
    return -1;
}

std::string Joined(const std::vector<std::string>& components) {
    std::string path;
    for (const std::string& component : components) {
        path += (path.empty() ? "" : "/") + component;
    }
    return path;
}

}  // namespace

TarWriter::TarWriter(Take take, FileTime usual_time)
    : take_(std::move(take)), usual_time_(usual_time), archive_(::archive_write_new()) {
    if (archive_ == nullptr) {
        throw std::bad_alloc();
    }
    ::archive_write_set_format_pax(archive_);
    // Nothing is padded to the blocks of a tape.
    ::archive_write_set_bytes_in_last_block(archive_, 1);
    Check(::archive_write_open(archive_, &take_, nullptr, TakeBytes, nullptr));
}

TarWriter::~TarWriter() {
    // Without Finish the archive is given up, and nothing more is written. An archive that is told
    // to have failed would not free all of its memory.
    take_ = [](std::string_view) { return false; };
    ::archive_write_free(archive_);
}

void TarWriter::Check(int result) const {
    if (result < ARCHIVE_WARN) {
        const char* const why = ::archive_error_string(archive_);
        throw Failure(ExitCode::kCannot,
                      why == nullptr ? "the archive cannot be written" : std::string(why));
    }
}

void TarWriter::WriteHead(const std::vector<std::string>& components, FileTime time, bool is_folder,
                          std::uint64_t bytes) {
    const std::unique_ptr<archive_entry, FreeEntry> entry(::archive_entry_new());
    if (entry == nullptr) {
        throw std::bad_alloc();
    }
    const UnixTime moment = ToUnix(time.ticks == 0 ? usual_time_ : time);
    const Utf8Locale utf8;
    ::archive_entry_set_pathname(entry.get(), Joined(components).c_str());
    ::archive_entry_set_filetype(entry.get(), is_folder ? AE_IFDIR : AE_IFREG);
    ::archive_entry_set_perm(entry.get(), is_folder ? kFolderPermissions : kFilePermissions);
    ::archive_entry_set_uid(entry.get(), ::geteuid());
    ::archive_entry_set_gid(entry.get(), ::getegid());
    ::archive_entry_set_mtime(entry.get(), static_cast<time_t>(moment.seconds),
                              static_cast<long>(moment.nanoseconds));
    ::archive_entry_set_size(entry.get(), static_cast<la_int64_t>(bytes));
    Check(::archive_write_header(archive_, entry.get()));
}

std::string TarWriter::MakeFolder(const std::vector<std::string>& components) {
    WriteHead(components, {}, true, 0);
    return {};
}

std::string TarWriter::WriteFile(const std::vector<std::string>& components, FileTime time,
                                 std::uint64_t bytes, const Fill& fill) {
    WriteHead(components, time, false, bytes);
    const bool is_filled = fill([this](std::string_view piece) {
        const la_ssize_t written = ::archive_write_data(archive_, piece.data(), piece.size());
        Check(written < 0 ? ARCHIVE_FATAL : ARCHIVE_OK);
        return true;
    });
    if (!is_filled) {
        throw Failure(ExitCode::kCannot, Joined(components) + ": could not be read to its end");
    }
    Check(::archive_write_finish_entry(archive_));
    return {};
}

void TarWriter::Finish() { Check(::archive_write_close(archive_)); }

}  // namespace tolvenar::pc
