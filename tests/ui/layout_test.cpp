// Every page on the two screens that the dialog is made for: nothing clipped, nothing on top of
// anything else, nothing too small for a finger.
#include "platform/win32.h"

#include "platform/unique_resource.h"
#include "tests/ui/ui_test.h"

namespace {

using Json = nlohmann::json;

constexpr int kSmallestButton = 24;  // pixels
constexpr int kCheckMark = 18;       // a check box's mark and its gap
constexpr int kButtonEdge = 4;

struct Area {
    int left, top, right, bottom;
};

Area AreaOf(const Json& window) {
    const int left = window["left"];
    const int top = window["top"];
    return {left, top, left + window["width"].get<int>(), top + window["height"].get<int>()};
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

class LayoutTest : public tests::UiTest, public ::testing::WithParamInterface<const char*> {
protected:
    // The controls of the shown page, without those inside controls.
    std::vector<Json> PageControls() {
        const Json windows = Windows();
        std::vector<Json> controls;
        Json page;
        for (const Json& window : windows) {
            const bool is_child = window["parent"] != 0 && window["visible"] == true;
            if (is_child && page.is_null() && window["class"] == "Dialog") {
                page = window;
            } else if (is_child && !page.is_null() && window["parent"] == page["handle"]) {
                EXPECT_TRUE(IsWithin(AreaOf(window), AreaOf(page))) << window;
                controls.push_back(window);
            }
        }
        EXPECT_FALSE(page.is_null());
        return controls;
    }
    static bool IsGroup(const Json& control) {
        const int id = control["id"];
        return id == 1101 || id == 1130 || id == 1131;
    }
    void ExpectFits(const Json& control) {
        const std::string kind = control["class"];
        const std::string text = control["text"];
        int width = control["width"];
        const int height = control["height"];
        if (kind == "Button" && !IsGroup(control)) {
            const bool is_check = control.contains("check");
            width -= is_check ? kCheckMark : 2 * kButtonEdge;
            EXPECT_GE(height, kSmallestButton) << control;
        } else if (kind != "Static") {
            return;
        }
        const SIZE size = ruler_.Measure(text, width);
        EXPECT_LE(size.cx, width) << control;
        EXPECT_LE(size.cy, height) << control;
    }

    Ruler ruler_;
};

TEST_P(LayoutTest, EveryPageFits) {
    device().Set("screen.size", GetParam());
    TakeFirstState();
    Open();
    const std::string size = GetParam();
    const Area screen = {0, 0, std::stoi(size), std::stoi(size.substr(size.find('x') + 1))};
    EXPECT_TRUE(IsWithin(AreaOf(*Top("Tolvenar")), screen)) << *Top("Tolvenar");
    for (const char* tab :
         {"Backup", "Restore", "Advanced Restore", "Storage file", "Options", "About"}) {
        SCOPED_TRACE(tab);
        ShowTab(tab);
        const std::vector<Json> controls = PageControls();
        EXPECT_GE(controls.size(), 4u);
        for (std::size_t i = 0; i < controls.size(); ++i) {
            ExpectFits(controls[i]);
            for (std::size_t j = 0; j < i && !IsGroup(controls[i]); ++j) {
                EXPECT_TRUE(IsGroup(controls[j]) ||
                            !Overlap(AreaOf(controls[i]), AreaOf(controls[j])))
                    << controls[i] << controls[j];
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Screens, LayoutTest, ::testing::Values("640x480", "640x240"));

}  // namespace
