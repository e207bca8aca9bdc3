// salvage of a storage whose two files hold anything behind a sound head: 16 bits tell how much of
// the input is the journal, the rest are blocks. Whatever is found, the new pair is sound: the
// command itself holds it against its plan.
#include <filesystem>

#include "pc/command/command_line.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/support/temporary_folder.h"

using namespace tolvenar;

namespace {

namespace fs = std::filesystem;

int Run(const std::vector<std::string>& arguments) {
    pc::TextOutput out;
    pc::TextOutput err;
    pc::Console console{out, err};
    return pc::RunCommandLine(arguments, console);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tests::TemporaryFolder folder;
    FuzzInput input(data, size);
    const std::uint16_t journal_bytes = input.Half();
    folder.Write("Home.jrn", input.TakeBytes(journal_bytes));
    folder.Write("Home.sav", Head(u"Handheld", 1) + input.Rest());
    fs::remove(folder.In("New.sav"));
    fs::remove(folder.In("New.jrn"));

    const int code = Run({"salvage", folder.In("Home"), "-o", folder.In("New")});
    Require(code == 0 || code == 3 || code == 4);
    if (fs::exists(folder.In("New.sav"))) {
        Require(Run({"verify", folder.In("New")}) == 0);
    }
    return 0;
}
