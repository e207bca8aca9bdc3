// The common dialogs. commdlg.dll forwards to these: one copy of the device's state in a process.
#include "platform/win32.h"

#include <algorithm>

#include "simulator/exports/gated.h"
#include "simulator/files/path.h"
#include "simulator/windows/open_dialog.h"

namespace {

namespace host = sim::windows;

constexpr DWORD kStructureSize = 0x0001;   // CDERR_STRUCTSIZE
constexpr DWORD kInvalidName = 0x3002;     // FNERR_INVALIDFILENAME
constexpr DWORD kBufferTooSmall = 0x3003;  // FNERR_BUFFERTOOSMALL

thread_local DWORD last_dialog_error = 0;

std::wstring TextOf(LPCWSTR text) { return text != nullptr ? text : L""; }

// An empty one is none.
bool InitialNameIsValid(LPCWSTR name) {
    return TextOf(name).empty() || sim::files::ParsePath(name, true).error == ERROR_SUCCESS;
}

host::OpenRequest RequestFrom(const OPENFILENAMEW& in, const wchar_t* default_title) {
    host::OpenRequest request;
    request.owner = in.hwndOwner;
    request.title = in.lpstrTitle != nullptr ? in.lpstrTitle : default_title;
    request.file = TextOf(in.lpstrFile);
    request.initial_folder = TextOf(in.lpstrInitialDir);
    request.filters = host::ParseFilters(in.lpstrFilter);
    request.filter_index = std::max<DWORD>(in.nFilterIndex, 1);
    request.rules.default_extension = TextOf(in.lpstrDefExt);
    request.rules.file_must_exist = (in.Flags & OFN_FILEMUSTEXIST) != 0;
    request.rules.path_must_exist = (in.Flags & OFN_PATHMUSTEXIST) != 0;
    request.rules.create_prompt = (in.Flags & OFN_CREATEPROMPT) != 0;
    request.rules.overwrite_prompt = (in.Flags & OFN_OVERWRITEPROMPT) != 0;
    request.shows_read_only = (in.Flags & OFN_HIDEREADONLY) == 0;
    return request;
}

void Answer(OPENFILENAMEW& out, const host::OpenAnswer& answer) {
    const std::wstring& path = answer.path;
    std::copy(path.begin(), path.end(), out.lpstrFile);
    out.lpstrFile[path.size()] = L'\0';
    const std::size_t name = path.find_last_of(L'\\') + 1;
    const std::size_t dot = path.find_last_of(L'.');
    out.nFileOffset = static_cast<WORD>(name);
    out.nFileExtension =
        static_cast<WORD>(dot != std::wstring::npos && dot > name ? dot + 1 : path.size());
    out.nFilterIndex = answer.filter_index;
    out.Flags = answer.read_only ? out.Flags | OFN_READONLY : out.Flags & ~DWORD{OFN_READONLY};
}

BOOL Show(LPOPENFILENAMEW data, const wchar_t* default_title, bool saves) {
    last_dialog_error = data->lStructSize < OPENFILENAME_SIZE_VERSION_400W ? kStructureSize : 0;
    if (last_dialog_error == 0 && !InitialNameIsValid(data->lpstrFile)) {
        last_dialog_error = kInvalidName;
    }
    if (last_dialog_error != 0) {
        return FALSE;
    }
    host::OpenRequest request = RequestFrom(*data, default_title);
    if (saves) {
        request.shows_read_only = false;
        request.rules.create_prompt = false;
    }
    const auto answer = host::AskForFile(Device::Current(), request);
    if (!answer) {
        return FALSE;
    }
    if (data->lpstrFile == nullptr || answer->path.size() >= data->nMaxFile) {
        last_dialog_error = kBufferTooSmall;
        return FALSE;
    }
    Answer(*data, *answer);
    return TRUE;
}

}  // namespace

BOOL WINAPI GetOpenFileNameW(LPOPENFILENAMEW data) {
    return Gated(
        Call::GetOpenFileNameW, FALSE, [&] { return Show(data, L"Open", false); }, data->lpstrTitle,
        data->lpstrFile, data->nMaxFile, data->lpstrInitialDir, data->nFilterIndex, data->Flags,
        data->lpstrDefExt, data->hwndOwner);
}

BOOL WINAPI GetSaveFileNameW(LPOPENFILENAMEW data) {
    return Gated(
        Call::GetSaveFileNameW, FALSE, [&] { return Show(data, L"Save As", true); },
        data->lpstrTitle, data->lpstrFile);
}

DWORD WINAPI CommDlgExtendedError() {
    return Gated(Call::CommDlgExtendedError, DWORD{0}, [] { return last_dialog_error; });
}
