#include "simulator/windows/open_dialog.h"

#include <windows.h>

#include "simulator/files/files.h"
#include "simulator/windows/center.h"
#include "simulator/windows/narrow.h"
#include "simulator/windows/template_builder.h"
#include "simulator/windows/window_calls.h"

namespace sim::windows {
namespace {

constexpr wchar_t kEveryFile[] = L"*.*";

// One dialog on the screen.
class OpenDialog {
public:
    OpenDialog(Device& device, const OpenRequest& request) : device_(device), request_(request) {
        answer_.filter_index = request.filter_index;
    }
    std::optional<OpenAnswer> Run();

private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam);
    void OnInit(HWND dialog);
    void OnCommand(WORD id, WORD notification);
    void OnFilterChosen();
    void OnFileChosen();
    void OnOk();
    void Show(const std::wstring& folder);
    void GoTo(const std::wstring& folder);
    std::vector<std::wstring> Patterns() const;
    std::wstring NameText() const;
    bool Confirms(const std::wstring& path, const wchar_t* question) const;
    void Tell(const std::wstring& path, const wchar_t* text) const;
    void Finish(const std::wstring& path);
    void FollowChoice(const Choice& choice);

    Device& device_;
    const OpenRequest& request_;
    OpenAnswer answer_;
    HWND dialog_ = nullptr;
    std::wstring folder_ = L"\\";
    std::wstring typed_pattern_;
};

std::optional<OpenAnswer> OpenDialog::Run() {
    TemplateBuilder builder(request_.title, 210, 130);
    builder.Add(kStaticAtom, L"", SS_LEFT | SS_NOPREFIX, {4, 4, 166, 9}, kOpenFolderText);
    builder.Add(kButtonAtom, L"&Up", WS_TABSTOP, {174, 2, 32, 13}, kOpenUpButton);
    builder.Add(kListBoxAtom, L"", WS_TABSTOP | WS_BORDER | WS_VSCROLL | LBS_NOTIFY,
                {4, 17, 202, 62}, kOpenFileList);
    builder.Add(kStaticAtom, L"&Name:", SS_LEFT, {4, 84, 28, 9}, -1);
    builder.Add(kEditAtom, L"", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, {34, 82, 118, 12},
                kOpenNameEdit);
    builder.Add(kStaticAtom, L"&Type:", SS_LEFT, {4, 100, 28, 9}, -1);
    builder.Add(kComboBoxAtom, L"", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, {34, 98, 118, 60},
                kOpenFilterBox);
    builder.Add(kButtonAtom, L"OK", WS_TABSTOP | BS_DEFPUSHBUTTON, {158, 82, 48, 13}, IDOK);
    builder.Add(kButtonAtom, L"Cancel", WS_TABSTOP, {158, 98, 48, 13}, IDCANCEL);
    if (request_.shows_read_only) {
        builder.Add(kButtonAtom, L"Open as &read-only", WS_TABSTOP | BS_AUTOCHECKBOX,
                    {34, 115, 118, 10}, kOpenReadOnlyCheck);
    }
    const int result =
        RunDialogOnDevice(::GetModuleHandleW(nullptr), builder.bytes(), request_.owner,
                          reinterpret_cast<const void*>(Procedure), reinterpret_cast<LPARAM>(this));
    return result == IDOK ? std::optional<OpenAnswer>(answer_) : std::nullopt;
}

INT_PTR CALLBACK OpenDialog::Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(dialog, DWLP_USER, lparam);
        reinterpret_cast<OpenDialog*>(lparam)->OnInit(dialog);
        return TRUE;
    }
    auto* self = reinterpret_cast<OpenDialog*>(::GetWindowLongPtrW(dialog, DWLP_USER));
    if (self == nullptr || message != WM_COMMAND) {
        return FALSE;
    }
    self->OnCommand(LOWORD(wparam), HIWORD(wparam));
    return TRUE;
}

void OpenDialog::OnInit(HWND dialog) {
    dialog_ = dialog;
    NarrowDialog(dialog, {{kOpenUpButton, IDOK, IDCANCEL},
                          {kOpenFolderText, kOpenFileList, kOpenNameEdit, kOpenFilterBox}});
    CenterOnScreen(dialog);
    for (const FileFilter& filter : request_.filters) {
        ::SendDlgItemMessageW(dialog, kOpenFilterBox, CB_ADDSTRING, 0,
                              reinterpret_cast<LPARAM>(filter.text.c_str()));
    }
    ::SendDlgItemMessageW(dialog, kOpenFilterBox, CB_SETCURSEL, answer_.filter_index - 1, 0);
    ::SetDlgItemTextW(dialog, kOpenNameEdit, request_.file.c_str());
    const bool there =
        !request_.initial_folder.empty() &&
        Decide(device_, L"\\", request_.initial_folder, {}).kind == ChoiceKind::kFolder;
    Show(there ? request_.initial_folder : L"\\");
}

