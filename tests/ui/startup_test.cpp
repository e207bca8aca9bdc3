// What the interactive start makes of the storage that the settings name.
#include "tests/ui/storage_ui_test.h"

namespace tests {
namespace {

class StartupTest : public StorageUiTest {
protected:
    // The program comes up without a word, and without a storage.
    void ExpectSilentStart() {
        Open();
        EXPECT_EQ("Storage file", SelectedTab());
        ExpectNoneOpen();
        EXPECT_EQ(0u, BoxCount());
    }
};

TEST_F(StartupTest, AnUnreadableHeaderSaysNothing) {
    device().PutFile(kStorageFile, "short");
    ExpectSilentStart();
    EXPECT_EQ("short", device().FileBytes(kStorageFile));
}

TEST_F(StartupTest, AHeldStorageFileSaysNothing) {
    const std::string storage = device().FileBytes(kStorageFile);
    const auto lock = device().Lock(kStorageFile, "write");
    ExpectSilentStart();
    EXPECT_EQ(storage, device().FileBytes(kStorageFile));
}

TEST_F(StartupTest, TooLittleMemorySaysNothing) {
    device().Fault("HeapAlloc", 3, 1, 8);  // the application, the header, then the lists
    ExpectSilentStart();
}

TEST_F(StartupTest, WithoutMemoryAtAllItEnds) {
    for (const char* arguments : {"", "AutoBackup: External"}) {
        device().Fault("HeapAlloc", 1, 1, 8);
        EXPECT_EQ(1, Run(arguments)) << arguments;
    }
}

TEST_F(StartupTest, AnInterruptedSavesJournalIsTaken) {
    device().PutFile(kJournalFile + L"_1", device().FileBytes(kJournalFile));
    device().Remove(kJournalFile);
    OpenOn("Restore");
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(IDC_STATES));
    EXPECT_FALSE(device().Exists(kJournalFile + L"_1"));
}

// Whoever brings a storage of another device may choose their own after the message.
TEST_F(StartupTest, AfterTheMessageAnotherStorageCanBeChosen) {
    std::string storage = device().FileBytes(kStorageFile);
    storage[200] = 1;  // the processor
    device().PutFile(kStorageFile, storage);
    StartProgram();
    ExpectBox(kOtherDevice);
    EXPECT_SOON(Sees(IDC_BROWSE));
    ExpectNoneOpen();
    ChooseFile("Other.jrn");
    EXPECT_TRUE(NameBecomes("Other"));
    EXPECT_EQ(storage, device().FileBytes(kStorageFile));
}

TEST_F(StartupTest, TheStatesAreLoadedUnderThePopup) {
    HoldCall("CreateFileW", "Backup.jrn, 3221225472, 1");
    StartProgram();
    ASSERT_TRUE(RulesAreUsedUp());
    // There are no steps to count in all.
    EXPECT_SOON(Shows("Loading List") && !Sees(IDC_TOTAL_BAR));
    EXPECT_TRUE(Sees(IDC_STEP_BAR));
    LetGo();
    EXPECT_SOON(Sees(IDC_NEW_DESCRIPTION) && !Shows("Loading List"));
}

}  // namespace
}  // namespace tests
