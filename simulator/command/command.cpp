#include "simulator/command/command.h"

#include "simulator/command/command_row.h"
#include "simulator/gate/trace.h"

namespace sim {
namespace {

const CommandRow* FindCommand(const std::string& name) {
    const CommandRows* const families[] = {
        &DatabaseCommands(), &NotificationCommands(), &FileCommands(),
        &GateCommands(),     &ProcessCommands(),      &ProfileCommands(),
        &RegistryCommands(), &SettingCommands(),      &WindowCommands()};
    for (const CommandRows* family : families) {
        for (const CommandRow& row : *family) {
            if (name == row.name) {
                return &row;
            }
        }
    }
    return nullptr;
}

Json Run(Device& device, const Words& words) {
    const CommandRow* row = words.empty() ? nullptr : FindCommand(words[0]);
    if (row == nullptr) {
        throw CommandError("no such command: " + (words.empty() ? std::string() : words[0]));
    }
    const Words rest(words.begin() + 1, words.end());
    if (rest.size() < row->least_words || rest.size() > row->most_words) {
        throw CommandError(std::string("usage: ") + row->name + " " + row->usage);
    }
    return row->run(device, rest);
}

std::string OneLine(std::string text) {
    for (char& c : text) {
        if (c == '\n' || c == '\r') {
            c = ' ';
        }
    }
    return text;
}

}  // namespace

CommandResult RunCommand(Device& device, const std::vector<std::string>& words) {
    try {
        const UntracedThread thread(device);
        return {true, Run(device, words).dump(-1, ' ', false, Json::error_handler_t::replace)};
    } catch (const std::exception& error) {
        return {false, OneLine(error.what())};
    }
}

std::vector<std::string> SplitWords(const std::string& line) {
    Words words;
    std::string word;
    bool quoted = false;
    bool started = false;
    for (const char c : line) {
        if (c == '"') {
            quoted = !quoted;
            started = true;
        } else if (!quoted && (c == ' ' || c == '\t' || c == '\r')) {
            if (started) {
                words.push_back(word);
            }
            word.clear();
            started = false;
        } else if (!quoted && !started && words.empty() && c == '#') {
            return {};
        } else {
            word += c;
            started = true;
        }
    }
    if (quoted) {
        throw CommandError("a quote is left open");
    }
    if (started) {
        words.push_back(word);
    }
    return words;
}

}  // namespace sim
