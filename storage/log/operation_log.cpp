#include "storage/log/operation_log.h"

#include <string_view>

#include "app/settings/settings.h"
#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"
#include "storage/log/date_text.h"

namespace tolvenar {
namespace {

constexpr char16_t kLogName[] = u"\\tolvenar_log.txt";
constexpr std::uint32_t kErrorBit = 0x10;
constexpr std::size_t kLineUnits = 260;
constexpr char16_t kLineEnd[] = u"\r\n";
constexpr std::size_t kLineEndUnits = 2;

// Opened for each line, so that every line is on the medium when the call returns.
UniqueHandle OpenLog() {
    char16_t storage_path[kSettingPathUnits];
    TextBuffer<kSettingPathUnits + sizeof kLogName / sizeof(char16_t)> log_path;
    if (ReadStoragePath(storage_path)) {
        const std::u16string_view path{storage_path};
        const std::size_t backslash = path.rfind(u'\\');
        log_path.Append(path.data(), backslash == path.npos ? 0 : backslash).Append(kLogName);
    }
    return UniqueHandle(::CreateFileW(Wide(log_path.text()), GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                      nullptr));
}

// A line that is too long loses the end of its message, never its own end.
std::size_t FormatLine(char16_t (&buffer)[kLineUnits], const char16_t* message,
                       const char16_t* module, std::uint32_t flags) {
    SYSTEMTIME now;
    ::GetSystemTime(&now);
    char16_t date[kDateTimeTextUnits];
    const std::size_t date_length = FormatDateTimeText(now, date, LOCALE_SSHORTDATE);

    TextBuilder line(buffer, kLineUnits - kLineEndUnits);
    line.Clear();
    line.Append((flags & kErrorBit) != 0 ? u"E - " : u"I - ").Append(date, date_length);
    line.Append(u" GMT - Module: ").Append(module).Append(u"; Message: ").Append(message);
    TextBuilder end(buffer + line.length(), kLineUnits - line.length());
    end.Append(kLineEnd);
    return line.length() + end.length();
}

void AppendLine(const char16_t* message, const char16_t* module, std::uint32_t flags) {
    const UniqueHandle file = OpenLog();
    if (!file) {
        return;
    }
    ::SetFilePointer(file.get(), 0, nullptr, FILE_END);
    char16_t line[kLineUnits];
    const std::size_t length = FormatLine(line, message, module, flags);
    DWORD written = 0;
    ::WriteFile(file.get(), line, static_cast<DWORD>(length * sizeof(char16_t)), &written, nullptr);
}

}  // namespace

void InstallOperationLog() { InstallLogSink(AppendLine); }

}  // namespace tolvenar
