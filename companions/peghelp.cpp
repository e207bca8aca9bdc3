// Shows a section of the manual. The argument is a file of the manual in \Windows, with "#" and the
// section's anchor behind it. All sections can be had from the list of topics.
#include "platform/win32.h"

#include <algorithm>
#include <memory>

#include "companions/help/help_topic.h"
#include "companions/help/picture.h"
#include "platform/dialog.h"
#include "platform/heap.h"
#include "platform/layout.h"
#include "platform/text.h"
#include "platform/unique_resource.h"
#include "res/resource.h"

namespace {

constexpr wchar_t kDialogClass[] = L"Dialog";
constexpr wchar_t kTitle[] = L"Tolvenar Help";
constexpr wchar_t kContentsFile[] = L"tolvenar.htc";
constexpr wchar_t kContents[] = L"Contents";
constexpr std::size_t kPathUnits = 260;
constexpr std::size_t kTopicUnits = 100;
constexpr DWORD kMaxFileBytes = 0x1000000;
constexpr int kPictureGap = 6;  // pixels
constexpr int kMostPicturePercent = 60;

// On a screen that is too small for the template.
constexpr tolvenar::ControlPlace kPlaces[] = {
    {IDC_HELP_TOPIC_LABEL, {3, 6, 28, 9}},
    {IDC_HELP_TOPIC, {32, 4, 98, 120}, tolvenar::kWidens},
    {IDC_HELP_TEXT, {3, 21, 127, 79}, tolvenar::kGrows},
};
constexpr tolvenar::Layout kSmallScreens[] = {tolvenar::LayoutOf(133, 104, kPlaces)};

// A file of the manual in memory.
class ManualFile {
public:
    // False when there is no such file in \Windows or no memory.
    bool Read(help::Text name) {
        wchar_t path[kPathUnits] = L"\\Windows\\";
        const std::size_t folder = ::wcslen(path);
        if (name.size() >= kPathUnits - folder) {
            return false;
        }
        path[folder + name.copy(tolvenar::Utf16(path + folder), name.size())] = 0;
        const tolvenar::UniqueHandle file(
            ::CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        return file && ReadFrom(file.get());
    }
    const unsigned char* bytes() const { return bytes_.get(); }
    std::size_t size() const { return size_; }

private:
    bool ReadFrom(HANDLE file) {
        const DWORD size = ::GetFileSize(file, nullptr);
        if (size > kMaxFileBytes) {  // a failure too
            return false;
        }
        bytes_.reset(new unsigned char[size]);
        DWORD done = 0;
        if (bytes_) {
            ::ReadFile(file, bytes_.get(), size, &done, nullptr);
        }
        size_ = done;
        return bytes_ != nullptr;
    }

    std::unique_ptr<unsigned char[]> bytes_;
    std::size_t size_ = 0;
};

// A file of the manual whose bytes are ASCII text.
class ManualText {
public:
    // False as ManualFile::Read.
    bool Read(help::Text name) {
        ManualFile file;
        if (!file.Read(name)) {
            return false;
        }
        units_.reset(new char16_t[file.size()]);
        if (!units_) {
            return false;
        }
        size_ = file.size();
        std::copy(file.bytes(), file.bytes() + size_, units_.get());
        return true;
    }
    help::Text text() const { return {units_.get(), size_}; }

private:
    std::unique_ptr<char16_t[]> units_;
    std::size_t size_ = 0;
};

class Viewer final : private tolvenar::Dialog {
public:
    explicit Viewer(const wchar_t* argument) : argument_(tolvenar::Utf16(argument)) {}
    void Run(HINSTANCE instance) { RunModal(instance, IDD_HELP_VIEWER, nullptr); }

private:
    INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM lparam) override {
        switch (message) {
            case WM_INITDIALOG: OnInit(); return FALSE;
            case WM_COMMAND: OnCommand(LOWORD(wparam), HIWORD(wparam)); return TRUE;
            case WM_DRAWITEM: DrawPicture(*reinterpret_cast<DRAWITEMSTRUCT*>(lparam)); return TRUE;
            default: return FALSE;
        }
    }

    void OnInit() {
        tolvenar::FitToWorkArea(window(), kSmallScreens);
        text_ = Control(IDC_HELP_TEXT);
        ::GetWindowRect(text_, &text_room_);
        ::MapWindowPoints(nullptr, window(), reinterpret_cast<POINT*>(&text_room_), 2);
        topics_ = Control(IDC_HELP_TOPIC);
        contents_.Read(tolvenar::Utf16(kContentsFile));
        FillTopics();
        Show(argument_);
        // In this order: a window that is activated before it is seen keeps the look of an inactive
        // one.
        ::ShowWindow(window(), SW_SHOW);
        ::SetFocus(text_);
        ::SendMessageW(text_, EM_SETSEL, 0, 0);
    }

