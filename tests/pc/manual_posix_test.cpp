// The worked examples of the manual: their commands are run, and what they print is what the manual
// shows.
#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/pc/program_test.h"

namespace tolvenar::pc {
namespace {

struct Step {
    std::string command;
    std::string shown;
};

// The commands below a heading of the manual, each with the lines that follow it.
std::vector<Step> StepsBelow(const std::string& heading) {
    std::ifstream manual(TOLVENAR_SOURCE_DIR "/docs/pc/manual.md");
    std::vector<Step> steps;
    bool is_below = false;
    bool is_example = false;
    for (std::string line; std::getline(manual, line);) {
        if (line.rfind("## ", 0) == 0) {
            is_below = line == "## " + heading;
        } else if (is_below && line.rfind("```", 0) == 0) {
            is_example = !is_example;
        } else if (is_below && is_example && line.rfind("$ ", 0) == 0) {
            steps.push_back({line.substr(2), ""});
        } else if (is_below && is_example && !steps.empty()) {
            steps.back().shown += line + "\n";
        }
    }
    return steps;
}

// As a page shows them.
std::string AsLines(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text.empty() || text.back() == '\n' ? text : text + "\n";
}

class ManualTest : public ProgramTest {
protected:
    void AddContact(const std::u16string& name, const std::u16string& telephone, std::uint32_t id) {
        // Two texts behind their properties.
        const auto end = static_cast<std::uint32_t>(32 + 2 * (name.size() + 1));
        const Bytes properties = Property(0x4013001F, 32) + Property(0x3A09001F, end) +
                                 Terminated(name) + Terminated(telephone);
        const Bytes looked_at = Word(0x4013001F) + Half(0) + Units(name) + Word(0x3A09001F) +
                                Half(0) + Units(telephone);
        pair.AddRecord(u"Contacts Database", properties, 2, looked_at, id);
    }
    void Try(const std::string& heading) const {
        const std::vector<Step> steps = StepsBelow(heading);
        EXPECT_FALSE(steps.empty()) << heading;
        for (const Step& step : steps) {
            Shell("{ " + step.command + "\n} > shown 2>&1");
            EXPECT_EQ(step.shown, AsLines(Read("shown"))) << step.command;
        }
    }
};

TEST_F(ManualTest, MyHandheldIsGoneIWantMyContacts) {
    pair.BeginState();
    AddContact(u"Ann Arbor", u"+1 734 555 0100", 0x1000021);
    AddContact(u"M\u00FCller, Jo", u"+49 30 555 0199", 0x1000022);
    Save();
    Try("\"My handheld is gone, I want my contacts\"");
}

TEST_F(ManualTest, WhichStateHasTheOldVersion) { Try("\"Which state has the old version?\""); }

TEST_F(ManualTest, IsThisBackupGood) {
    Write("Other.sav", pair.sav);
    Write("Other.jrn", pair.JournalBytes());
    const std::size_t place = pair.sav.find("Dear Ann, bye");
    pair.sav[place + 4] = '_';
    Save();
    Try("\"Is this backup good?\"");
}

TEST_F(ManualTest, WhatHasTheLastBackupChanged) { Try("\"What has the last backup changed?\""); }

TEST_F(ManualTest, TheJournalIsLost) {
    std::filesystem::remove(In("Home.jrn"));
    Try("\"The journal is lost\"");
}

TEST_F(ManualTest, TheCardIsNearlyFull) {
    // One large file that changes, four times in two days.
    constexpr std::uint64_t kDay = 24 * kHour;
    ObjectRecord before{};
    for (unsigned version = 0; version < 4; ++version) {
        pair.time += version == 1 ? 20 * kDay : kHour;
        pair.BeginState(Terminated(u"AutoBackup: Time"));
        const ObjectRecord stored =
            pair.AddFile(u"\\My Documents\\ledger.pxl", RandomBytes(100000, version), 0x50);
        if (version != 0) {
            pair.Delete(before);
        }
        before = stored;
    }
    Save();
    Try("\"The card is nearly full\"");
}

}  // namespace
}  // namespace tolvenar::pc
