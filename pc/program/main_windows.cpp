// The program's entry on Windows: the command line is taken in units, which any file name survives.
// The second header wants the first.
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include "pc/program/more_commands.h"
#include "pc/text/utf.h"

int main() {
    using namespace tolvenar::pc;
    int count = 0;
    wchar_t** const units = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; units != nullptr && i < count; ++i) {
        const std::wstring text(units[i]);
        arguments.push_back(ToUtf8(std::u16string(text.begin(), text.end())));
    }
    HandleOutput out(1);
    HandleOutput err(2);
    DWORD mode = 0;
    Console console{out, err, ::GetConsoleMode(::GetStdHandle(STD_ERROR_HANDLE), &mode) != FALSE};
    return RunCommandLine(arguments, console, MoreCommands());
}
