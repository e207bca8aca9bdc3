// The built program as other programs and the notifications start it.
#include "platform/win32.h"

#include <map>
#include <regex>

#include "tests/support/contents.h"
#include "tests/support/log_lines.h"
#include "tests/support/program_test.h"

namespace tests {
namespace {

class UnattendedTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        device().PutFile(kNote, "hello");
    }
    Contents Now() { return ContentsOf(device().sim()); }
    Texts LinesWith(const std::string& text) {
        const std::wstring log = L"\\Storage Card\\Tolvenar\\tolvenar_log.txt";
        Texts found;
        for (const std::string& line : device().Exists(log) ? LogLinesIn(device().FileBytes(log))
                                                            : std::vector<std::string>()) {
            if (line.find(text) != line.npos) {
                found.push_back(line);
            }
        }
        return found;
    }
    // What the program says of unattended ends; the last backup's result is remembered.
    Texts Ends() { return LinesWith("RunUnattended"); }
    // The CPU that the header of the installed program's file names.
    std::string Cpu() {
        const std::map<int, std::string> cpus = {{0x14C, "x86"}, {0x166, "MIPS"}, {0x1C0, "ARM"}};
        const std::string file = device().FileBytes(kProgramPath);
        std::int32_t header = 0;
        std::uint16_t machine = 0;
        file.copy(reinterpret_cast<char*>(&header), sizeof header, 0x3C);
        file.copy(reinterpret_cast<char*>(&machine), sizeof machine, header + 4);
        return cpus.at(machine);
    }
    unsigned LastResult() {
        const std::string bytes = SettingBytes("OwnLastAutomatic").value_or("");
        return bytes.size() == 12 ? static_cast<unsigned char>(bytes[8]) : 0;
    }
};

TEST_F(UnattendedTest, TheFirstBackupCreatesTheStorage) {
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_TRUE(device().Exists(kStorageFile));
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\Tolvenar\\Backup.jrn_1"));
}

TEST_F(UnattendedTest, ASecondBackupWithoutAChangeWritesNothing) {
    BackUp();
    const std::string storage = device().FileBytes(kStorageFile);
    const std::string journal = device().FileBytes(kJournalFile);
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(storage, device().FileBytes(kStorageFile));
    EXPECT_EQ(journal, device().FileBytes(kJournalFile));
}

TEST_F(UnattendedTest, ARestoreBringsEverythingBack) {
    device().PutFile(L"\\My Documents\\b.txt", "");
    device().MakeFolder(L"\\My Documents\\Empty");
    Ask("reg-set HKCU\\Software\\Vendor Name REG_SZ before");
    Ask("reg-set HKLM\\Software\\Vendor Number REG_DWORD 5");
    BackUp();
    const Contents before = Now();

    device().PutFile(kNote, "changed and longer");
    device().Remove(L"\\My Documents\\b.txt");
    device().Remove(L"\\My Documents\\Empty");
    device().PutFile(L"\\My Documents\\New\\c.txt", "new");
    Ask("reg-set HKCU\\Software\\Vendor Name REG_SZ after");
    Ask("reg-delete HKLM\\Software\\Vendor");
    Ask("reg-set HKLM\\Software\\Added\\Key Value REG_BINARY 0102");
    EXPECT_NE(Texts(), Differences(before, Now()));

    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ(Texts(), Differences(before, Now()));
}

