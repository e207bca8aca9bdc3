#include "simulator/store/names.h"

#include <algorithm>
#include <cstdlib>
#include <windows.h>

namespace sim {
namespace {

bool IsAscii(std::u16string_view name) {
    return std::all_of(name.begin(), name.end(), [](char16_t unit) { return unit < 0x80; });
}

std::uint64_t Mix(std::uint64_t seed, std::u16string_view key) {
    std::uint64_t hash = 0xCBF29CE484222325u ^ (seed * 0x9E3779B97F4A7C15u);
    for (const char16_t unit : key) {
        hash = (hash ^ unit) * 0x100000001B3u;
        hash ^= hash >> 29;
    }
    return hash;
}

}  // namespace

std::u16string FoldName(std::u16string_view name) {
    std::u16string folded(name);
    if (IsAscii(name)) {
        for (char16_t& unit : folded) {
            if (unit >= u'a' && unit <= u'z') {
                unit = static_cast<char16_t>(unit - 0x20);
            }
        }
        return folded;
    }
    const std::wstring wide(name.begin(), name.end());
    std::wstring upper(wide);
    const int units = static_cast<int>(wide.size());
    ::LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, wide.data(), units, &upper[0], units);
    return std::u16string(upper.begin(), upper.end());
}

std::u16string StoredText(const wchar_t* text) {
    if (text == nullptr) {
        return {};
    }
    const std::wstring_view view(text);
    return std::u16string(view.begin(), view.end());
}

std::uint64_t RankOf(const Enumerated& item, const std::string& order) {
    if (order == "reversed") {
        return ~std::uint64_t{item.sequence};
    }
    if (order.rfind("shuffled:", 0) != 0) {
        return item.sequence;
    }
    return Mix(std::strtoull(order.c_str() + 9, nullptr, 10), item.key);
}

void Arrange(std::vector<Enumerated>& items, const std::string& order) {
    const auto before = [](const Enumerated& a, const Enumerated& b) {
        return a.sequence < b.sequence;
    };
    std::sort(items.begin(), items.end(), before);
    std::stable_sort(items.begin(), items.end(),
                     [&order](const Enumerated& a, const Enumerated& b) {
                         return RankOf(a, order) < RankOf(b, order);
                     });
}

}  // namespace sim
