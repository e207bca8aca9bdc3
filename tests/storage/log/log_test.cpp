#include "snapshot/text/log.h"

#include <nlohmann/json.hpp>

#include "app/settings/settings.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class LogTest : public StorageTest {
protected:
    void SetUp() override {
        StorageTest::SetUp();
        device().Command("set locale.shortdate dd.MM.yyyy");
        device().Command("set locale.time H:mm:ss");
        device().Command("set clock 2026-11-16T04:33:10Z");
    }
    static int Note(const char16_t* message) { return LogMessage(message, u"Mod", kLogNote); }
};

TEST_F(LogTest, ALineIsLevelDateModuleAndMessageInUtf16) {
    EXPECT_EQ(1, LogMessage(u"Could't read journal", u"OpenJournal", kLogError));
    EXPECT_EQ(Text(u"E - 16.11.2026, 4:33:10 GMT - Module: OpenJournal; Message: Could't read "
                   u"journal\r\n"),
              Log());
    EXPECT_EQ(Units(u"E "), Content(kLog).substr(0, 4));
}

TEST_F(LogTest, OnlyBit0x10MakesAnError) {
    struct {
        std::uint32_t flags;
        const char16_t* tag;
    } const rows[] = {{0x10000, u"I - "}, {0x10010, u"E - "}, {0x10040, u"I - "}, {0x10, u"E - "},
                      {0, u"I - "},       {0x10020, u"I - "}, {0x10030, u"E - "}};
    for (const auto& row : rows) {
        Put(kLog, "");
        EXPECT_EQ(1, LogMessage(u"x", u"y", row.flags));
        EXPECT_EQ(row.tag, Log().substr(0, 4)) << row.flags;
    }
}

TEST_F(LogTest, TheTimeIsUtc) {
    device().Command("set zone UTC-5");
    device().Command("set clock 2026-11-16T04:33:10Z");
    Note(u"x");
    EXPECT_EQ(0u, Log().find(u"I - 16.11.2026, 4:33:10 GMT"));
}

TEST_F(LogTest, LinesAreAppendedInOrder) {
    Put(kLog, Units(u"old"));
    EXPECT_EQ(1, Note(u"first"));
    EXPECT_EQ(1, Note(u"second"));
    EXPECT_EQ(Text(u"old"
                   u"I - 16.11.2026, 4:33:10 GMT - Module: Mod; Message: first\r\n"
                   u"I - 16.11.2026, 4:33:10 GMT - Module: Mod; Message: second\r\n"),
              Log());
}

TEST_F(LogTest, WithoutAStorageNothingIsLogged) {
    device().Command("reg-delete HKCU\\Software\\Kestrin2\\Tolvenar StorageFile");
    EXPECT_EQ(1, Note(u"x"));
    EXPECT_FALSE(Exists(kLog));
    EXPECT_FALSE(Exists(u"\\tolvenar_log.txt"));
}

TEST_F(LogTest, AStorageInTheRootHasItsLogThere) {
    ASSERT_TRUE(WriteStorageFolder(u"\\"));
    Note(u"x");
    EXPECT_TRUE(Exists(u"\\tolvenar_log.txt"));
}

TEST_F(LogTest, AStoragePathWithoutABackslashHasItsLogInTheRoot) {
    SetValue(HKEY_CURRENT_USER, Wide(kSettingsKey), L"StoragePath", REG_SZ, Terminated(u"Card"));
    Note(u"x");
    EXPECT_TRUE(Exists(u"\\tolvenar_log.txt"));
}

// So that every line is on the medium when the call returns, and two writers never mix theirs.
TEST_F(LogTest, ALineIsOneOpeningOneSeekOneWriteAndOneClosing) {
    const auto calls = [&](const char* function) {
        return nlohmann::json::parse(device().Traced(function, [] { Note(u"x"); }));
    };
    for (const char* function : {"CreateFileW", "SetFilePointer", "WriteFile", "CloseHandle"}) {
        EXPECT_EQ(1u, calls(function).size()) << function;
    }
    const std::string opening = calls("CreateFileW").at(0)["arguments"];
    // Reading and writing, reading shared, made when it is not there.
    EXPECT_NE(std::string::npos, opening.find(", 3221225472, 1, 4, 128")) << opening;
}