TEST_F(UnattendedTest, ABackupAfterARestoreFindsNothing) {
    BackUp();
    device().Remove(kNote);
    RestoreLast();
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(UnattendedTest, ADeletedStorageFileBecomesANewFirstState) {
    BackUp();
    const std::size_t first_size = device().FileBytes(kStorageFile).size();
    device().Remove(kStorageFile);  // the old journal must not be believed
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_EQ(first_size, device().FileBytes(kStorageFile).size());
}

// Something that the scan had no memory for would count as gone.
TEST_F(UnattendedTest, WithoutMemoryForItsScanABackupWritesAndARestoreChangesNothing) {
    BackUp();
    Ask("reg-set HKCU\\Test Large REG_BINARY " + std::string(10002, '0'));
    device().Remove(kNote);
    const std::string storage = device().FileBytes(kStorageFile);
    const std::string journal = device().FileBytes(kJournalFile);
    // The room for the value's data and a terminator.
    device().Fault("HeapAlloc", 1, 2, ERROR_NOT_ENOUGH_MEMORY, ", 5003");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(9u, LastResult());
    EXPECT_EQ(storage, device().FileBytes(kStorageFile));
    EXPECT_EQ(journal, device().FileBytes(kJournalFile));

    device().Fault("MessageBoxW", 1, 1, ERROR_ACCESS_DENIED, "Not enough memory");
    EXPECT_EQ(0, RestoreLast());
    EXPECT_FALSE(device().Exists(kNote));
    device().EndFaults();
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ((Numbers{1, 2}), States());
}

TEST_F(UnattendedTest, AHeldStorageFileIsLeftAlone) {
    BackUp();
    device().PutFile(L"\\My Documents\\b.txt", "more");
    const std::string before = device().FileBytes(kStorageFile);
    {
        const auto lock = device().Lock(kStorageFile, "write");
        EXPECT_EQ(1, BackUp());
    }
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
}

TEST_F(UnattendedTest, ARestoreWithoutAStorageFileFailsQuietly) {
    EXPECT_EQ(1, RestoreLast());
    EXPECT_FALSE(device().Exists(kStorageFile));
}

TEST_F(UnattendedTest, ARestoreOfAnEmptyStorageDoesNothing) {
    BackUp();
    device().PutFile(kJournalFile, "");
    device().PutFile(kNote, "other");
    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ("other", device().FileBytes(kNote));
}

TEST_F(UnattendedTest, AStorageOfAnotherDeviceIsNotTouched) {
    BackUp();
    device().Set("processor", "4000");
    const std::string before = device().FileBytes(kStorageFile);
    device().PutFile(kNote, "other");
    EXPECT_EQ(1, BackUp());
    EXPECT_EQ(1, RestoreLast());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
    EXPECT_EQ("other", device().FileBytes(kNote));
}

TEST_F(UnattendedTest, AFullCardIsLeftAsItIs) {
    BackUp();
    device().PutFile(kNote, std::string(5000, 'a'));
    const std::string before = device().FileBytes(kStorageFile);
    device().Set("card.free", "12000");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(UnattendedTest, AFullCardGivesUpTheOldStorageWhereTheUserAllowsIt) {
    // Most of the old storage is of what is gone.
    device().PutFile(L"\\big.txt", std::string(200000, 'b'));
    BackUp();
    device().Remove(L"\\big.txt");
    device().PutFile(kNote, std::string(5000, 'a'));
    device().Set("card.free", "12000");
    SetDword("MayDeleteOldStorage", 1);
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    device().Remove(kNote);
    EXPECT_EQ(0, RestoreLast());
    EXPECT_TRUE(device().Exists(kNote));
}

TEST_F(UnattendedTest, TooLittleMemoryStartsNoBackup) {
    Ask("set memory.free 1000000");
    Ask("set store.free 1000000");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers(), States());
}

TEST_F(UnattendedTest, TheScheduleIsAsItWasAfterwards) {
    constexpr unsigned kHalfPastNine = 30 << 16 | 21;
    device().HasNotifications();
    SetDword("onTime", 1);
    SetDword("WakeUpTime", kHalfPastNine);
    BackUp();
    EXPECT_EQ(2u, Ask("notifications").size());
    EXPECT_EQ(1u, Dword("onTime"));
    EXPECT_EQ(kHalfPastNine, Dword("WakeUpTime"));
}

TEST_F(UnattendedTest, WhatEndsWellLeavesNoLine) {
    BackUp();
    EXPECT_EQ(1u, LastResult());
    BackUp();
    EXPECT_EQ(2u, LastResult());
    device().PutFile(kNote, "other");
    RestoreLast();
    EXPECT_EQ(Texts(), Ends());
}

TEST_F(UnattendedTest, AFullCardLeavesALineWithWhatIsMissing) {
    BackUp();
    device().PutFile(kNote, std::string(5000, 'a'));
    device().Set("card.free", "12000");
    BackUp();
    ASSERT_EQ(1u, Ends().size());
    const std::string line = Ends()[0];
    const std::string beginning =
        "E RunUnattended: AutoBackup: External: result 6, state 2, missing bytes ";
    EXPECT_EQ(beginning, line.substr(0, beginning.size()));
    EXPECT_GT(std::stol(line.substr(beginning.size())), 12000);
    EXPECT_EQ(6u, LastResult());
}

TEST_F(UnattendedTest, TooLittleMemoryLeavesALineWithTheShortfall) {
    BackUp();
    device().PutFile(kNote, "other");
    Ask("set memory.free 1000000");
    Ask("set store.free 1000000");
    BackUp();
    // 8,388,608 less 1,000,000 and three quarters of 1,000,000.
    EXPECT_EQ(Texts{"E RunUnattended: AutoBackup: External: result 9, state 2, missing bytes "
                    "6638608"},
              Ends());
}

TEST_F(UnattendedTest, AStorageThatCannotBeOpenedLeavesALine) {
    BackUp();
    {
        const auto lock = device().Lock(kStorageFile, "write");
        EXPECT_EQ(1, BackUp());
        EXPECT_EQ(1, RestoreLast());
    }
    {
        const auto lock = device().Lock(kJournalFile);
        EXPECT_EQ(1, BackUp());
    }
    EXPECT_EQ(
        (Texts{"E RunUnattended: AutoBackup: External: result 11, state 0, missing bytes 0",
               "E RunUnattended: AutoRestore: Last State: result 11, state 0, missing bytes 0",
               "E RunUnattended: AutoBackup: External: result 5, state 0, missing bytes 0"}),
        Ends());
    EXPECT_EQ(5u, LastResult());
}

TEST_F(UnattendedTest, AWriteProtectedStorageLeavesALine) {
    BackUp();
    device().SetAttributes(kStorageFile, FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(1, BackUp());
    EXPECT_EQ(Texts{"E RunUnattended: AutoBackup: External: result 10, state 0, missing bytes 0"},
              Ends());
}

TEST_F(UnattendedTest, EachStartLeavesALineOfTheProgramItsCpuItsBuildAndTheSystem) {
    Ask("set os.version 2.11");
    BackUp();
    BackUp();
    const Texts lines = LinesWith("RunProgram");
    ASSERT_EQ(2u, lines.size());
    EXPECT_EQ(lines[0], lines[1]);
    EXPECT_TRUE(std::regex_match(lines[0], std::regex("I RunProgram: Tolvenar 1\\.0, " + Cpu() +
                                                      ", build [0-9a-z-]+, on Windows CE 2\\.11")))
        << lines[0];
}

TEST_F(UnattendedTest, ALaunchThatIsDroppedLeavesNoLine) {
    BackUp();
    EXPECT_EQ(0, Run("TolvenarRunAfterTzChange"));
    EXPECT_EQ(1u, LinesWith("RunProgram").size());
}

// Without its folder there is no place for a line; the result is remembered all the same.
TEST_F(UnattendedTest, WithoutTheCardTheResultIsRemembered) {
    device().Remove(L"\\Storage Card\\Tolvenar");
    EXPECT_EQ(1, BackUp());
    EXPECT_EQ(11u, LastResult());
    EXPECT_FALSE(device().Exists(L"\\tolvenar_log.txt"));
}

}  // namespace
}  // namespace tests
