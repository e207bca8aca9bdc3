#include "simulator/files/path.h"

#include <algorithm>
#include <windows.h>

namespace sim::files {
namespace {

constexpr std::size_t kMaxPathUnits = 259;
constexpr wchar_t kForbidden[] = L"<>:\"|/";

bool IsName(const std::wstring& name, bool wildcards) {
    if (name.empty() || name == L"." || name == L"..") {
        return false;
    }
    return std::none_of(name.begin(), name.end(), [wildcards](wchar_t unit) {
        if (unit == L'*' || unit == L'?') {
            return !wildcards;
        }
        return unit < L' ' || std::wcschr(kForbidden, unit) != nullptr;
    });
}

bool MatchesFolded(const wchar_t* pattern, const wchar_t* name) {
    const wchar_t* star = nullptr;
    const wchar_t* retry = nullptr;
    while (*name != L'\0') {
        if (*pattern == L'*') {
            star = ++pattern;
            retry = name;
        } else if (*pattern == L'?' || *pattern == *name) {
            ++pattern;
            ++name;
        } else if (star != nullptr) {
            pattern = star;
            name = ++retry;
        } else {
            return false;
        }
    }
    while (*pattern == L'*') {
        ++pattern;
    }
    return *pattern == L'\0';
}

}  // namespace

Path ParsePath(const wchar_t* text, bool wildcards_in_last) {
    Path path;
    if (text == nullptr || *text == L'\0') {
        path.error = ERROR_PATH_NOT_FOUND;
        return path;
    }
    const std::wstring whole(text);
    if (whole.size() > kMaxPathUnits) {
        path.error = ERROR_FILENAME_EXCED_RANGE;
        return path;
    }
    path.ends_with_separator = whole.back() == L'\\';
    const std::size_t end = whole.size() - (path.ends_with_separator ? 1 : 0);
    std::size_t at = whole[0] == L'\\' ? 1 : 0;
    while (at < end) {
        const std::size_t stop = std::min(whole.find(L'\\', at), end);
        path.names.push_back(whole.substr(at, stop - at));
        if (!IsName(path.names.back(), wildcards_in_last && stop == end)) {
            path.error = ERROR_INVALID_NAME;
            return path;
        }
        at = stop + 1;
    }
    return path;
}

std::wstring Fold(const std::wstring& name) {
    std::wstring folded(name);
    ::LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, name.data(), static_cast<int>(name.size()),
                   &folded[0], static_cast<int>(folded.size()));
    return folded;
}

bool Matches(const std::wstring& pattern, const std::wstring& name) {
    if (pattern == L"*" || pattern == L"*.*") {
        return true;
    }
    return MatchesFolded(Fold(pattern).c_str(), Fold(name).c_str());
}

}  // namespace sim::files
