#include "pc/storage/pair_files.h"

#include <filesystem>
#include <strings.h>
#include <system_error>

#include "pc/text/failure.h"

namespace tolvenar::pc {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSav = ".sav";
constexpr const char* kJournal = ".jrn";
constexpr const char* kTemporary = ".jrn_1";

bool IsFile(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(fs::u8path(path), error);
}

// The path of a file that is there: as it stands, or but for the case of its name. Empty for none.
std::string FindFile(const std::string& path) {
    if (IsFile(path)) {
        return path;
    }
    const fs::path wanted = fs::u8path(path);
    const fs::path folder = wanted.has_parent_path() ? wanted.parent_path() : fs::path(".");
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        const fs::path name = entry.path().filename();
        const std::string found = (wanted.parent_path() / name).u8string();
        const std::string wanted_name = wanted.filename().u8string();
        if (::strcasecmp(name.u8string().c_str(), wanted_name.c_str()) == 0 && IsFile(found)) {
            return found;
        }
    }
    return {};
}

// As the device makes it of the stem.
std::string CutAtFirstDot(const std::string& stem) {
    const fs::path path = fs::u8path(stem);
    const std::string name = path.filename().u8string();
    return (path.parent_path() / fs::u8path(name.substr(0, name.find('.')))).u8string();
}

}  // namespace

std::string StemOf(const std::string& name) {
    for (const std::string extension : {kSav, kJournal, kTemporary}) {
        const std::size_t stem = name.size() - extension.size();
        if (name.size() > extension.size() &&
            ::strcasecmp(name.c_str() + stem, extension.c_str()) == 0) {
            return name.substr(0, stem);
        }
    }
    return name;
}

namespace {

bool IsPartOfStorage(const std::string& name) {
    const std::string stem = StemOf(name);
    return !FindFile(stem + kSav).empty() || !FindFile(stem + kJournal).empty() || IsFile(name);
}

}  // namespace

PairFiles FindPair(const std::string& name) {
    const std::string stem = StemOf(name);
    PairFiles files;
    files.sav = FindFile(stem + kSav);
    if (files.sav.empty()) {
        files.sav = FindFile(CutAtFirstDot(stem) + kSav);
    }
    if (files.sav.empty()) {
        throw IsFile(name) && stem == name
            ? Failure(ExitCode::kNotAStorage, name + ": not a storage: its name ends in \".sav\"")
            : Failure(ExitCode::kCannot, stem + kSav + ": there is no such file");
    }
    const std::string journal = FindFile(stem + kJournal);
    const std::string temporary = FindFile(stem + kTemporary);
    files.has_journal = !journal.empty();
    files.has_temporary = !temporary.empty();
    files.journal = files.has_journal ? journal : stem + kJournal;
    files.temporary = files.has_temporary ? temporary : stem + kTemporary;
    return files;
}

StorageAddress ParseAddress(const std::string& text) {
    const std::size_t at = text.rfind('@');
    if (at == text.npos || at == 0 || IsPartOfStorage(text)) {
        return {text, {}};
    }
    return {text.substr(0, at), text.substr(at + 1)};
}

}  // namespace tolvenar::pc