void OpenDialog::OnCommand(WORD id, WORD notification) {
    if (id == kOpenFilterBox && notification == CBN_SELCHANGE) {
        OnFilterChosen();
    }
    if (id == kOpenFileList && notification == LBN_SELCHANGE) {
        OnFileChosen();
    }
    if (id == kOpenFileList && notification == LBN_DBLCLK) {
        OnOk();
    }
    if (id == kOpenUpButton && notification == BN_CLICKED) {
        GoTo(FolderAbove(folder_));
    }
    if (id == IDOK) {
        OnOk();
    }
    if (id == IDCANCEL) {
        ::EndDialog(dialog_, IDCANCEL);
    }
}

void OpenDialog::OnFilterChosen() {
    const LRESULT chosen = ::SendDlgItemMessageW(dialog_, kOpenFilterBox, CB_GETCURSEL, 0, 0);
    answer_.filter_index = static_cast<std::uint32_t>(chosen + 1);
    typed_pattern_.clear();
    Show(folder_);
}

void OpenDialog::OnFileChosen() {
    const LRESULT row = ::SendDlgItemMessageW(dialog_, kOpenFileList, LB_GETCURSEL, 0, 0);
    wchar_t name[MAX_PATH + 1] = L"";
    ::SendDlgItemMessageW(dialog_, kOpenFileList, LB_GETTEXT, static_cast<WPARAM>(row),
                          reinterpret_cast<LPARAM>(name));
    ::SetDlgItemTextW(dialog_, kOpenNameEdit, name);
}

void OpenDialog::OnOk() { FollowChoice(Decide(device_, folder_, NameText(), request_.rules)); }

void OpenDialog::FollowChoice(const Choice& choice) {
    switch (choice.kind) {
        case ChoiceKind::kNothing: return;
        case ChoiceKind::kFolder: GoTo(choice.path); return;
        case ChoiceKind::kPattern:
            typed_pattern_ = choice.path;
            Show(folder_);
            return;
        case ChoiceKind::kFile: Finish(choice.path); return;
        case ChoiceKind::kAskCreate:
            if (Confirms(choice.path, L"This file does not exist.\n\nCreate the file?")) {
                Finish(choice.path);
            }
            return;
        case ChoiceKind::kAskOverwrite:
            if (Confirms(choice.path, L"This file already exists.\n\nReplace it?")) {
                Finish(choice.path);
            }
            return;
        case ChoiceKind::kNoSuchFolder: Tell(choice.path, L"This path does not exist."); return;
        case ChoiceKind::kNoSuchFile: Tell(choice.path, L"This file does not exist."); return;
    }
}

void OpenDialog::Show(const std::wstring& folder) {
    folder_ = folder;
    ::SetDlgItemTextW(dialog_, kOpenFolderText, folder.c_str());
    ::SendDlgItemMessageW(dialog_, kOpenFileList, LB_RESETCONTENT, 0, 0);
    for (const std::wstring& name : Listing(device_, folder, Patterns())) {
        ::SendDlgItemMessageW(dialog_, kOpenFileList, LB_ADDSTRING, 0,
                              reinterpret_cast<LPARAM>(name.c_str()));
    }
}

void OpenDialog::GoTo(const std::wstring& folder) {
    ::SetDlgItemTextW(dialog_, kOpenNameEdit, L"");
    Show(folder);
}

std::vector<std::wstring> OpenDialog::Patterns() const {
    if (!typed_pattern_.empty()) {
        return {typed_pattern_};
    }
    const std::size_t index = answer_.filter_index - 1;
    return index < request_.filters.size() ? request_.filters[index].patterns
                                           : std::vector<std::wstring>{kEveryFile};
}

std::wstring OpenDialog::NameText() const {
    wchar_t text[MAX_PATH + 1] = L"";
    ::GetDlgItemTextW(dialog_, kOpenNameEdit, text, MAX_PATH + 1);
    return text;
}

bool OpenDialog::Confirms(const std::wstring& path, const wchar_t* question) const {
    const std::wstring text = path + L"\n" + question;
    return ShowMessageBox(dialog_, text.c_str(), request_.title.c_str(),
                          MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void OpenDialog::Tell(const std::wstring& path, const wchar_t* text) const {
    ShowMessageBox(dialog_, (path + L"\n" + text).c_str(), request_.title.c_str(),
                   MB_OK | MB_ICONWARNING);
}

void OpenDialog::Finish(const std::wstring& path) {
    answer_.path = path;
    answer_.read_only = ::IsDlgButtonChecked(dialog_, kOpenReadOnlyCheck) == BST_CHECKED;
    ::EndDialog(dialog_, IDOK);
}

}  // namespace

std::optional<OpenAnswer> AskForFile(Device& device, const OpenRequest& request) {
    return OpenDialog(device, request).Run();
}

}  // namespace sim::windows
