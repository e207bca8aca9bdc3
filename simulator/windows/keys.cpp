#include "simulator/windows/keys.h"

#include <cctype>
#include <sstream>
#include <windows.h>

namespace sim::windows {
namespace {

struct NamedKey {
    const char* name;
    std::uint8_t key;
};
constexpr NamedKey kKeys[] = {
    {"ctrl", VK_CONTROL},  {"alt", VK_MENU},      {"shift", VK_SHIFT},   {"enter", VK_RETURN},
    {"esc", VK_ESCAPE},    {"tab", VK_TAB},       {"space", VK_SPACE},   {"back", VK_BACK},
    {"up", VK_UP},         {"down", VK_DOWN},     {"left", VK_LEFT},     {"right", VK_RIGHT},
    {"home", VK_HOME},     {"end", VK_END},       {"pageup", VK_PRIOR},  {"pagedown", VK_NEXT},
    {"delete", VK_DELETE}, {"insert", VK_INSERT}, {"plus", VK_ADD},      {"minus", VK_SUBTRACT},
    {".", VK_OEM_PERIOD},  {"\\", VK_OEM_5},      {"star", VK_MULTIPLY},
};

std::optional<std::uint8_t> KeyNamed(const std::string& name) {
    if (name.size() == 1 && std::isalnum(static_cast<unsigned char>(name[0])) != 0) {
        return static_cast<std::uint8_t>(std::toupper(static_cast<unsigned char>(name[0])));
    }
    if (name.size() == 2 && name[0] == 'f' && name[1] >= '1' && name[1] <= '9') {
        return static_cast<std::uint8_t>(VK_F1 + (name[1] - '1'));
    }
    for (const NamedKey& row : kKeys) {
        if (name == row.name) {
            return row.key;
        }
    }
    return std::nullopt;
}

void Send(std::uint8_t key, DWORD flags) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.wScan = static_cast<WORD>(::MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = flags;
    ::SendInput(1, &input, sizeof input);
}

}  // namespace

std::optional<std::vector<KeyPress>> ParseKeys(const std::string& words) {
    std::vector<KeyPress> presses;
    std::istringstream in(words);
    for (std::string word; in >> word;) {
        KeyPress press;
        std::istringstream parts(word);
        for (std::string name; std::getline(parts, name, '+');) {
            const auto key = KeyNamed(name);
            if (!key) {
                return std::nullopt;
            }
            press.push_back(*key);
        }
        presses.push_back(press);
    }
    return presses;
}

void TypeKeys(const std::vector<KeyPress>& presses) {
    for (const KeyPress& press : presses) {
        for (auto key = press.begin(); key != press.end(); ++key) {
            Send(*key, 0);
        }
        for (auto key = press.rbegin(); key != press.rend(); ++key) {
            Send(*key, KEYEVENTF_KEYUP);
        }
    }
}

}  // namespace sim::windows
