#include "pc/command/completion.h"

#include <fmt/format.h>

#include "pc/command/described_command.h"

namespace tolvenar::pc {
namespace {

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

std::string OptionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : OptionsOf(command)) {
        for (const std::string& name : NamesOf(*option)) {
            names.push_back(name);
        }
    }
    return Joined(names);
}

// Within single quotes.
std::string Quoted(const std::string& text, const char* quote) {
    std::string quoted = "'";
    for (const char letter : text) {
        quoted += letter == '\'' ? quote : std::string(1, letter);
    }
    return quoted + "'";
}

// Within the brackets of an argument of zsh.
std::string InBrackets(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        const bool is_special = letter == '[' || letter == ']' || letter == ':' || letter == '\\';
        escaped += (is_special ? "\\" : "") + std::string(1, letter);
    }
    return escaped;
}

}  // namespace

std::string BashCompletion(const CLI::App& app) {
    std::vector<std::string> names;
    std::string cases;
    for (const CLI::App* command : CommandsOf(app)) {
        names.push_back(command->get_name());
        cases += fmt::format("    {}) words='{}' ;;\n", command->get_name(), OptionNames(*command));
    }
    return fmt::format(R"(_tolvenar() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} words=
  if [ "$COMP_CWORD" -eq 1 ]; then
    mapfile -t COMPREPLY < <(compgen -W '{} --help' -- "$current")
    return
  fi
  case ${{COMP_WORDS[1]}} in
{}  esac
  if [ "${{current:0:1}}" = - ]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}}
complete -F _tolvenar tolvenar
)",
                       Joined(names), cases);
}

std::string ZshCompletion(const CLI::App& app) {
    std::string commands;
    std::string cases;
    for (const CLI::App* command : CommandsOf(app)) {
        commands += fmt::format(
            "    {}\n",
            Quoted(command->get_name() + ":" + InBrackets(command->get_description()), "'\\''"));
        cases += fmt::format("    {}) _arguments", command->get_name());
        for (const CLI::Option* option : OptionsOf(*command)) {
            for (const std::string& name : NamesOf(*option)) {
                const std::string told = name + "[" + InBrackets(option->get_description()) + "]" +
                                         (TakesValue(*option) ? ":value:_files" : "");
                cases += " " + Quoted(told, "'\\''");
            }
        }
        cases += " '*:file:_files' ;;\n";
    }
    return fmt::format(R"(#compdef tolvenar
_tolvenar() {{
  local -a commands=(
{}  )
  if (( CURRENT == 2 )); then
    _describe command commands
    return
  fi
  local command=$words[2]
  shift words
  (( CURRENT-- ))
  case $command in
{}  esac
}}
if [ "$funcstack[1]" = _tolvenar ]; then
  _tolvenar "$@"
else
  compdef _tolvenar tolvenar
fi
)",
                       commands, cases);
}

std::string FishCompletion(const CLI::App& app) {
    std::string text;
    for (const CLI::App* command : CommandsOf(app)) {
        text += fmt::format("complete -c tolvenar -n __fish_use_subcommand -f -a {} -d {}\n",
                            command->get_name(), Quoted(command->get_description(), "\\'"));
        for (const CLI::Option* option : OptionsOf(*command)) {
            std::string names;
            for (const std::string& name : option->get_snames()) {
                names += " -s " + name;
            }
            for (const std::string& name : option->get_lnames()) {
                names += " -l " + name;
            }
            text +=
                fmt::format("complete -c tolvenar -n '__fish_seen_subcommand_from {}'{}{} -d {}\n",
                            command->get_name(), names, TakesValue(*option) ? " -r" : "",
                            Quoted(option->get_description(), "\\'"));
        }
    }
    return text;
}

}  // namespace tolvenar::pc
