#include "storage/opened/old_journals.h"

#include "platform/win32.h"

#include "platform/text.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

// The name has room for a number of so many digits.
constexpr std::uint32_t kMaxOldJournals = 9999;

void LogMoved(const char16_t* name) {
    TextBuffer<kStorageNameUnits + 16> text;
    text.Append(u"Moved aside as ").Append(name);
    LogMessage(text.text(), u"MoveJournalAside", kLogNote);
}

}  // namespace

bool MoveJournalAside(const StorageNames& names, const char16_t* path) {
    for (std::uint32_t number = 1; number <= kMaxOldJournals; ++number) {
        char16_t name[kStorageNameUnits];
        if (!MakeOldJournalName(names, number, name)) {
            return false;
        }
        if (::MoveFileW(Wide(path), Wide(name))) {
            LogMoved(name);
            return true;
        }
        const DWORD error = ::GetLastError();
        if (error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS) {
            return false;
        }
    }
    return false;
}

}  // namespace tolvenar
