// What a family of commands is made of. Handlers answer with JSON and throw CommandError otherwise.
#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/store/device.h"

namespace sim {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// One command; the counts are those of the words behind its name.
struct CommandRow {
    const char* name;
    std::size_t least_words;
    std::size_t most_words;
    Json (*run)(Device& device, const Words& words);
    const char* usage;
};
using CommandRows = std::vector<CommandRow>;
constexpr std::size_t kManyWords = 1000;

// The families.
const CommandRows& DatabaseCommands();
const CommandRows& FileCommands();
const CommandRows& GateCommands();
const CommandRows& NotificationCommands();
const CommandRows& ProcessCommands();
const CommandRows& ProfileCommands();
const CommandRows& RegistryCommands();
const CommandRows& SettingCommands();
const CommandRows& WindowCommands();

// Answer of a command that has nothing to tell.
inline Json Done() { return Json::object({{"ok", true}}); }

// A whole number, decimal or 0x…; throws CommandError.
std::int64_t Number(const std::string& word);

std::wstring Wide(const std::string& utf8);
std::u16string Wide16(const std::string& utf8);
std::string Utf8(const std::wstring& text);
std::string Utf8(const std::u16string& text);

// A path of the host as the user writes it. A leading slash is the machine's root under Wine.
std::wstring HostPath(const std::string& path);
// Whole host files; both throw CommandError.
std::string ReadHostFile(const std::string& path);
void WriteHostFile(const std::string& path, const std::string& bytes);

}  // namespace sim
