#include "tests/pc/pc_test.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "pc/program/more_commands.h"

namespace tolvenar::pc {

PcTest::PcTest() {
#ifdef _WIN32
    ::_putenv_s("TZ", "UTC0");
#else
    ::setenv("TZ", "UTC0", 1);
#endif
    pair.time = kTime;
}

void PcTest::Write(const std::string& name, const Bytes& bytes) const {
    folder_.Write(name, bytes);
}

Bytes PcTest::Read(const std::string& name) const {
    std::ostringstream bytes;
    bytes << std::ifstream(In(name), std::ios::binary).rdbuf();
    return bytes.str();
}

void PcTest::Save() const {
    Write("Home.sav", pair.sav);
    Write("Home.jrn", pair.JournalBytes());
}

PcTest::Result PcTest::Run(std::vector<std::string> arguments) const {
    for (std::string& argument : arguments) {
        if (argument == "HOME" || argument.rfind("HOME@", 0) == 0) {
            argument = In("Home.sav") + argument.substr(4);
        }
    }
    TextOutput out;
    TextOutput err;
    Console console{out, err};
    const int code = RunCommandLine(arguments, console, MoreCommands());
    return {code, out.text, err.text};
}

nlohmann::json PcTest::RunJson(std::vector<std::string> arguments, int expected_code) const {
    arguments.push_back("--json");
    const Result result = Run(std::move(arguments));
    EXPECT_EQ(expected_code, result.code) << result.err;
    return nlohmann::json::parse(result.out, nullptr, false);
}

ThreeStatesTest::ThreeStatesTest() {
    pair.BeginState(Terminated(u"first"));
    pair.AddFolder(u"\\My Documents", 0x10);
    const ObjectRecord letter = pair.AddFile(u"\\My Documents\\letter.txt", "Dear Ann", 0x11);
    const ObjectRecord notes = pair.AddFile(u"\\My Documents\\notes.txt", "milk", 0x12);
    pair.AddKey(u"Software\\Notes");
    const ObjectRecord font = pair.AddValue(u"Software\\Notes", u"Font", Terminated(u"Tahoma"), 1);
    pair.AddDatabase(u"Contacts Database", 0x20);
    const ObjectRecord contact = pair.AddRecord(u"Contacts Database", 7, 0x21);

    pair.time += kHour;
    pair.BeginState(Terminated(u"second"));
    pair.AddFile(u"\\My Documents\\letter.txt", "Dear Ann, bye", 0x11);
    pair.Delete(letter);
    pair.AddValue(u"Software\\Notes", u"Font", Terminated(u"Courier"), 1);
    pair.Delete(font);

    pair.time += kHour;
    pair.BeginState(Terminated(u"third"));
    pair.AddFile(u"\\My Documents\\plan.txt", "", 0x13);
    pair.Delete(notes);
    pair.Delete(contact);
    Save();
}

}  // namespace tolvenar::pc
