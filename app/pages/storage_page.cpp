#include "app/pages/storage_page.h"

#include "app/pages/storage_notes.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "storage/format/storage_names.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {
namespace {

bool IsOpen(const Application& app) { return app.storageStatus == StorageStatus::kOpen; }

}  // namespace

LayoutSet StoragePage::Layouts() const { return StorageLayouts(IsOpen(app_)); }

void StoragePage::OnShow(int) { OnStorageChanged(); }

void StoragePage::OnStorageChanged() {
    if (window() != nullptr && app_.gate.ListsAreFree()) {
        ShowOpenedStorage();
        ShowNotes();
    }
}

void StoragePage::ShowOpenedStorage() {
    LayOut();
    ShowName();
    ShowFolder();
    ShowDescription();
}

void StoragePage::ShowName() {
    char16_t stem[kSettingTextUnits] = {};
    if (IsOpen(app_)) {
        ReadStorageFileName(stem);
    }
    ::SetWindowTextW(Control(IDC_STORAGE_NAME), Wide(stem));
}

// Without a storage its place tells what to do.
void StoragePage::ShowFolder() {
    ::ShowWindow(Control(IDC_STORAGE_FOLDER_LABEL), IsOpen(app_) ? SW_SHOW : SW_HIDE);
    if (!IsOpen(app_)) {
        ShowWhatToDo();
        return;
    }
    wchar_t folder[kStoragePathUnits];
    ::wcscpy(folder, Wide(app_.storage.names.path));
    if (wchar_t* backslash = ::wcsrchr(folder, L'\\')) {
        backslash[1] = 0;
    }
    ::SetWindowTextW(Control(IDC_STORAGE_FOLDER), folder);
}

// A storage that is chosen and not there is named: its card may be out.
void StoragePage::ShowWhatToDo() {
    const char16_t* sav = app_.storage.names.sav;
    wchar_t text[kStorageNameUnits + kResourceTextUnits];
    ::wcscpy(text, ResourceText(app_.instance, IDS_NO_STORAGE).text());
    if (sav[0] != 0 && IsReallyAbsent(sav)) {
        ::wsprintfW(text, ResourceText(app_.instance, IDS_STORAGE_AWAY).text(), Wide(sav));
    }
    ::SetWindowTextW(Control(IDC_STORAGE_FOLDER), text);
}

// A storage without a description shows a single blank (docs/oddities.md, 25).
void StoragePage::ShowDescription() {
    const StorageHeader* header = IsOpen(app_) ? app_.storage.header.get() : nullptr;
    const wchar_t* text = L"";
    if (header != nullptr) {
        text = header->descriptionBytes != 0 ? Wide(header->description) : L" ";
    }
    ::SetWindowTextW(Control(IDC_STORAGE_DESCRIPTION), text);
}

// Looking opens both files: not before a chosen storage's states are loaded.
void StoragePage::ShowNotes() {
    const StorageNotes notes(app_, IsOpen(app_));
    ::SetWindowTextW(Control(IDC_STORAGE_NOTE), notes.line(0));
    ::SetWindowTextW(Control(IDC_STORAGE_SECOND_NOTE), notes.line(1));
}

// The messages on the way have no owner and leave the button enabled.
void StoragePage::Browse() {
    if (app_.search.is_held || app_.gate.IsOccupied()) {
        return;
    }
    app_.search.is_held = true;
    const BrowseResult result = BrowseForStorage(app_, window(), *this);
    if (result != BrowseResult::kUnchanged) {
        frame_.StorageChanged();
    }
    app_.search.is_held = false;
    // A backup is what a new storage is made for.
    if (result == BrowseResult::kCreated) {
        frame_.SelectPage(kBackupPage);
    }
}

bool StoragePage::OnCommand(int id, int notification) {
    if (id != IDC_BROWSE || notification != BN_CLICKED) {
        return false;
    }
    Browse();
    return true;
}

}  // namespace tolvenar
