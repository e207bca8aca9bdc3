#include "app/pages/about_page.h"

#include <algorithm>

#include "app/rules/about_picture.h"
#include "platform/notification.h"

namespace tolvenar {
namespace {

constexpr UINT_PTR kStepTimer = 1;
constexpr UINT kStepMs = 50;

constexpr COLORREF kCardEdge = RGB(0x10, 0x2A, 0x56);
constexpr COLORREF kCard = RGB(0x2F, 0x6F, 0xC4);
constexpr COLORREF kContact = RGB(0xF2, 0xC2, 0x30);
constexpr COLORREF kBars[kBarCount] = {RGB(0xFF, 0xFF, 0xFF), RGB(0xFF, 0xFF, 0xFF),
                                       RGB(0x9F, 0xE0, 0x7A)};

// Places in the units of the picture.
constexpr POINT kOutline[] = {{4, 1}, {20, 1}, {27, 8}, {27, 30}, {4, 30}};
constexpr int kContactsLeft = 8, kContactStep = 4, kContactCount = 3, kContactTop = 4,
              kContactWidth = 2, kContactHeight = 6;
constexpr int kBarsLeft = 8, kBarsTop = 12, kBarStep = 6, kBarHeight = 4;

// Draws in units of the picture, which are whole pixels.
class Canvas {
public:
    Canvas(HDC dc, const RECT& place, int offset_units)
        : dc_(dc), scale_(std::min(place.right, place.bottom) / kPictureUnits) {
        left_ = (place.right - scale_ * kPictureUnits) / 2;
        top_ = (place.bottom - scale_ * kPictureUnits) / 2 + offset_units * scale_;
    }

    void Fill(int left, int top, int width, int height, COLORREF color) const {
        const UniqueGdiObject brush(::CreateSolidBrush(color));
        const RECT place = {left_ + left * scale_, top_ + top * scale_,
                            left_ + (left + width) * scale_, top_ + (top + height) * scale_};
        ::FillRect(dc_, &place, static_cast<HBRUSH>(brush.get()));
    }

    template <std::size_t count>
    void Shape(const POINT (&outline)[count], COLORREF edge, COLORREF inside) const {
        POINT points[count];
        for (std::size_t i = 0; i < count; ++i) {
            points[i] = {left_ + outline[i].x * scale_, top_ + outline[i].y * scale_};
        }
        const UniqueGdiObject pen(::CreatePen(PS_SOLID, scale_, edge));
        const UniqueGdiObject brush(::CreateSolidBrush(inside));
        const HGDIOBJ old_pen = ::SelectObject(dc_, pen.get());
        const HGDIOBJ old_brush = ::SelectObject(dc_, brush.get());
        ::Polygon(dc_, points, count);
        ::SelectObject(dc_, old_pen);
        ::SelectObject(dc_, old_brush);
    }

private:
    HDC dc_;
    LONG scale_;
    LONG left_ = 0;
    LONG top_ = 0;
};

void DrawPicture(HDC dc, const RECT& place, const AboutPicture& picture) {
    ::FillRect(dc, &place, ::GetSysColorBrush(COLOR_3DFACE));
    const Canvas canvas(dc, place, picture.card_offset);
    canvas.Shape(kOutline, kCardEdge, kCard);
    for (int i = 0; i < kContactCount; ++i) {
        canvas.Fill(kContactsLeft + i * kContactStep, kContactTop, kContactWidth, kContactHeight,
                    kContact);
    }
    for (int i = 0; i < kBarCount; ++i) {
        canvas.Fill(kBarsLeft, kBarsTop + i * kBarStep, picture.bar_widths[i], kBarHeight,
                    kBars[i]);
    }
}

}  // namespace

void AboutPage::OnInit() {
    const HWND name = Control(IDC_ABOUT_NAME);
    const auto font = reinterpret_cast<HGDIOBJ>(::SendMessageW(name, WM_GETFONT, 0, 0));
    LOGFONTW bold{};
    if (::GetObjectW(font, sizeof bold, &bold) == 0) {
        return;
    }
    bold.lfWeight = FW_BOLD;
    bold_font_.Reset(::CreateFontIndirectW(&bold));
    if (bold_font_) {
        ::SendMessageW(name, WM_SETFONT, reinterpret_cast<WPARAM>(bold_font_.get()), FALSE);
    }
}

void AboutPage::OnShow(int) {
    step_ = 0;
    // Without a timer the picture is there at once.
    if (::SetTimer(window(), kStepTimer, kStepMs, nullptr) == 0) {
        step_ = kLastPictureStep;
    }
}

void AboutPage::OnHide() { ::KillTimer(window(), kStepTimer); }

INT_PTR AboutPage::OnTimer() {
    if (++step_ >= kLastPictureStep) {
        ::KillTimer(window(), kStepTimer);
    }
    ::InvalidateRect(Control(IDC_ABOUT_PICTURE), nullptr, FALSE);
    return TRUE;
}

// Drawn aside and copied, so that nothing flickers.
INT_PTR AboutPage::OnDraw(LPARAM lparam) const {
    const auto* const item = StructureAt<const DRAWITEMSTRUCT>(lparam);
    if (item == nullptr || item->hwndItem != Control(IDC_ABOUT_PICTURE)) {
        return FALSE;
    }
    const RECT place = {0, 0, item->rcItem.right - item->rcItem.left,
                        item->rcItem.bottom - item->rcItem.top};
    const UniqueGdiObject bitmap(::CreateCompatibleBitmap(item->hDC, place.right, place.bottom));
    const UniqueDc dc(::CreateCompatibleDC(item->hDC));
    if (!bitmap || !dc) {
        return TRUE;
    }
    const HGDIOBJ old_bitmap = ::SelectObject(dc.get(), bitmap.get());
    DrawPicture(dc.get(), place, AboutPictureAt(step_));
    ::BitBlt(item->hDC, item->rcItem.left, item->rcItem.top, place.right, place.bottom, dc.get(), 0,
             0, SRCCOPY);
    ::SelectObject(dc.get(), old_bitmap);
    return TRUE;
}

INT_PTR AboutPage::OnMessage(UINT message, WPARAM, LPARAM lparam) {
    switch (message) {
        case WM_TIMER: return OnTimer();
        case WM_DRAWITEM: return OnDraw(lparam);
        default: return FALSE;
    }
}

}  // namespace tolvenar
