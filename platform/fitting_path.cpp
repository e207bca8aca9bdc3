#include "platform/fitting_path.h"

#include <cstddef>

#include "platform/fitting_text.h"

namespace tolvenar {
namespace {

constexpr wchar_t kGap[] = L"...";
constexpr int kGapUnits = 3;

using Shortened = wchar_t[FittingPath::kUnits + kGapUnits];

// `kept` units of the path, half of them of its end.
void Shorten(const wchar_t* path, int kept, Shortened& out) {
    const int length = static_cast<int>(::wcslen(path));
    const int begin = kept / 2;
    ::wcsncpy(out, path, static_cast<std::size_t>(begin));
    ::wcscpy(out + begin, kGap);
    ::wcscpy(out + begin + kGapUnits, path + length - (kept - begin));
}

// The most units that there is room for.
int UnitsWithRoom(HWND control, const wchar_t* path) {
    int most = static_cast<int>(::wcslen(path)) - 1;
    int least = 0;
    while (least < most) {
        const int middle = (least + most + 1) / 2;
        Shortened text;
        Shorten(path, middle, text);
        if (HasRoomFor(control, text)) {
            least = middle;
        } else {
            most = middle - 1;
        }
    }
    return least;
}

}  // namespace

void FittingPath::Set(HWND control, const wchar_t* path) {
    control_ = control;
    ::wcsncpy(path_, path, kUnits - 1);
    path_[kUnits - 1] = 0;
    Fit();
}

void FittingPath::Fit() const {
    if (control_ == nullptr) {
        return;
    }
    if (HasRoomFor(control_, path_)) {
        ::SetWindowTextW(control_, path_);
        return;
    }
    Shortened text;
    Shorten(path_, UnitsWithRoom(control_, path_), text);
    ::SetWindowTextW(control_, text);
}

}  // namespace tolvenar
