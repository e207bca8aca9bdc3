// Every page on the two screens that the dialog is made for: nothing clipped, nothing on top of
// anything else, nothing too small for a finger.
#include "platform/unique_resource.h"
#include "tests/support/ui_test.h"

namespace tests {
namespace {

constexpr int kSmallestButton = 24;  // pixels
constexpr int kCheckMark = 18;       // a check box's mark and its gap
constexpr int kButtonEdge = 4;

struct Area {
    int left, top, right, bottom;
};

Area AreaOf(const Window& window) {
    return {window.left, window.top, window.left + window.width, window.top + window.height};
}
bool IsWithin(const Area& inner, const Area& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}
bool Overlap(const Area& a, const Area& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// Texts in the font of the pages.
class Ruler {
public:
    Ruler() : screen_(::GetDC(nullptr)) {
        LOGFONTW font{};
        font.lfHeight = -12;  // 9 points
        font.lfWeight = FW_NORMAL;
        font.lfCharSet = DEFAULT_CHARSET;
        ::wcscpy(font.lfFaceName, L"Tahoma");
        font_.Reset(::CreateFontIndirectW(&font));
        old_ = ::SelectObject(screen_, font_.get());
    }
    ~Ruler() {
        ::SelectObject(screen_, old_);
        ::ReleaseDC(nullptr, screen_);
    }
    Ruler(const Ruler&) = delete;
    Ruler& operator=(const Ruler&) = delete;

    // What it takes, in lines no longer than `width`.
    SIZE Measure(const std::string& text, int width) const {
        RECT place = {0, 0, width, 0};
        const std::wstring wide(text.begin(), text.end());
        ::DrawTextW(screen_, wide.c_str(), static_cast<int>(wide.size()), &place,
                    DT_CALCRECT | DT_WORDBREAK);
        return {place.right, place.bottom};
    }

private:
    HDC screen_;
    tolvenar::UniqueResource<HGDIOBJ, ::DeleteObject> font_;
    HGDIOBJ old_ = nullptr;
};

class LayoutTest : public UiTest, public ::testing::WithParamInterface<const char*> {
protected:
    // The controls of the shown page, without those inside controls.
    std::vector<Window> PageControls() {
        std::vector<Window> controls;
        std::optional<Window> page;
        for (const Window& window : Windows()) {
            const bool is_child = window.parent != 0 && window.visible;
            if (is_child && !page && window.class_name == "Dialog") {
                page = window;
            } else if (is_child && page && window.parent == page->handle) {
                EXPECT_TRUE(IsWithin(AreaOf(window), AreaOf(*page))) << Told(window);
                controls.push_back(window);
            }
        }
        EXPECT_TRUE(page.has_value());
        return controls;
    }
    static bool IsGroup(const Window& control) {
        return control.id == IDC_STORAGE_GROUP || control.id == IDC_AUTOMATIC_GROUP ||
               control.id == IDC_RESTORE_GROUP;
    }
    static std::string Told(const Window& window) { return ::testing::PrintToString(window); }
    void ExpectFits(const Window& control) {
        int width = control.width;
        if (control.class_name == "Button" && !IsGroup(control)) {
            width -= control.check >= 0 ? kCheckMark : 2 * kButtonEdge;
            EXPECT_GE(control.height, kSmallestButton) << Told(control);
        } else if (control.class_name != "Static") {
            return;
        }
        const SIZE size = ruler_.Measure(control.text, width);
        EXPECT_LE(size.cx, width) << Told(control);
        EXPECT_LE(size.cy, control.height) << Told(control);
    }

    void ExpectPageFits();
    void ExpectPagesFit();

    Ruler ruler_;
};

void LayoutTest::ExpectPagesFit() {
    for (const char* tab :
         {"Backup", "Restore", "Advanced Restore", "Storage file", "Options", "About"}) {
        SCOPED_TRACE(tab);
        ShowTab(tab);
        ExpectPageFits();
    }
}

void LayoutTest::ExpectPageFits() {
    const std::vector<Window> controls = PageControls();
    EXPECT_GE(controls.size(), 4u);
    for (std::size_t i = 0; i < controls.size(); ++i) {
        ExpectFits(controls[i]);
        for (std::size_t j = 0; j < i && !IsGroup(controls[i]); ++j) {
            EXPECT_TRUE(IsGroup(controls[j]) || !Overlap(AreaOf(controls[i]), AreaOf(controls[j])))
                << Told(controls[i]) << Told(controls[j]);
        }
    }
}

TEST_P(LayoutTest, EveryPageFits) {
    device().Set("screen.size", GetParam());
    TakeFirstState();
    Open();
    const std::string size = GetParam();
    const Area screen = {0, 0, std::stoi(size), std::stoi(size.substr(size.find('x') + 1))};
    const Window dialog = AwaitWindow(
        [](const Window& window) { return window.text == kMainTitle && window.visible; });
    EXPECT_TRUE(IsWithin(AreaOf(dialog), screen)) << Told(dialog);
    ExpectPagesFit();
}

// The lines of the pages say more of a storage that is not on a card, and with a schedule.
TEST_P(LayoutTest, EveryPageFitsWithAStorageInTheDevicesMemory) {
    device().Set("screen.size", GetParam());
    device().MakeFolder(L"\\My Documents");
    SetText("StoragePath", "\\My Documents\\");
    SetDword("onTime", 1);
    SetDword("WakeUpTime", 0x002D0015);
    SetDword("Reminders", 0);
    device().Set("locale.shortdate", "yyyy. MM. dd.");
    EXPECT_EQ(0, BackUp());
    Open();
    EXPECT_EQ("Free in device memory:", Text(IDC_CARD_FREE_LABEL));
    ExpectPagesFit();
    ShowTab("Options");
    EXPECT_EQ("Next backup: 2026. 11. 16. 9:45 PM", Text(IDC_NEXT_BACKUP));
}

TEST_P(LayoutTest, EveryPageFitsOnABareDevice) {
    device().Set("screen.size", GetParam());
    RemoveInstallation();
    DeleteSetting("StoragePath");
    DeleteSetting("StorageFile");
    Open();
    ExpectPagesFit();
}

// With the longest lines that a device with 10 MB to come back has.
TEST_P(LayoutTest, WhatWouldChangeFits) {
    device().Set("screen.size", GetParam());
    device().PutFile(kNote, std::string(10485760, 'x'));
    EXPECT_EQ(0, BackUp());
    device().Remove(kNote);
    OpenOn("Restore");
    device().Set("memory.free", "8388608");
    device().Set("store.free", "1048576");
    Press(IDC_PREVIEW);
    EXPECT_SOON(Sees(IDC_PREVIEW_CLOSE));
    EXPECT_TRUE(BecomesIdle());
    ExpectPageFits();
}

INSTANTIATE_TEST_SUITE_P(Screens, LayoutTest, ::testing::Values("640x480", "640x240"));

}  // namespace
}  // namespace tests
