// A storage made by hand in a folder of its own, and the program's commands over it.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "nlohmann/json.hpp"
#include "tests/support/pair_builder.h"
#include "tests/support/temporary_folder.h"

namespace tolvenar::pc {

// 16 November 2026, 04:33:10 UTC.
constexpr std::uint64_t kTime = 0x01DD7583957AC700;
constexpr std::uint64_t kHour = 36000000000;

class PcTest : public testing::Test {
protected:
    struct Result {
        int code;
        std::string out;
        std::string err;
    };

    PcTest();

    // Path of a file in the case's folder.
    std::string In(const std::string& name) const { return folder_.In(name); }
    void Write(const std::string& name, const Bytes& bytes) const;
    Bytes Read(const std::string& name) const;
    // Writes the pair as "Home.sav" and "Home.jrn".
    void Save() const;
    // Runs a command line. "HOME" stands for the storage, also before an "@".
    Result Run(std::vector<std::string> arguments) const;
    // The same with --json, parsed.
    nlohmann::json RunJson(std::vector<std::string> arguments, int expected_code = 0) const;

    PairBuilder pair;

private:
    tests::TemporaryFolder folder_;
};

// Three states of files, registry and databases, as the cases of several commands want them.
class ThreeStatesTest : public PcTest {
protected:
    ThreeStatesTest();
    // A state with twenty thousand files more.
    void AddManyFiles() {
        pair.BeginState();
        for (std::uint32_t i = 0; i < 20000; ++i) {
            const std::u16string folder = u"\\Folder " + std::u16string(i / 1000 + 1, u'a');
            const std::string number = std::to_string(i);
            pair.AddFile(folder + u"\\file " + std::u16string(number.begin(), number.end()), "x",
                         0x1000 + i);
        }
    }
};

}  // namespace tolvenar::pc
