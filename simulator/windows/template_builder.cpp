#include "simulator/windows/template_builder.h"

#include <windows.h>

namespace sim::windows {
namespace {

constexpr DWORD kDialogStyle =
    DS_MODALFRAME | DS_SETFONT | DS_CENTER | DS_SETFOREGROUND | WS_POPUP | WS_CAPTION | WS_SYSMENU;
constexpr std::size_t kItemCountWord = 4;
constexpr std::uint16_t kAtomMark = 0xFFFF;

}  // namespace

TemplateBuilder::TemplateBuilder(const std::wstring& title, std::int16_t width,
                                 std::int16_t height) {
    Double(kDialogStyle);
    Double(0);
    words_.push_back(0);  // items
    Put({0, 0, width, height});
    Text(L"");  // menu
    Text(L"");  // class
    Text(title);
    words_.push_back(8);
    Text(L"MS Sans Serif");
}

void TemplateBuilder::Add(ClassAtom window_class, const std::wstring& text, std::uint32_t style,
                          Place place, int id) {
    if (words_.size() % 2 != 0) {
        words_.push_back(0);
    }
    ++words_[kItemCountWord];
    Double(style | WS_CHILD | WS_VISIBLE);
    Double(0);
    Put(place);
    words_.push_back(static_cast<std::uint16_t>(id));
    words_.push_back(kAtomMark);
    words_.push_back(window_class);
    Text(text);
    words_.push_back(0);  // no creation data
}

void TemplateBuilder::Double(std::uint32_t value) {
    words_.push_back(LOWORD(value));
    words_.push_back(HIWORD(value));
}

void TemplateBuilder::Text(const std::wstring& text) {
    words_.insert(words_.end(), text.begin(), text.end());
    words_.push_back(0);
}

void TemplateBuilder::Put(Place place) {
    for (const std::int16_t value : {place.x, place.y, place.width, place.height}) {
        words_.push_back(static_cast<std::uint16_t>(value));
    }
}

}  // namespace sim::windows
