#include "pc/storage/safe_names.h"

#include <algorithm>

#include "pc/text/utf.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar::pc {
namespace {

// Systems allow 255 bytes or units; a number may come behind.
constexpr std::size_t kMaxBytes = 200;

std::u16string Folded(std::u16string_view name) {
    std::u16string folded(name);
    std::transform(folded.begin(), folded.end(), folded.begin(), Capital);
    return folded;
}

bool IsForbidden(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) ||
           std::u16string_view(u"<>:\"/\\|?*").find(unit) != std::u16string_view::npos;
}

// Invisible marks can make two names look alike or turn the direction of reading.
bool IsMark(char16_t unit) {
    return (unit >= 0x200B && unit <= 0x200F) || (unit >= 0x2028 && unit <= 0x202E) ||
           (unit >= 0x2060 && unit <= 0x206F) || unit == 0xFEFF;
}

bool IsDigitOfAPort(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || unit == 0xB9 || unit == 0xB2 || unit == 0xB3;
}

// "CON", "nul.txt", "COM1 .log": the extension does not count.
bool MeansADevice(std::u16string_view name) {
    std::u16string stem = Folded(name.substr(0, name.find(u'.')));
    while (!stem.empty() && stem.back() == u' ') {
        stem.pop_back();
    }
    for (const char16_t* device : {u"CON", u"PRN", u"AUX", u"NUL", u"CONIN$", u"CONOUT$"}) {
        if (stem == device) {
            return true;
        }
    }
    const std::u16string_view port = std::u16string_view(stem).substr(0, 3);
    return stem.size() == 4 && (port == u"COM" || port == u"LPT") && IsDigitOfAPort(stem[3]);
}

// At most so many bytes, and no part of a character.
std::string Cut(std::string text) {
    if (text.size() <= kMaxBytes) {
        return text;
    }
    std::size_t end = kMaxBytes;
    while ((text[end] & 0xC0) == 0x80) {
        --end;
    }
    text.resize(end);
    return text;
}

// Before the extension, if there is a short one.
std::string WithNumber(const std::string& name, int number) {
    constexpr std::size_t kLongestExtension = 12;
    const std::string mark = " (" + std::to_string(number) + ")";
    const std::size_t dot = name.rfind('.');
    if (dot == name.npos || dot == 0 || name.size() - dot > kLongestExtension) {
        return name + mark;
    }
    return name.substr(0, dot) + mark + name.substr(dot);
}

}  // namespace

std::string SafeComponent(std::u16string_view name) {
    std::u16string safe(name);
    std::replace_if(
        safe.begin(), safe.end(), [](char16_t unit) { return IsForbidden(unit) || IsMark(unit); },
        u'_');
    if (MeansADevice(safe)) {
        safe.insert(safe.begin(), u'_');
    }
    std::string text = Cut(ToUtf8(safe));
    for (std::size_t i = text.size(); i > 0 && (text[i - 1] == '.' || text[i - 1] == ' '); --i) {
        text[i - 1] = '_';
    }
    return text.empty() ? "_" : text;
}

std::string SafeNames::Choose(Folder& folder, std::u16string_view name, bool is_folder) {
    const std::u16string key = Folded(name) + (is_folder ? u"\\" : u"");
    const auto known = folder.named.find(key);
    if (known != folder.named.end()) {
        return known->second;
    }
    const std::string safe = SafeComponent(name);
    std::string chosen = safe;
    for (int number = 2; folder.taken[Folded(ToUtf16(chosen))]++ != 0; ++number) {
        chosen = WithNumber(safe, number);
    }
    return folder.named[key] = chosen;
}

SafePath SafeNames::Place(std::u16string_view path, bool is_folder) {
    SafePath place;
    Folder* folder = &root_;
    std::size_t begin = !path.empty() && path[0] == u'\\' ? 1 : 0;
    for (;;) {
        const std::size_t end = std::min(path.find(u'\\', begin), path.size());
        const bool is_last = end == path.size();
        const std::u16string_view name = path.substr(begin, end - begin);
        const std::string chosen = Choose(*folder, name, !is_last || is_folder);
        place.is_renamed = place.is_renamed || Folded(ToUtf16(chosen)) != Folded(name);
        place.components.push_back(chosen);
        if (is_last) {
            return place;
        }
        folder = &folder->below[chosen];
        begin = end + 1;
    }
}

}  // namespace tolvenar::pc