    // The contents come first; each other item stands for the contents' link of the same number.
    void FillTopics() {
        AddTopic(tolvenar::Utf16(kContents));
        std::size_t at = 0;
        for (help::Link link; help::NextLink(contents_.text(), at, link);) {
            AddTopic(link.text);
        }
    }

    void AddTopic(help::Text text) {
        wchar_t item[kTopicUnits];
        item[text.copy(tolvenar::Utf16(item), kTopicUnits - 1)] = 0;
        ::SendMessageW(topics_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
    }

    // The item of the list that leads to `address`: 0 for the contents.
    int TopicOf(help::Text address) const {
        std::size_t at = 0;
        int item = 0;
        for (help::Link link; help::NextLink(contents_.text(), at, link);) {
            ++item;
            if (link.address == address) {
                return item;
            }
        }
        return 0;
    }

    help::Text AddressOf(int item) const {
        std::size_t at = 0;
        help::Link link{tolvenar::Utf16(kContentsFile), {}};
        for (int i = 0; i < item && help::NextLink(contents_.text(), at, link); ++i) {
        }
        return link.address;
    }

    void Show(help::Text address) {
        const int item = TopicOf(address);
        ::SendMessageW(topics_, CB_SETCURSEL, static_cast<WPARAM>(item), 0);
        const help::Address topic = help::ParseAddress(AddressOf(item));
        ManualText file;
        ShowPicture({});
        if (!file.Read(topic.file)) {
            ::SetWindowTextW(text_, L"This topic is not on the device.");
            return;
        }
        const help::Text html = topic.anchor.empty() ? help::BodyOf(file.text())
                                                     : help::FindTopic(file.text(), topic.anchor);
        const std::size_t units = 2 * html.size() + 1;
        const std::unique_ptr<char16_t[]> plain(new char16_t[units]);
        if (plain) {
            help::PlainText(plain.get(), units).Write(html);
            ::SetWindowTextW(text_, tolvenar::Wide(plain.get()));
        }
        ManualFile picture;
        if (picture.Read(help::PictureOf(html))) {
            ShowPicture(help::DecodePicture(picture.bytes(), picture.size()));
        }
    }

    // The picture stands beside the text, which gives way to it; where that would leave too little
    // of the text there is none.
    void ShowPicture(help::Picture picture) {
        const RECT& room = text_room_;
        const int width = room.right - room.left;
        picture_ = picture.width <= width * kMostPicturePercent / 100 ? std::move(picture)
                                                                      : help::Picture{};
        const bool is_there = picture_.pixels != nullptr;
        const HWND place = Control(IDC_HELP_PICTURE);
        const int gap = is_there ? kPictureGap : 0;
        ::MoveWindow(text_, room.left, room.top, width - picture_.width - gap,
                     room.bottom - room.top, TRUE);
        ::MoveWindow(place, room.right - picture_.width, room.top, picture_.width, picture_.height,
                     TRUE);
        ::ShowWindow(place, is_there ? SW_SHOW : SW_HIDE);
        ::InvalidateRect(place, nullptr, TRUE);
    }

    void DrawPicture(const DRAWITEMSTRUCT& item) const {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = picture_.width;
        info.bmiHeader.biHeight = picture_.height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        const tolvenar::UniqueGdiObject bitmap(
            ::CreateDIBSection(item.hDC, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        const tolvenar::UniqueDc dc(::CreateCompatibleDC(item.hDC));
        if (!bitmap || !dc || !picture_.pixels) {
            return;
        }
        std::copy_n(picture_.pixels.get(), picture_.width * picture_.height,
                    static_cast<std::uint32_t*>(bits));
        const HGDIOBJ old_bitmap = ::SelectObject(dc.get(), bitmap.get());
        ::BitBlt(item.hDC, 0, 0, picture_.width, picture_.height, dc.get(), 0, 0, SRCCOPY);
        ::SelectObject(dc.get(), old_bitmap);
    }

    void OnCommand(int id, int notification) {
        if (id == IDC_HELP_TOPIC && notification == CBN_SELCHANGE) {
            Show(AddressOf(static_cast<int>(::SendMessageW(topics_, CB_GETCURSEL, 0, 0))));
        }
        if (id == IDCANCEL) {
            End(0);
        }
    }

    help::Text argument_;
    ManualText contents_;
    help::Picture picture_;
    RECT text_room_{};  // without a picture
    HWND topics_ = nullptr;
    HWND text_ = nullptr;
};

}  // namespace

// One viewer is enough: an earlier one makes room.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPWSTR argument, int) {
    if (const HWND earlier = ::FindWindowW(kDialogClass, kTitle)) {
        ::PostMessageW(earlier, WM_CLOSE, 0, 0);
    }
    if (!tolvenar::CreatePrivateHeap()) {
        return 1;
    }
    Viewer(argument != nullptr ? argument : L"").Run(instance);
    tolvenar::DestroyPrivateHeap();
    return 0;
}
