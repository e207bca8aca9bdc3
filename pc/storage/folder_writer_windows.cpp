#include <windows.h>

#include "pc/storage/folder_writer.h"
#include "pc/text/failure.h"
#include "pc/text/wide.h"
#include "pc/text/windows_error.h"

namespace tolvenar::pc {
namespace {

// No name of a storage becomes this one: none begins with a dot and ends in this.
constexpr const wchar_t* kPartName = L"\\.tolvenar_part";

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsLink(const std::wstring& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

bool WriteAll(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        const DWORD part = bytes.size() > 0x1000000 ? 0x1000000 : static_cast<DWORD>(bytes.size());
        DWORD written = 0;
        if (!::WriteFile(file, bytes.data(), part, &written, nullptr) || written == 0) {
            return false;
        }
        bytes.remove_prefix(written);
    }
    return true;
}

bool SetTime(HANDLE file, FileTime time) {
    const FILETIME ticks{static_cast<DWORD>(time.ticks), static_cast<DWORD>(time.ticks >> 32)};
    return time.ticks == 0 || ::SetFileTime(file, nullptr, nullptr, &ticks) != FALSE;
}

// The folder and those above it. False when one is not there and cannot be made.
bool MakeWithParents(const std::wstring& path) {
    if (IsFolder(path) || ::CreateDirectoryW(path.c_str(), nullptr)) {
        return true;
    }
    const std::size_t slash = path.find_last_of(L"\\/");
    return slash != path.npos && slash != 0 && MakeWithParents(path.substr(0, slash)) &&
           ::CreateDirectoryW(path.c_str(), nullptr);
}

}  // namespace

class FolderWriter::System {
public:
    explicit System(const std::string& root) : root_(WholePath(root)) {
        if (!MakeWithParents(root_)) {
            throw Failure(ExitCode::kCannot, root + ": " + LastErrorText());
        }
    }

    std::string OpenFolder(const std::vector<std::string>& components, std::wstring& folder) {
        folder = root_;
        for (const std::string& component : components) {
            folder += L"\\" + WidePath(component);
            const bool is_there = ::CreateDirectoryW(folder.c_str(), nullptr) || IsFolder(folder);
            if (!is_there) {
                return LastErrorText();
            }
            if (IsLink(folder)) {
                return "a link is there";
            }
        }
        return {};
    }
    std::string WriteFile(const std::vector<std::string>& components, FileTime time,
                          const std::function<bool(const Take& take)>& fill) {
        std::wstring folder;
        std::string reason = OpenFolder({components.begin(), components.end() - 1}, folder);
        if (!reason.empty()) {
            return reason;
        }
        const std::wstring path = folder + L"\\" + WidePath(components.back());
        if (::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
            return "something of this name is there already";
        }
        const std::wstring part = folder + kPartName;
        reason = Fill(part, time, fill);
        if (reason.empty() && !::MoveFileExW(part.c_str(), path.c_str(), 0)) {
            reason = LastErrorText();
        }
        if (!reason.empty()) {
            ::DeleteFileW(part.c_str());
        }
        return reason;
    }

private:
    // The form that takes paths of any length.
    static std::wstring WholePath(const std::string& path) {
        wchar_t whole[MAX_PATH * 4] = L"";
        const DWORD units =
            ::GetFullPathNameW(WidePath(path).c_str(), MAX_PATH * 4, whole, nullptr);
        if (units == 0 || units >= MAX_PATH * 4) {
            throw Failure(ExitCode::kCannot, path + ": " + LastErrorText());
        }
        const std::wstring text(whole, units);
        return text.compare(0, 2, L"\\\\") == 0 ? text : L"\\\\?\\" + text;
    }
    static std::string Fill(const std::wstring& part, FileTime time,
                            const std::function<bool(const Take& take)>& fill) {
        // One that a run before left is nobody's.
        ::DeleteFileW(part.c_str());
        const HANDLE file = ::CreateFileW(part.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                          FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            return LastErrorText();
        }
        std::string reason;
        const bool is_filled = fill([&](std::string_view bytes) {
            const bool written = WriteAll(file, bytes);
            reason = written ? std::string() : LastErrorText();
            return written;
        });
        if (is_filled && !SetTime(file, time)) {
            reason = LastErrorText();
        }
        ::CloseHandle(file);
        return is_filled || !reason.empty() ? reason : "its contents cannot be read";
    }

    const std::wstring root_;
};

FolderWriter::FolderWriter(const std::string& root) : system_(std::make_unique<System>(root)) {}

FolderWriter::~FolderWriter() = default;

std::string FolderWriter::MakeFolder(const std::vector<std::string>& components) {
    std::wstring folder;
    return system_->OpenFolder(components, folder);
}

std::string FolderWriter::WriteFile(const std::vector<std::string>& components, FileTime time,
                                    const std::function<bool(const Take& take)>& fill) {
    return system_->WriteFile(components, time, fill);
}

}  // namespace tolvenar::pc
