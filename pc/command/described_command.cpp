#include "pc/command/described_command.h"

namespace tolvenar::pc {
namespace {

std::vector<const CLI::Option*> OptionsWhere(const CLI::App& command, bool are_operands) {
    return command.get_options([are_operands](const CLI::Option* option) {
        return (option->get_positional() && !option->nonpositional()) == are_operands;
    });
}

}  // namespace

std::vector<const CLI::App*> CommandsOf(const CLI::App& app) {
    return app.get_subcommands(
        [](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<const CLI::Option*> OptionsOf(const CLI::App& command) {
    return OptionsWhere(command, false);
}

std::vector<const CLI::Option*> OperandsOf(const CLI::App& command) {
    return OptionsWhere(command, true);
}

std::vector<std::string> NamesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) {
        names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    return names;
}

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() != 0; }

}  // namespace tolvenar::pc
