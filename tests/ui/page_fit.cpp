#include "tests/ui/page_fit.h"

#include <algorithm>

#include "platform/unique_resource.h"
#include "simulator/store/utf8.h"

namespace tests {
namespace {

constexpr int kSmallestButton = 24;  // pixels
constexpr int kCheckMark = 18;       // a check box's mark and its gap
constexpr int kButtonEdge = 4;

RECT AreaOf(const Window& window) {
    return {window.left, window.top, window.left + window.width, window.top + window.height};
}
bool IsWithin(const RECT& inner, const RECT& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}
bool Overlap(const RECT& a, const RECT& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}
std::string Told(const Window& window) { return ::testing::PrintToString(window); }
bool IsGroup(const Window& control) {
    return control.id == IDC_STORAGE_GROUP || control.id == IDC_AUTOMATIC_GROUP ||
           control.id == IDC_RESTORE_GROUP;
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
        const std::wstring wide = sim::Wide(text);
        ::DrawTextW(screen_, wide.c_str(), static_cast<int>(wide.size()), &place,
                    DT_CALCRECT | DT_WORDBREAK);
        return {place.right, place.bottom};
    }

private:
    HDC screen_;
    tolvenar::UniqueResource<HGDIOBJ, ::DeleteObject> font_;
    HGDIOBJ old_ = nullptr;
};

void ExpectTextFits(const Ruler& ruler, const Window& control) {
    int width = control.width;
    if (control.class_name == "Button" && !IsGroup(control)) {
        width -= control.check >= 0 ? kCheckMark : 2 * kButtonEdge;
        EXPECT_GE(control.height, kSmallestButton) << Told(control);
    } else if (control.class_name != "Static") {
        return;
    }
    const SIZE size = ruler.Measure(control.text, width);
    EXPECT_LE(size.cx, width) << Told(control);
    EXPECT_LE(size.cy, control.height) << Told(control);
}

}  // namespace

void PageFitTest::SetUp() {
    UiTest::SetUp();
    device().Set("screen.size", GetParam());
}

SIZE PageFitTest::ScreenSize() const {
    const std::string size = GetParam();
    return {std::stoi(size), std::stoi(size.substr(size.find('x') + 1))};
}

Window PageFitTest::MainWindowOnScreen() {
    return AwaitTop(
        [](const Window& window) { return window.text == kMainTitle && window.visible; });
}

void PageFitTest::ExpectOnScreen() {
    const SIZE screen = ScreenSize();
    const Window dialog = MainWindowOnScreen();
    EXPECT_TRUE(IsWithin(AreaOf(dialog), {0, 0, screen.cx, screen.cy})) << Told(dialog);
}

// The controls of the shown page, without those inside controls.
std::vector<Window> PageFitTest::PageControls() {
    std::vector<Window> controls;
    std::optional<Window> page;
    const RECT dialog = AreaOf(MainWindowOnScreen());
    for (const Window& window : sim::windows::ListVisible(device().sim())) {
        const bool is_child = window.parent != 0;
        if (is_child && !page && window.class_name == "Dialog") {
            page = window;
            EXPECT_TRUE(IsWithin(AreaOf(window), dialog)) << Told(window);
        } else if (is_child && page && window.parent == page->handle) {
            EXPECT_TRUE(IsWithin(AreaOf(window), AreaOf(*page))) << Told(window);
            controls.push_back(window);
        }
    }
    EXPECT_TRUE(page.has_value());
    return controls;
}

void PageFitTest::ExpectPageFits() {
    EXPECT_TRUE(DialogIsDone()) << "the controls may still move";
    const Ruler ruler;
    const std::vector<Window> controls = PageControls();
    EXPECT_GE(controls.size(), 4u);
    for (std::size_t i = 0; i < controls.size(); ++i) {
        ExpectTextFits(ruler, controls[i]);
        for (std::size_t j = 0; j < i && !IsGroup(controls[i]); ++j) {
            EXPECT_TRUE(IsGroup(controls[j]) || !Overlap(AreaOf(controls[i]), AreaOf(controls[j])))
                << Told(controls[i]) << Told(controls[j]);
        }
    }
}

void PageFitTest::ExpectPagesFit() {
    for (const char* tab : kTabNames) {
        SCOPED_TRACE(tab);
        ShowTab(tab);
        ExpectPageFits();
    }
}

// A popup that goes takes a tap with it.
bool PageFitTest::DialogStandsAlone() {
    return Eventually([&] {
        return ::GetForegroundWindow() == MainDialog() && !FindTop([](const Window& window) {
                   return window.visible && window.class_name == "Dialog" &&
                          window.text != kMainTitle;
               });
    });
}

// Input comes after what was posted: the stylus going down and up must have passed the loop.
void PageFitTest::TapAt(int x, int y) {
    const char* const in_loop = "TranslateAcceleratorW";
    EXPECT_TRUE(DialogStandsAlone());
    const long before = Counted(in_loop);
    sim::windows::TapAt(device().sim(), x, y);
    EXPECT_SOON(Counted(in_loop) >= before + 2);
    EXPECT_TRUE(DialogIsDone());
}

void PageFitTest::Tap(int id) {
    EXPECT_TRUE(DialogStandsAlone());
    EXPECT_TRUE(DialogIsDone()) << "where the control stands may change";
    AwaitControl(id, [](const Window& window) { return window.visible && window.enabled; });
    EXPECT_TRUE(sim::windows::Tap(device().sim(), id, ""));
    EXPECT_TRUE(DialogIsDone());
}

// The arrows stand over the tabs at the right.
std::optional<Window> PageFitTest::ArrowsOf(const Window& tabs) {
    return Find([&](const Window& window) {
        return window.class_name == "msctls_updown32" && window.visible &&
               window.parent == tabs.handle;
    });
}

void PageFitTest::TapTab(const std::string& name) {
    for (int taps = 0; taps < 12; ++taps) {
        const Window tabs = AnyControl(IDC_TABS);
        const auto item = std::find(tabs.items.begin(), tabs.items.end(), name);
        ASSERT_NE(tabs.items.end(), item);
        const auto place = tabs.places[static_cast<std::size_t>(item - tabs.items.begin())];
        const auto arrows = ArrowsOf(tabs);
        const int right = arrows ? arrows->left : tabs.left + tabs.width;
        const int middle = place[0] + place[2] / 2;
        // One that is scrolled out at the left has no width.
        const bool is_before = place[2] == 0 || middle < tabs.left;
        if (!is_before && middle < right) {
            EXPECT_LE(place[1] + place[3], tabs.top + tabs.height);
            TapAt(middle, place[1] + place[3] / 2);
            EXPECT_SOON_EQ(name, SelectedTab());
            return;
        }
        ASSERT_TRUE(arrows) << name;
        TapAt(arrows->left + arrows->width * (is_before ? 1 : 3) / 4,
              arrows->top + arrows->height / 2);
        EXPECT_SOON(AnyControl(IDC_TABS).places != tabs.places);
    }
    ADD_FAILURE() << name;
}

void PageFitTest::ShowTree() {
    ShowTab("Advanced Restore");
    ::SendMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
    // The popup gives the activation back when it goes, and may take the press of a button with it.
    EXPECT_TRUE(MainDialogBecomesActive());
    EXPECT_TRUE(DialogIsDone());
}

}  // namespace tests
