#include "tests/native/recording_log.h"

#include "snapshot/text/log.h"

namespace tolvenar {
namespace {
std::vector<std::string> lines;

std::string Ascii(const char16_t* text) {
    std::string result;
    for (; *text != 0; ++text) {
        result += *text < 0x80 ? static_cast<char>(*text) : '?';
    }
    return result;
}

void Record(const char16_t* message, const char16_t* module, std::uint32_t flags) {
    lines.push_back(std::string(flags & 0x10 ? "E " : "I ") + Ascii(module) + ": " +
                    Ascii(message));
}

// Installed before any case runs.
const bool installed = (InstallLogSink(Record), true);

}  // namespace

const std::vector<std::string>& LogLines() { return lines; }
void ClearLog() { lines.clear(); }

}  // namespace tolvenar
