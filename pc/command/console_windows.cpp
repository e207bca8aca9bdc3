#include <windows.h>

#include "pc/command/console.h"
#include "pc/text/utf.h"

namespace tolvenar::pc {
namespace {

constexpr int kStandardOutput = 1;

HANDLE HandleOf(int file) {
    return ::GetStdHandle(file == kStandardOutput ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool IsConsole(HANDLE handle) {
    DWORD mode = 0;
    return ::GetConsoleMode(handle, &mode) != FALSE;
}

// A console shows units; as bytes they would be of its own code page.
bool Show(HANDLE console, std::string_view bytes) {
    const std::u16string units = ToUtf16(bytes);
    for (std::size_t done = 0; done < units.size();) {
        const std::wstring part(units.begin() + static_cast<std::ptrdiff_t>(done), units.end());
        DWORD shown = 0;
        const DWORD most = part.size() > 8192 ? 8192 : static_cast<DWORD>(part.size());
        if (!::WriteConsoleW(console, part.data(), most, &shown, nullptr) || shown == 0) {
            return false;
        }
        done += shown;
    }
    return true;
}

}  // namespace

bool HandleOutput::WriteAll(std::string_view bytes) {
    const HANDLE handle = HandleOf(file_);
    if (IsConsole(handle)) {
        return Show(handle, bytes);
    }
    while (!bytes.empty()) {
        DWORD written = 0;
        const DWORD most = bytes.size() > 0x1000000 ? 0x1000000 : static_cast<DWORD>(bytes.size());
        if (!::WriteFile(handle, bytes.data(), most, &written, nullptr) || written == 0) {
            return false;
        }
        bytes.remove_prefix(written);
    }
    return true;
}

}  // namespace tolvenar::pc