TEST_F(LogTest, AFolderThatIsNotThereLosesTheLine) {
    ASSERT_TRUE(WriteStorageFolder(u"\\No Card"));
    EXPECT_EQ(1, Note(u"x"));
    EXPECT_FALSE(Exists(u"\\No Card\\tolvenar_log.txt"));
}

// Another thread writing at the same moment: its line stays, this one is lost.
TEST_F(LogTest, AHeldLogLosesTheLine) {
    Note(u"first");
    const Text before = Log();
    {
        const UniqueHandle held = Hold(kLog);
        EXPECT_EQ(1, Note(u"second"));
    }
    EXPECT_EQ(before, Log());
}

TEST_F(LogTest, ALogThatIsBeingReadTakesTheLine) {
    Note(u"first");
    const UniqueHandle reader = Reader(kLog);
    Note(u"second");
    EXPECT_EQ(1u, Occurrences(Log(), u"Message: second\r\n"));
}

TEST_F(LogTest, AFailedWriteLosesTheLineAndNothingElse) {
    Fail("WriteFile", 1, ERROR_DISK_FULL);
    EXPECT_EQ(1, Note(u"lost"));
    EXPECT_EQ(1, Note(u"kept"));
    EXPECT_EQ(1u, Occurrences(Log(), u"Message: "));
    EXPECT_TRUE(IsFree(kLog));
}

TEST_F(LogTest, ALineOf259UnitsIsWhole) {
    const Text start = u"I - 16.11.2026, 4:33:10 GMT - Module: Mod; Message: ";
    const Text message(257 - start.size(), u'm');
    Note(message.c_str());
    EXPECT_EQ(start + message + u"\r\n", Log());
}

TEST_F(LogTest, ALongerLineLosesTheEndOfItsMessage) {
    const Text start = u"I - 16.11.2026, 4:33:10 GMT - Module: Mod; Message: ";
    for (const std::size_t extra : {1u, 2u, 1000u}) {
        Put(kLog, "");
        Note(Text(257 - start.size() + extra, u'm').c_str());
        EXPECT_EQ(start + Text(257 - start.size(), u'm') + u"\r\n", Log()) << extra;
        Note(u"next");
        EXPECT_EQ(2u, Occurrences(Log(), u"\r\n")) << extra;
    }
}

TEST_F(LogTest, ALongModuleStillEndsItsLine) {
    LogMessage(u"message", Text(500, u'M').c_str(), kLogError);
    EXPECT_EQ(259u, Log().size());
    EXPECT_EQ(u"\r\n", Log().substr(257));
}

TEST_F(LogTest, APercentSignIsText) {
    Note(u"100 %s %n");
    EXPECT_EQ(1u, Occurrences(Log(), u"Message: 100 %s %n\r\n"));
}

TEST_F(LogTest, APatternOf64UnitsIsTooLong) {
    const std::string text(61, 'a');
    device().Set("locale.shortdate", "'" + text + "'");
    Note(u"x");
    EXPECT_EQ(0u, Log().find(u"I - " + Text(61, u'a') + u", 4:33:10 GMT"));
    Put(kLog, "");
    device().Set("locale.shortdate", "'" + text + "a'");
    device().Set("locale.time", "'" + text + "a'");
    Note(u"x");
    EXPECT_EQ(0u, Log().find(u"I - 16 November 2026, 4:33:10 GMT"));
}

TEST_F(LogTest, WithoutTheLocalesPatternTheDateIsSpelledOut) {
    device().Fault("GetLocaleInfoW", 1, 2, ERROR_INVALID_FLAGS);
    Note(u"x");
    EXPECT_EQ(0u, Log().find(u"I - 16 November 2026, 4:33:10 GMT - "));
}

}  // namespace
}  // namespace tolvenar
