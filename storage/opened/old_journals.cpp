#include "storage/opened/old_journals.h"

#include "platform/win32.h"

#include <string_view>

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

// The name has room for a number of so many digits.
constexpr std::uint32_t kMaxOldJournals = 9999;
constexpr std::u16string_view kOldMark = u".jrn_old";

void LogMoved(const char16_t* name) {
    TextBuffer<kStorageNameUnits + 16> text;
    text.Append(u"Moved aside as ").Append(name);
    LogMessage(text.text(), u"MoveJournalAside", kLogNote);
}

// Renames `path` to the first old journal's name that is free, which is in `name` then.
bool MoveToFreeName(const StorageNames& names, const char16_t* path,
                    char16_t (&name)[kStorageNameUnits]) {
    for (std::uint32_t number = 1; number <= kMaxOldJournals; ++number) {
        if (!MakeOldJournalName(names, number, name)) {
            return false;
        }
        if (::MoveFileW(Wide(path), Wide(name))) {
            return true;
        }
        const DWORD error = ::GetLastError();
        if (error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS) {
            return false;
        }
    }
    return false;
}

// The number behind the mark of an old journal's name: 1 without digits, 0 for another name.
std::uint32_t NumberOf(const wchar_t* name) {
    std::u16string_view rest(Utf16(name));
    const std::size_t mark = rest.rfind(kOldMark);
    if (mark == std::u16string_view::npos) {
        return 0;
    }
    rest.remove_prefix(mark + kOldMark.size());
    if (!rest.empty() && rest[0] == u'0') {
        return 0;
    }
    std::uint32_t number = rest.empty() ? 1 : 0;
    for (const char16_t unit : rest) {
        if (unit < u'0' || unit > u'9' || number > kMaxOldJournals) {
            return 0;
        }
        number = 10 * number + (unit - u'0');
    }
    return number <= kMaxOldJournals ? number : 0;
}

}  // namespace

bool MoveJournalAside(const StorageNames& names, const char16_t* path) {
    char16_t name[kStorageNameUnits];
    if (!MoveToFreeName(names, path, name)) {
        return false;
    }
    LogMoved(name);
    return true;
}

bool FindNewestOldJournal(const StorageNames& names, char16_t (&path)[kStorageNameUnits]) {
    char16_t pattern[kStorageNameUnits + 1];
    if (!MakeOldJournalName(names, 1, path)) {
        return false;
    }
    TextBuilder(pattern, kStorageNameUnits + 1).Append(path).AppendUnit(u'*');
    WIN32_FIND_DATAW entry{};
    const UniqueFind search(::FindFirstFileW(Wide(pattern), &entry));
    std::uint32_t newest = 0;
    FILETIME time{};
    for (bool found = static_cast<bool>(search); found;
         found = ::FindNextFileW(search.get(), &entry) != FALSE) {
        const std::uint32_t number = NumberOf(entry.cFileName);
        const LONG order = ::CompareFileTime(&entry.ftLastWriteTime, &time);
        if (number != 0 && (newest == 0 || order > 0 || (order == 0 && number > newest))) {
            newest = number;
            time = entry.ftLastWriteTime;
        }
    }
    return newest != 0 && MakeOldJournalName(names, newest, path);
}

bool ExchangeJournals(const StorageNames& names, const char16_t* old_path) {
    char16_t aside[kStorageNameUnits];
    if (!MoveToFreeName(names, names.journal, aside)) {
        return false;
    }
    if (!::MoveFileW(Wide(old_path), Wide(names.journal))) {
        ::MoveFileW(Wide(aside), Wide(names.journal));
        return false;
    }
    // Under either name it is kept.
    ::MoveFileW(Wide(aside), Wide(old_path));
    return true;
}

}  // namespace tolvenar
