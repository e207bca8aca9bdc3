// Key presses written as words: "ctrl+tab alt+x enter".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim::windows {

// The virtual keys of one press, modifiers first.
using KeyPress = std::vector<std::uint8_t>;

// None when a word names no key.
std::optional<std::vector<KeyPress>> ParseKeys(const std::string& words);

// Presses and releases them on the calling thread's desktop.
void TypeKeys(const std::vector<KeyPress>& presses);

}  // namespace sim::windows
