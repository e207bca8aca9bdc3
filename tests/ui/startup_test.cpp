// What the interactive start makes of the storage that the settings name.
#include "platform/win32.h"

#include "tests/ui/storage_ui_test.h"

namespace {

class StartupTest : public tests::StorageUiTest {
protected:
    void TearDown() override {
        EXPECT_EQ("[]", device().Faults());
        StorageUiTest::TearDown();
    }
    // The program comes up without a word, and without a storage.
    void ExpectSilentStart() {
        Open();
        EXPECT_EQ("Storage file", SelectedTab());
        ExpectNoneOpen();
        EXPECT_EQ(0u, BoxCount());
    }
};

TEST_F(StartupTest, AnUnreadableHeaderSaysNothing) {
    device().PutFile(tests::kStorageFile, "short");
    ExpectSilentStart();
    EXPECT_EQ("short", device().FileBytes(tests::kStorageFile));
}

TEST_F(StartupTest, AHeldStorageFileSaysNothing) {
    const std::string storage = device().FileBytes(tests::kStorageFile);
    const auto lock = device().Lock(tests::kStorageFile, "write");
    ExpectSilentStart();
    EXPECT_EQ(storage, device().FileBytes(tests::kStorageFile));
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
    device().PutFile(tests::kJournalFile + L"_1", device().FileBytes(tests::kJournalFile));
    device().Remove(tests::kJournalFile);
    Open();
    ShowTab("Restore");
    EXPECT_EQ((std::vector<std::string>{"State 2", "State 1"}), Items(1014));
    EXPECT_FALSE(device().Exists(tests::kJournalFile + L"_1"));
}

// Whoever brings a storage of another device may choose their own after the message.
TEST_F(StartupTest, AfterTheMessageAnotherStorageCanBeChosen) {
    std::string storage = device().FileBytes(tests::kStorageFile);
    storage[200] = 1;  // the processor
    device().PutFile(tests::kStorageFile, storage);
    StartProgram();
    ExpectBox(tests::kPlainBox, "Storage file is not compatible with your device.");
    EXPECT_TRUE(Eventually([&] { return Sees(tests::kBrowse); }));
    ExpectNoneOpen();
    ChooseFile("Other.jrn");
    EXPECT_TRUE(NameBecomes("Other"));
    EXPECT_EQ(storage, device().FileBytes(tests::kStorageFile));
}

TEST_F(StartupTest, TheStatesAreLoadedUnderThePopup) {
    HoldCall("CreateFileW", "Backup.jrn, 3221225472, 1");
    StartProgram();
    // There are no steps to count in all.
    EXPECT_TRUE(Eventually([&] { return Shows("Loading List") && !Sees(1027); }));
    EXPECT_TRUE(Sees(1025));
    LetGo();
    EXPECT_TRUE(Eventually([&] { return Sees(1018) && !Shows("Loading List"); }));
}

}  // namespace
