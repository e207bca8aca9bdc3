#include "simulator/registry/registry_text.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <windows.h>

#include "simulator/store/utf8.h"

namespace sim::registry {
namespace {

// One line's doing. A section without a value makes or deletes the key.
struct Step {
    KeyId root;
    std::u16string subkey;
    bool is_value = false;
    bool deletes = false;
    Value value;
};

[[noreturn]] void Fail(std::size_t line, const char* what) {
    throw std::runtime_error("registry text, line " + std::to_string(line) + ": " + what);
}

std::u16string FromUtf16(std::string_view bytes) {
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(&text[0], bytes.data(), text.size() * sizeof(char16_t));
    return text;
}

std::u16string FromCodePage(std::string_view bytes, UINT page, DWORD flags) {
    const int count = static_cast<int>(bytes.size());
    const int units = ::MultiByteToWideChar(page, flags, bytes.data(), count, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(units), L'\0');
    ::MultiByteToWideChar(page, flags, bytes.data(), count, &wide[0], units);
    return std::u16string(wide.begin(), wide.end());
}

std::u16string Decode(std::string_view bytes) {
    constexpr std::string_view kUtf16Mark("\xFF\xFE", 2);
    constexpr std::string_view kUtf8Mark("\xEF\xBB\xBF", 3);
    if (bytes.substr(0, 2) == kUtf16Mark) {
        return FromUtf16(bytes.substr(2));
    }
    if (bytes.size() >= 2 && bytes[1] == '\0') {
        return FromUtf16(bytes);
    }
    if (bytes.substr(0, 3) == kUtf8Mark) {
        bytes.remove_prefix(3);
    }
    if (bytes.empty()) {
        return {};
    }
    std::u16string text = FromCodePage(bytes, CP_UTF8, MB_ERR_INVALID_CHARS);
    return text.empty() ? FromCodePage(bytes, 1252, 0) : text;
}

std::u16string_view Trim(std::u16string_view text) {
    constexpr std::u16string_view kBlanks = u" \t\r";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::u16string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<std::uint32_t> HexNumber(std::u16string_view digits) {
    if (digits.empty() || digits.size() > 8) {
        return std::nullopt;
    }
    std::uint32_t number = 0;
    for (const char16_t unit : digits) {
        const char16_t lower = static_cast<char16_t>(unit | 0x20);
        std::uint32_t digit = 16;
        if (unit >= u'0' && unit <= u'9') {
            digit = static_cast<std::uint32_t>(unit - u'0');
        }
        if (lower >= u'a' && lower <= u'f') {
            digit = static_cast<std::uint32_t>(lower - u'a' + 10);
        }
        if (digit == 16) {
            return std::nullopt;
        }
        number = number * 16 + digit;
    }
    return number;
}

std::string BytesOf(const void* source, std::size_t size) {
    return std::string(static_cast<const char*>(source), size);
}

class Parser {
public:
    explicit Parser(const std::u16string& text) : rest_(text) {}

    std::vector<Step> Run() {
        SkipHeader();
        while (!rest_.empty()) {
            ParseLine(Trim(NextLine()));
        }
        return std::move(steps_);
    }

private:
    std::u16string_view NextLine() {
        const std::size_t end = std::min(rest_.find(u'\n'), rest_.size());
        const std::u16string_view line = rest_.substr(0, end);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        ++line_;
        return line;
    }

    void SkipHeader() {
        const std::u16string_view header = Trim(NextLine());
        if (header != u"REGEDIT4" && header != u"Windows Registry Editor Version 5.00") {
            Fail(line_, "not a registry text");
        }
    }

    void ParseLine(std::u16string_view line) {
        if (line.empty() || line[0] == u';') {
            return;
        }
        if (line[0] == u'[') {
            return ParseSection(line);
        }
        if (root_.empty()) {
            Fail(line_, "a value stands before the first key");
        }
        Step step{root_, subkey_, true, false, {}};
        if (line[0] == u'@') {
            line.remove_prefix(1);
        } else {
            step.value.name = TakeQuoted(line);
        }
        line = Trim(line);
        if (line.empty() || line[0] != u'=') {
            Fail(line_, "a value has no data");
        }
        ParseData(Trim(line.substr(1)), step);
        steps_.push_back(std::move(step));
    }

    void ParseSection(std::u16string_view line) {
        if (line.back() != u']') {
            Fail(line_, "a key's bracket is left open");
        }
        line = line.substr(1, line.size() - 2);
        const bool deletes = !line.empty() && line[0] == u'-';
        if (deletes) {
            line.remove_prefix(1);
        }
        const std::optional<KeyId> root = RootOfPath(line, subkey_);
        if (!root) {
            Fail(line_, "no such root");
        }
        root_ = *root;
        steps_.push_back({root_, subkey_, false, deletes, {}});
    }

    // Takes a quoted text from the front of `line`, which may go on over line ends.
    std::u16string TakeQuoted(std::u16string_view& line) {
        if (line.empty() || line[0] != u'"') {
            Fail(line_, "a quote is missing");
        }
        line.remove_prefix(1);
        std::u16string text;
        for (;;) {
            if (line.empty()) {
                if (rest_.empty()) {
                    Fail(line_, "a quote is left open");
                }
                line = NextLine();
                text += u'\n';
                continue;
            }
            char16_t unit = line[0];
            line.remove_prefix(1);
            if (unit == u'"') {
                return text;
            }
            if (unit == u'\\' && !line.empty()) {
                unit = line[0];
                line.remove_prefix(1);
            }
            text += unit;
        }
    }

    void ParseData(std::u16string_view data, Step& step) {
        constexpr std::u16string_view kDwordMark = u"dword:";
        if (data == u"-") {
            step.deletes = true;
        } else if (!data.empty() && data[0] == u'"') {
            const std::u16string text = TakeQuoted(data);
            step.value.type = kSz;
            step.value.data = BytesOf(text.c_str(), (text.size() + 1) * sizeof(char16_t));
        } else if (data.substr(0, kDwordMark.size()) == kDwordMark) {
            const auto number = HexNumber(data.substr(kDwordMark.size()));
            if (!number) {
                Fail(line_, "not a dword");
            }
            step.value.type = kDword;
            step.value.data = BytesOf(&*number, sizeof *number);
        } else {
            ParseHex(data, step.value);
        }
    }

    void ParseHex(std::u16string_view data, Value& value) {
        const std::size_t colon = data.find(u':');
        if (data.substr(0, 3) != u"hex" || colon == std::u16string_view::npos) {
            Fail(line_, "data of no known kind");
        }
        value.type = TypeOf(data.substr(3, colon - 3));
        data.remove_prefix(colon + 1);
        for (;;) {
            const bool goes_on = !data.empty() && data.back() == u'\\';
            if (goes_on) {
                data.remove_suffix(1);
            }
            AddBytes(data, value.data);
            if (!goes_on) {
                return;
            }
            if (rest_.empty()) {
                Fail(line_, "the last line goes on");
            }
            data = Trim(NextLine());
        }
    }

    std::uint32_t TypeOf(std::u16string_view mark) {
        if (mark.empty()) {
            return kBinary;
        }
        if (mark.size() < 3 || mark.front() != u'(' || mark.back() != u')') {
            Fail(line_, "not a value type");
        }
        const auto type = HexNumber(mark.substr(1, mark.size() - 2));
        if (!type) {
            Fail(line_, "not a value type");
        }
        return *type;
    }

    void AddBytes(std::u16string_view list, std::string& out) {
        while (!list.empty()) {
            const std::size_t end = std::min(list.find(u','), list.size());
            const std::u16string_view digits = Trim(list.substr(0, end));
            const bool last = end == list.size();
            list.remove_prefix(last ? end : end + 1);
            if (last && digits.empty()) {
                return;
            }  // a comma ended the line
            const auto byte = HexNumber(digits);
            if (!byte || *byte > 0xFF) {
                Fail(line_, "not a byte");
            }
            out += static_cast<char>(*byte);
        }
    }

    std::u16string_view rest_;
    std::size_t line_ = 0;
    KeyId root_;
    std::u16string subkey_;
    std::vector<Step> steps_;
};

void CheckPlaces(const Registry& registry, const std::vector<Step>& steps) {
    for (const Step& step : steps) {
        KeyId place;
        if (registry.Place(step.root, step.subkey, place) != kOk ||
            step.value.name.size() > kMaxNameUnits) {
            throw std::runtime_error("registry text: no key can be called " + Utf8(step.subkey));
        }
    }
}

void Apply(Registry& registry, const Step& step) {
    KeyId place;
    registry.Place(step.root, step.subkey, place);
    if (!step.is_value && step.deletes) {
        registry.Delete(place);
    } else if (step.is_value && step.deletes) {
        registry.DeleteValue(place, step.value.name);
    } else if (step.is_value && registry.Exists(place)) {
        registry.Set(place, step.value);
    } else {
        bool created = false;
        registry.Create(step.root, step.subkey, {}, place, created);
    }
}

}  // namespace

void ImportText(Device& device, std::string_view bytes) {
    const std::u16string text = Decode(bytes);
    const std::vector<Step> steps = Parser(text).Run();
    Registry registry(device);
    CheckPlaces(registry, steps);
    LogStore::Change change(device.store());
    for (const Step& step : steps) {
        Apply(registry, step);
    }
}

}  // namespace sim::registry
