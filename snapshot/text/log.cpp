#include "snapshot/text/log.h"

namespace tolvenar {
namespace {

LogSink installed_sink = nullptr;

}  // namespace

LogSink InstallLogSink(LogSink sink) {
    const LogSink before = installed_sink;
    installed_sink = sink;
    return before;
}

int LogMessage(const char16_t* message, const char16_t* module, std::uint32_t flags) {
    if (installed_sink != nullptr) {
        installed_sink(message, module, flags);
    }
    return 1;
}

}  // namespace tolvenar
