#include "app/pages/browse_storage.h"

#include <memory>
#include <new>

#include "app/operations/messages.h"
#include "app/operations/operation_drivers.h"
#include "app/operations/storage_files.h"
#include "app/pages/description_dialog.h"
#include "platform/file_chooser.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "res/resource.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {
namespace {

constexpr std::size_t kChosenUnits = 260;
constexpr DWORD kChosenLimit = 256;

constexpr wchar_t kFilter[] =
    L"Backup Files (*.jrn)\0*.jrn\0"
    L"All files (*.*)\0*.*\0";

// A typed name that does not exist yet is confirmed by the dialog itself.
constexpr DWORD kFlags = OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_CREATEPROMPT;

// The folder of the storage that the settings name, without its backslash; empty without one.
void ReadInitialFolder(char16_t (&folder)[kSettingPathUnits]) {
    ReadStoragePath(folder);
    if (wchar_t* backslash = ::wcsrchr(Wide(folder), L'\\')) {
        *backslash = 0;
    }
}

// What a modal loop answers is no answer when the program was told to end meanwhile, and comes too
// late when an operation has begun: the lists are its own then.
bool MayGoOn(const Application& app) { return !app.is_ending && !app.gate.IsOccupied(); }

// The dialog does not open on a name that cannot be one, which another program may have left in the
// settings: the field is empty then.
void ReadInitialName(wchar_t (&name)[kChosenUnits]) {
    char16_t stem[kSettingTextUnits];
    ReadStorageFileName(stem);
    const bool is_name =
        NameWithoutFolder(stem) == stem && JudgeStorageName(stem) == NameFault::kNone;
    ::wcscpy(name, is_name ? Wide(stem) : L"");
}

bool AskForFile(const Application& app, HWND page, wchar_t (&chosen)[kChosenUnits]) {
    ReadInitialName(chosen);
    char16_t folder[kSettingPathUnits];
    ReadInitialFolder(folder);

    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = page;
    dialog.hInstance = app.instance;
    dialog.lpstrFilter = kFilter;
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = chosen;
    dialog.nMaxFile = kChosenLimit;
    dialog.lpstrInitialDir = folder[0] != 0 ? Wide(folder) : nullptr;
    dialog.lpstrTitle = L"Choose backup file";
    dialog.Flags = kFlags;
    dialog.lpstrDefExt = L"jrn";
    const FileChoice choice = ChooseFile(dialog);
    if (choice == FileChoice::kNoChooser) {
        ShowMessage(nullptr, ResourceText(app.instance, IDS_NO_FILE_CHOOSER).text(), MB_OK);
    }
    return choice == FileChoice::kChosen && MayGoOn(app);
}

// The names that belong to a chosen file: what it would be opened by once it is in the settings.
bool NamesOfChosen(const wchar_t* chosen, StorageNames& names) {
    StorageLocation location;
    char16_t path[2 * kStoragePathUnits];
    if (!SplitStoragePath(Utf16(chosen), location)) {
        return false;
    }
    ::wsprintfW(Wide(path), L"%s\\%s", Wide(location.folder), Wide(location.stem));
    return MakeStorageNames(path, names);
}

// Why the settings or the platform could not keep the chosen name. Of a pair that exists the name
// may be empty (docs/oddities.md, 63).
NameFault FaultOf(const wchar_t* chosen) {
    const NameFault fault = JudgeStorageName(Utf16(chosen));
    if (fault != NameFault::kEmpty) {
        return fault;
    }
    char16_t sav[kStorageNameUnits];
    const bool exists =
        !IsReallyAbsent(Utf16(chosen)) || (MakeSavName(Utf16(chosen), sav) && !IsReallyAbsent(sav));
    return exists ? NameFault::kNone : fault;
}

void TellWhyRefused(const Application& app, NameFault fault) {
    constexpr struct {
        NameFault fault;
        UINT text;
    } kTexts[] = {
        {NameFault::kTooLong, IDS_NAME_TOO_LONG},
        {NameFault::kForbidden, IDS_NAME_FORBIDDEN},
        {NameFault::kEmpty, IDS_NAME_EMPTY},
    };
    for (const auto& row : kTexts) {
        if (row.fault == fault) {
            ShowMessage(nullptr, ResourceText(app.instance, row.text).text(), MB_OK);
        }
    }
}

// A journal alone counts as a storage whose file cannot be read: the user is told rather than given
// a new one of the same name.
OpenStorageResult CreateAndOpen(Application& app, const StorageNames& names) {
    if (!IsReallyAbsent(names.journal)) {
        return OpenStorageResult::kHeaderUnreadable;
    }
    DescriptionDialog prompt(app);
    OpenStorageResult result = OpenStorageResult::kFileMissing;
    const bool created = CreateStoragePair(names, &prompt, Existing::kReset);
    if (created && !MayGoOn(app)) {
        return result;
    }
    if (created && OpenStorage(names.sav, app.storage, result)) {
        return OpenStorageResult::kOpened;
    }
    // The card was full, say. What was just made holds nothing, and half of it would keep the name
    // from being taken again.
    ::DeleteFileW(Wide(names.journal));
    ::DeleteFileW(Wide(names.sav));
    return result;
}

// `is_new` tells whether the file had to be made.
OpenStorageResult OpenChosen(Application& app, const wchar_t* chosen, bool& is_new) {
    is_new = false;
    OpenStorageResult result = OpenStorageResult::kOpened;
    if (OpenStorage(Utf16(chosen), app.storage, result) ||
        result != OpenStorageResult::kFileMissing) {
        return result;
    }
    // Too big for the stack of a device's thread.
    const std::unique_ptr<StorageNames> names(new (std::nothrow) StorageNames{});
    if (names == nullptr || !IsReallyAbsent(Utf16(chosen)) || !NamesOfChosen(chosen, *names)) {
        return result;
    }
    // A typed name may be the one of a storage whose journal is lost.
    if (!IsReallyAbsent(names->sav)) {
        OpenStorage(names->sav, app.storage, result);
        return result;
    }
    is_new = true;
    return CreateAndOpen(app, *names);
}

// Takes the settings' storage for the one that was chosen. They differ where the settings refuse
// the folder, or it is too long to be read back: the header must belong to the names in use.
bool FollowSettings(Application& app, const wchar_t* chosen) {
    char16_t chosen_sav[kStorageNameUnits];
    if (!DeriveNames(app.storage.names) || !MakeSavName(Utf16(chosen), chosen_sav)) {
        return false;
    }
    if (::_wcsicmp(Wide(chosen_sav), Wide(app.storage.names.sav)) == 0) {
        return true;
    }
    OpenStorageResult result;
    return OpenStorage(app.storage.names.sav, app.storage, result);
}

// The header is the chosen storage's already; journal and differences are still the previous one's.
// False when none is open then.
bool TakeChosen(Application& app, const wchar_t* chosen, OpenedStorageDisplay& display) {
    app.storage.journal.reset();
    app.storage.difference.reset();
    SaveLocation(Utf16(chosen));
    bool loaded = FollowSettings(app, chosen);
    if (loaded) {
        app.storageStatus = StorageStatus::kOpen;
        display.ShowOpenedStorage();
        loaded = LoadUnderPopup(app);
    }
    if (!loaded) {
        app.storageStatus = StorageStatus::kNone;
        CloseStorage(app.storage);
    }
    return loaded;
}

}  // namespace

BrowseResult BrowseForStorage(Application& app, HWND page, OpenedStorageDisplay& display) {
    wchar_t chosen[kChosenUnits];
    if (!AskForFile(app, page, chosen)) {
        return BrowseResult::kUnchanged;
    }
    const NameFault fault = FaultOf(chosen);
    if (fault != NameFault::kNone) {
        TellWhyRefused(app, fault);
        return BrowseResult::kUnchanged;
    }
    bool is_new = false;
    const OpenStorageResult result = OpenChosen(app, chosen, is_new);
    if (!MayGoOn(app)) {
        return BrowseResult::kUnchanged;
    }
    if (result != OpenStorageResult::kOpened) {
        display.ShowOpenedStorage();
        TellWhyNotOpened(result);
        return BrowseResult::kUnchanged;
    }
    const bool is_open = TakeChosen(app, chosen, display);
    return is_open && is_new ? BrowseResult::kCreated : BrowseResult::kChanged;
}

}  // namespace tolvenar
