#include "app/operations/messages.h"

#include <algorithm>

#include "app/operations/application.h"
#include "app/operations/memory_check.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr wchar_t kNotStartedText[] = L"Can't start action. Try again.";

struct ResultMessage {
    ResultCode result;
    const wchar_t* text;  // null: a text of the program's own
    UINT icon;
    bool counts_as_success;
    UINT own_text = 0;
};

constexpr ResultMessage kBackupMessages[] = {
    {ResultCode::kNoDifference, L"Difference not found. There is nothing to Backup.",
     MB_ICONINFORMATION, false},
    {ResultCode::kNoDifferenceList, L"Create Differences Fail.", MB_ICONERROR, false},
    {ResultCode::kFailed, L"Backup Fail.", MB_ICONERROR, false},
    {ResultCode::kJournalUnreadable, L"Journal read Fail.", MB_ICONERROR, false},
    {ResultCode::kNotStarted, kNotStartedText, MB_ICONWARNING, false},
    {ResultCode::kWriteProtected, nullptr, MB_ICONERROR, false, IDS_WRITE_PROTECTED},
};

constexpr ResultMessage kRestoreMessages[] = {
    {ResultCode::kNoDifference, L"Difference not found. There is nothing to Restore.",
     MB_ICONINFORMATION, true},
    {ResultCode::kFailed, L"Restore Fail. Probably some files are locked.", MB_ICONWARNING, false},
    {ResultCode::kJournalUnreadable, L"Journal read Fail.", MB_ICONERROR, false},
    {ResultCode::kNoSpace, L"Storage is empty. There is nothing to Restore.", MB_ICONINFORMATION,
     true},
    {ResultCode::kDriver, L"Restore Fail. Probably your Storage Card Driver is obsolete.",
     MB_ICONWARNING, false},
    {ResultCode::kNotStarted, kNotStartedText, MB_ICONWARNING, false},
};

// Why a storage file is none to open; the other results say nothing.
struct OpenMessage {
    OpenStorageResult result;
    const wchar_t* text;
};
constexpr OpenMessage kOpenMessages[] = {
    {OpenStorageResult::kHeaderUnreadable, L"Storage header was not created."},
    {OpenStorageResult::kOtherDevice, L"Storage file is not compatible with your device."},
    {OpenStorageResult::kUnsupportedRevision,
     L"This Storage File is not compatible with the Tolvenar version,\nplease use earlier "
     L"Tolvenar version."},
};

template <std::size_t count>
const ResultMessage* Find(const ResultMessage (&messages)[count], ResultCode result) {
    for (const ResultMessage& message : messages) {
        if (message.result == result) {
            return &message;
        }
    }
    return nullptr;
}

void ShowResult(HWND owner, const ResultMessage& message) {
    const ResourceText own_text(message.own_text);
    ShowMessage(owner, message.text != nullptr ? message.text : own_text.text(), message.icon);
}

void ShowMissingMemory(HWND owner, std::uint32_t missing_bytes) {
    wchar_t megabytes[kMegabytesUnits];
    FormatMegabytes(missing_bytes, megabytes);
    wchar_t text[kMessageUnits];
    ::wsprintfW(text,
                L"Not enough memory to start operation. You need to free at least the %s Mb of the "
                L"device memory.",
                megabytes);
    ShowMessage(owner, text, MB_ICONERROR);
}

void ShowSpaceMessage(const ReportContext& context) {
    if (context.storage_is_full) {
        ShowOwnMessage(context.owner, IDS_STORAGE_FULL, MB_ICONERROR);
        return;
    }
    wchar_t text[kMessageUnits];
    ::wsprintfW(text,
                L"Not enough disk space to backup. You need to free %u bytes on the storage card.",
                CappedNumber(context.amount));
    ShowMessage(context.owner, text, MB_ICONERROR);
}

void ShowRoomMessage(HWND owner, std::uint64_t missing_bytes) {
    wchar_t text[kMessageUnits];
    ::wsprintfW(text, ResourceText(IDS_ROOM_LACKS).text(), CappedNumber(missing_bytes));
    ShowMessage(owner, text, MB_ICONWARNING);
}

}  // namespace

unsigned CappedNumber(std::uint64_t number) {
    return static_cast<unsigned>(std::min<std::uint64_t>(number, 0xFFFFFFFF));
}

int ShowMessage(HWND owner, const wchar_t* text, UINT style) {
    return ::MessageBoxW(owner, text, kProgramName, style | MB_SETFOREGROUND);
}

int ShowOwnMessage(HWND owner, UINT text, UINT style) {
    return ShowMessage(owner, ResourceText(text).text(), style);
}

bool ReportBackup(ResultCode result, const ReportContext& context) {
    const ResultMessage* message = Find(kBackupMessages, result);
    const bool is_space = result == ResultCode::kNoSpace;
    const bool is_memory = result == ResultCode::kNoMemory;
    if (!context.automatic) {
        if (message != nullptr) {
            ShowResult(context.owner, *message);
        }
        if (is_space && !context.is_first_pass) {
            ShowSpaceMessage(context);
        }
        if (is_memory) {
            ShowMissingMemory(context.owner, MissingMemory(context.available));
        }
    }
    return message == nullptr && !is_space && !is_memory;
}

bool ReportRestore(HWND owner, const RestoreResult& result) {
    if (result.code == ResultCode::kSuccess) {
        return true;
    }
    if (result.code == ResultCode::kNoMemory) {
        ShowMemoryMessage(owner);
    }
    if (result.code == ResultCode::kFailed && result.is_damaged) {
        ShowOwnMessage(owner, IDS_STORAGE_DAMAGED, MB_ICONWARNING);
        return false;
    }
    if (result.code == ResultCode::kFailed && result.missing_bytes != 0) {
        ShowRoomMessage(owner, result.missing_bytes);
        return false;
    }
    const ResultMessage* message = Find(kRestoreMessages, result.code);
    if (message == nullptr) {
        return false;
    }
    ShowResult(owner, *message);
    return message->counts_as_success;
}

void ReportInteractiveRestore(HWND owner, const RestoreResult& result) {
    if (result.took_older_list) {
        ShowOwnMessage(owner, IDS_OLDER_LIST_USED, MB_ICONINFORMATION);
        return;
    }
    const bool is_shown_in_tree = result.code == ResultCode::kFailed && !result.is_damaged;
    if (!is_shown_in_tree && result.code != ResultCode::kNotStarted) {
        ReportRestore(owner, result);
    }
}

void TellWhyNotOpened(OpenStorageResult result) {
    for (const OpenMessage& message : kOpenMessages) {
        if (message.result == result) {
            ShowMessage(nullptr, message.text, MB_OK);
        }
    }
}

void TellOfUnreadableJournal(HINSTANCE instance, const StorageNames& names) {
    wchar_t text[kStorageNameUnits + kResourceTextUnits];
    ::wsprintfW(text, ResourceText(instance, IDS_JOURNAL_UNREADABLE).text(), Wide(names.journal));
    ShowMessage(nullptr, text, MB_ICONERROR);
}

void ShowMemoryMessage(HWND owner) { ShowMissingMemory(owner, kMinimumFreeBytes); }

void ShowInstallationMissing(HWND owner) {
    ShowMessage(owner,
                L"Tolvenar installation is not detected on the device, restore Tolvenar first "
                L"please.",
                MB_ICONWARNING);
}

void TellOfMissingStates() { ShowOwnMessage(nullptr, IDS_STATES_MISSING, MB_ICONWARNING); }

void ShowNotStarted(HWND owner) { ShowMessage(owner, kNotStartedText, MB_ICONWARNING); }

}  // namespace tolvenar
