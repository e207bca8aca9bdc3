#include "app/pages/backup_page.h"

#include "app/operations/backup_history.h"
#include "app/operations/confirmation.h"
#include "app/operations/window_messages.h"
#include "app/settings/own_values.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "snapshot/compare/states.h"
#include "storage/files/card_space.h"
#include "storage/opened/journal.h"
#include "storage/opened/state_details.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {
namespace {

constexpr WPARAM kDescriptionLimit = kStateDescriptionUnits - 1;
constexpr wchar_t kNothing[] = L"-";
constexpr std::size_t kStateTextUnits = 32;  // "State 65535, "

bool IsBlank(const wchar_t* text) {
    while (*text == L' ') {
        ++text;
    }
    return *text == 0;
}

}  // namespace

void BackupPage::OnInit() {
    ::SendMessageW(Control(IDC_NEW_DESCRIPTION), EM_LIMITTEXT, kDescriptionLimit, 0);
    TakeKeptDescription();
}

// What the user had typed when another copy took over.
void BackupPage::TakeKeptDescription() {
    char16_t text[kDescriptionUnits];
    if (ReadText(HKEY_CURRENT_USER, kSettingsKey, own_value::kDescription, text, kDescriptionUnits,
                 sizeof text)) {
        ::SetWindowTextW(Control(IDC_NEW_DESCRIPTION), Wide(text));
        DeleteOwnValue(own_value::kDescription);
    }
}

void BackupPage::OnTakenOver() {
    char16_t text[kDescriptionUnits];
    ReadDescription(text);
    if (text[0] != 0) {
        WriteSettingText(own_value::kDescription, text);
    }
}

void BackupPage::OnShow(int) { OnStorageChanged(); }

void BackupPage::OnStorageChanged() {
    if (window() == nullptr || !app_.gate.ListsAreFree()) {
        return;
    }
    ShowStorage();
    ShowLastState();
    ShowLastAutomatic();
    ShowFreeSpace();
    ShowEffect();
}

void BackupPage::ShowStorage() {
    const bool is_open = HasStorage(app_);
    is_on_card_ = !is_open || IsOnMountedCard(app_.storage.names.sav);
    storage_.Set(Control(IDC_BACKUP_STORAGE), is_open ? Wide(app_.storage.names.sav) : kNothing);
}

void BackupPage::ShowLastState() {
    const ObjectRecord* last = FindLastState(app_.storage.journal.get());
    if (last == nullptr) {
        last_state_.Set(Control(IDC_LAST_STATE), kNothing, kNothing);
        return;
    }
    StateDetails details;
    ReadStateDetails(app_.storage.names, *last, details);
    const std::uint32_t unsaved = ReadUnsaved(app_.storage.names, last->state_number);
    Line text;
    Line shorter;
    PutLastState(last->state_number, details.time, unsaved, text);
    PutLastState(last->state_number, details.plain_time, unsaved, shorter);
    last_state_.Set(Control(IDC_LAST_STATE), text, shorter);
}

// A state that lacks something must not look as one that has all.
void BackupPage::PutLastState(std::uint16_t state, const char16_t* time, std::uint32_t unsaved,
                              Line& text) const {
    wchar_t name[kDateTimeTextUnits + kStateTextUnits];
    ::wsprintfW(name, time[0] != 0 ? L"State %i, %s" : L"State %i", state, Wide(time));
    ::wsprintfW(text, unsaved != 0 ? ResourceText(app_.instance, IDS_UNSAVED).text() : L"%s", name,
                unsaved);
}

void BackupPage::ShowLastAutomatic() {
    AutomaticBackup last{};
    char16_t ended[kDateTimeTextUnits];
    if (!ReadAutomaticBackup(last) ||
        FormatFileTimeText(last.ended, ended, LOCALE_SSHORTDATE) == 0) {
        const ResourceText never(app_.instance, IDS_AUTOMATIC_NEVER);
        last_automatic_.Set(Control(IDC_LAST_AUTOMATIC), never.text(), never.text());
        return;
    }
    char16_t plain[kDateTimeTextUnits];
    FormatPlainFileTime(last.ended, plain);
    const ResourceText result(app_.instance, TextOfAutomaticBackup(last.code));
    Line text;
    Line shorter;
    ::wsprintfW(text, result.text(), Wide(ended));
    ::wsprintfW(shorter, result.text(), Wide(plain));
    last_automatic_.Set(Control(IDC_LAST_AUTOMATIC), text, shorter);
}

// The controls have another size.
void BackupPage::OnLayout() {
    storage_.Fit();
    last_state_.Fit();
    last_automatic_.Fit();
}

void BackupPage::ShowFreeSpace() {
    ::SetWindowTextW(
        Control(IDC_CARD_FREE_LABEL),
        ResourceText(app_.instance, is_on_card_ ? IDS_FREE_ON_CARD : IDS_FREE_IN_MEMORY).text());
    wchar_t text[32] = L"-";
    std::uint64_t free_bytes = 0;
    if (HasStorage(app_) && FreeBytesOfCard(app_.storage.names, free_bytes)) {
        constexpr std::uint64_t kMegabyte = 0x100000;
        // Never more than there is.
        const auto tenths = static_cast<unsigned>(free_bytes * 10 / kMegabyte);
        ::wsprintfW(text, L"%u.%u Mb", tenths / 10, tenths % 10);
    }
    ::SetWindowTextW(Control(IDC_CARD_FREE), text);
}

// What stands against a backup comes first.
UINT BackupPage::EffectText() const {
    if (app_.installationMissing) {
        return IDS_BACKUP_NOT_INSTALLED;
    }
    if (!HasStorage(app_)) {
        return IDS_BACKUP_NO_STORAGE;
    }
    if (StorageIsWriteProtected(app_.storage.names)) {
        return IDS_BACKUP_PROTECTED;
    }
    return is_on_card_ ? IDS_BACKUP_ON_CARD : IDS_BACKUP_IN_MEMORY;
}

void BackupPage::ShowEffect() {
    wchar_t text[kResourceTextUnits + 16];
    ::wsprintfW(text, ResourceText(app_.instance, EffectText()).text(),
                NextStateNumber(app_.storage.journal.get()));
    ::SetWindowTextW(Control(IDC_BACKUP_EFFECT), text);
}

void BackupPage::RequestBackup() {
    if (Refuses(Wish::kBackUp)) {
        return;
    }
    OperationRequest request;
    request.kind = OperationKind::kBackup;
    ReadDescription(request.description);
    ConfirmThenRun(app_, request);
}

bool BackupPage::OnCommand(int id, int notification) {
    if (id != IDC_BACKUP || notification != BN_CLICKED) {
        return false;
    }
    RequestBackup();
    return true;
}

void BackupPage::ReadDescription(char16_t* buffer) const {
    ::GetWindowTextW(Control(IDC_NEW_DESCRIPTION), Wide(buffer), kDescriptionUnits);
    if (IsBlank(Wide(buffer))) {
        buffer[0] = 0;
    }
}

INT_PTR BackupPage::OnTakeDescription() {
    if (app_.wanted_description != nullptr) {
        ReadDescription(app_.wanted_description);
    }
    return Answer(0);
}

INT_PTR BackupPage::OnMessage(UINT message, WPARAM, LPARAM) {
    switch (message) {
        case WM_TAKE_DESCRIPTION: return OnTakeDescription();
        case WM_BACKUP_DONE: ::SetDlgItemTextW(window(), IDC_NEW_DESCRIPTION, L""); return TRUE;
        default: return FALSE;
    }
}

}  // namespace tolvenar
