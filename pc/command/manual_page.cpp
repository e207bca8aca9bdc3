// The manual page, in the macros that every "man" knows.
#include "pc/command/manual_page.h"

#include <fmt/format.h>

#include "pc/command/described_command.h"

namespace tolvenar::pc {
namespace {

// As text of a line: nothing in it is a request, and a minus can be copied into a shell.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        const bool begins_line = escaped.empty() || escaped.back() == '\n';
        if (begins_line && (letter == '.' || letter == '\'')) {
            escaped += "\\&";
        }
        escaped += letter == '\\' ? "\\e" : letter == '-' ? "\\-" : std::string(1, letter);
    }
    return escaped;
}

std::string Bold(const std::string& text) { return "\\fB" + Escaped(text) + "\\fR"; }
std::string Italic(const std::string& text) { return "\\fI" + Escaped(text) + "\\fR"; }

// "A", "[A]", "[A]...".
std::string UsageOf(const CLI::Option& operand) {
    const std::string name = Italic(operand.get_name(true));
    return (operand.get_required() ? name : "[" + name + "]") +
           (operand.get_items_expected_max() > 1 ? "..." : "");
}

std::string TermOf(const CLI::Option& option) {
    std::string term;
    for (const std::string& name : NamesOf(option)) {
        term += (term.empty() ? "" : ", ") + Bold(name);
    }
    return term + (TakesValue(option) ? " " + Italic("VALUE") : "");
}

// What --help has at its end: an example in its first line, then what holds for all commands.
std::string SectionOf(const CLI::App& command) {
    std::string usage = Bold("tolvenar " + command.get_name()) + " [" + Italic("OPTION") + "]...";
    std::string terms;
    for (const CLI::Option* operand : OperandsOf(command)) {
        usage += " " + UsageOf(*operand);
        terms += fmt::format(".TP\n{}\n{}\n", Italic(operand->get_name(true)),
                             Escaped(operand->get_description()));
    }
    for (const CLI::Option* option : OptionsOf(command)) {
        terms += fmt::format(".TP\n{}\n{}\n", TermOf(*option), Escaped(option->get_description()));
    }
    const std::string footer = command.get_footer();
    return fmt::format(".SS {}\n{}\n.PP\nThis command {}.\n{}.PP\n.nf\n{}\n.fi\n",
                       Escaped(command.get_name()), usage, Escaped(command.get_description()),
                       terms, Escaped(footer.substr(0, footer.find('\n'))));
}

}  // namespace

std::string ManualPage(const CLI::App& app) {
    std::string page = fmt::format(
        ".TH TOLVENAR 1\n.SH NAME\ntolvenar \\- {}\n.SH SYNOPSIS\n{} {} {} [{}]...\n"
        ".SH DESCRIPTION\n{}\n.SH COMMANDS\n",
        "reads, checks and uses the backup of a handheld", Bold("tolvenar"), Italic("COMMAND"),
        Italic("STORAGE") + "[@" + Italic("STATE") + "]", Italic("OPTION"),
        Escaped(app.get_description()));
    for (const CLI::App* command : CommandsOf(app)) {
        page += SectionOf(*command);
    }
    return page + ".SH EXIT STATUS\n" + Escaped(app.get_footer()) + "\n";
}

}  // namespace tolvenar::pc
