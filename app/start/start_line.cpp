#include "app/start/start_line.h"

#include "platform/win32.h"

#include "res/version.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

constexpr std::size_t kLineUnits = 120;

// The headers of the MIPS build are told that they are for ARM.
#if defined(__mips__)
constexpr char16_t kCpu[] = u"MIPS";
#elif defined(__arm__)
constexpr char16_t kCpu[] = u"ARM";
#else
constexpr char16_t kCpu[] = u"x86";
#endif

}  // namespace

void LogStart(const char16_t* build) {
    OSVERSIONINFOW system{};
    system.dwOSVersionInfoSize = sizeof system;
    ::GetVersionExW(&system);
    TextBuffer<kLineUnits> line;
    line.Append(u"Tolvenar " TOLVENAR_VERSION ", ").Append(kCpu).Append(u", build ").Append(build);
    line.Append(u", on Windows CE ").AppendUnsigned(system.dwMajorVersion);
    line.Append(u".").AppendUnsigned(system.dwMinorVersion);
    LogMessage(line.text(), u"RunProgram", kLogNote);
}

}  // namespace tolvenar
