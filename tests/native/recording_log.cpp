#include "tests/native/recording_log.h"

#include "snapshot/text/log.h"
#include "tests/support/text.h"

namespace tolvenar {
namespace {
using tests::Narrow;

std::vector<std::string> lines;

void Record(const char16_t* message, const char16_t* module, std::uint32_t flags) {
    lines.push_back(std::string(flags & 0x10 ? "E " : "I ") + Narrow(std::u16string(module)) +
                    ": " + Narrow(std::u16string(message)));
}

// Installed before any case runs.
const bool installed = (InstallLogSink(Record), true);

}  // namespace

const std::vector<std::string>& LogLines() { return lines; }
void ClearLog() { lines.clear(); }

}  // namespace tolvenar
