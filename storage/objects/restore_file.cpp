#include "storage/objects/restore_file.h"

#include "platform/file_entry.h"
#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

// A damaged block must not ask CreateFileW for more than attributes.
constexpr DWORD kAttributeBits = 0xFFFF;

CEOID ObjectIdOf(const char16_t* path) {
    WIN32_FIND_DATAW found{};
    return FindEntry(path, found) ? found.dwOID : 0;
}

DWORD AttributesOf(const InfoBlock& block) { return block.head().attributes & kAttributeBits; }

void SetTimes(HANDLE file, const InfoBlock& block) {
    const FILETIME time{block.head().time_low, block.head().time_high};
    ::SetFileTime(file, &time, &time, &time);
}

// A folder that is there fails, also when only its attributes differ (docs/oddities.md, 14).
RestoreOutcome WriteFolder(const InfoBlock& block, CEOID& newOid) {
    const wchar_t* path = Wide(block.name());
    if (!::CreateDirectoryW(path, nullptr)) {
        return RestoreOutcome::kFailed;
    }
    newOid = ObjectIdOf(block.name());
    UniqueHandle folder(::CreateFileW(path, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                      AttributesOf(block), nullptr));
    if (folder) {
        SetTimes(folder.get(), block);
        folder.Close();
    }
    ::SetFileAttributesW(path, AttributesOf(block));
    return RestoreOutcome::kDone;
}

void LogWriteFailure(DWORD error) {
    TextBuffer<32> message;
    message.Append(u"WriteFile:").AppendNumber(static_cast<std::int32_t>(error));
    // Neither level nor module is a mistake (docs/oddities.md, 18).
    LogMessage(message.text(), u"Error", kLogPlain);
}

// Without room nothing is written, and the last error is the one of before: that an existing file
// was opened.
DWORD CauseOf(DWORD write_error) {
    return write_error == ERROR_SUCCESS || write_error == ERROR_ALREADY_EXISTS ? ERROR_DISK_FULL
                                                                               : write_error;
}

RestoreOutcome WriteFileBack(const StorageMapping& storage, std::uint32_t data_offset,
                             const InfoBlock& block, CEOID& newOid) {
    if (IsInRom(block.head().attributes)) {
        return RestoreOutcome::kDone;
    }
    const wchar_t* path = Wide(block.name());
    UniqueHandle file(::CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        return RestoreOutcome::kFailed;
    }
    DWORD cause = ERROR_SUCCESS;
    std::uint32_t written = 0;
    if (!WriteStoredData(file.get(), storage, data_offset, block.head().data_bytes, written)) {
        const DWORD error = ::GetLastError();
        LogWriteFailure(error);
        cause = CauseOf(error);
    }
    SetTimes(file.get(), block);
    file.Close();
    ::SetFileAttributesW(path, AttributesOf(block));
    newOid = ObjectIdOf(block.name());
    return cause == ERROR_SUCCESS ? RestoreOutcome::kDone : FailWith(cause);
}

RestoreOutcome Delete(const InfoBlock& block, bool is_folder) {
    const wchar_t* path = Wide(block.name());
    const BOOL deleted = is_folder ? ::RemoveDirectoryW(path) : ::DeleteFileW(path);
    const DWORD error = ::GetLastError();
    return deleted || StillExists(block.name()) == 0 ? RestoreOutcome::kDone : FailWith(error);
}

}  // namespace

RestoreOutcome RestoreFileObject(const StorageMapping& storage, std::uint32_t data_offset,
                                 const InfoBlock& block, CEOID& newOid, RestoreMode mode) {
    newOid = 0;
    const bool is_folder = (block.head().attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (mode == RestoreMode::kDelete) {
        return Delete(block, is_folder);
    }
    return is_folder ? WriteFolder(block, newOid)
                     : WriteFileBack(storage, data_offset, block, newOid);
}

int StillExists(const char16_t* path) {
    WIN32_FIND_DATAW found{};
    return FindEntry(path, found) && !IsInRom(found.dwFileAttributes) ? 1 : 0;
}

}  // namespace tolvenar
