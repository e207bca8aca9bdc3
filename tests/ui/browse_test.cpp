// Choosing a storage file: what the open dialog is given, and what each choice comes to.
#include "tests/ui/storage_ui_test.h"

namespace tests {
namespace {

// A device's storage with one byte of its head changed.
std::string Changed(std::size_t at, char byte) {
    std::string storage = EmptyStorage();
    storage[at] = byte;
    return storage;
}
std::string OtherProcessors() { return Changed(200, 1); }

class BrowseTest : public StorageUiTest {
protected:
    static std::wstring OnCard(const std::string& name) {
        const std::string path = kCardFolder + name;
        return {path.begin(), path.end()};
    }
    void Put(const std::string& name, const std::string& bytes) {
        device().PutFile(OnCard(name), bytes);
    }
    std::string Bytes(const std::string& name) {
        return device().Exists(OnCard(name)) ? device().FileBytes(OnCard(name)) : "no file";
    }
    bool DialogIsFree() {
        return Eventually([&] { return !Shows(kOpenTitle); }) && DialogIsDone();
    }
    // Handles, windows, threads and blocks of memory that the program has now.
    Numbers Held() {
        const Json counters = ProgramCounters();
        return {counters["handles"], counters["windows"], counters["threads"],
                counters["heapBlocks"]};
    }
    // The first storage is still open.
    void ExpectRefused() {
        ASSERT_TRUE(DialogIsFree());
        ExpectFirstOpen();
        EXPECT_FALSE(Shows(kDescriptionTitle));
    }
    void ExpectRefused(const Box& box) {
        ExpectBox(box);
        ExpectRefused();
    }
};

TEST_F(BrowseTest, TheOpenDialogBeginsWithTheStorageInUseAndCancellingItChangesNothing) {
    OpenPage();
    Browse();
    EXPECT_SOON_EQ("Backup", Text(kOpenName));
    EXPECT_SOON_EQ("\\Storage Card\\Tolvenar", Text(kOpenFolder));
    EXPECT_SOON_EQ((Texts{"Backup Files (*.jrn)", "All files (*.*)"}), Items(kOpenFilter));
    EXPECT_SOON_EQ(0, Selected(kOpenFilter));
    EXPECT_SOON_EQ((Texts{"Backup.jrn", "Other.jrn"}), Items(kOpenList));
    EXPECT_FALSE(Sees(kOpenReadOnly));
    EXPECT_SOON(IsDisabled(kMainTitle));
    Select(kOpenFilter, "All files (*.*)");
    EXPECT_SOON_EQ(
        (Texts{"Backup.jrn", "Backup.sav", "Other.jrn", "Other.sav", "tolvenar_log.txt"}),
        Items(kOpenList));
    Type(kOpenName, "Other.jrn");
    Press(IDCANCEL);
    ASSERT_TRUE(DialogIsFree());
    ExpectFirstOpen();
    EXPECT_EQ(0u, Calls("RegSetValueExW", "Storage"));
    EXPECT_EQ(0u, Calls("CreateFileW", "Other"));
    // Name, its room, folder, filter; no read-only box, no change of folder, a question for new
    // names; extension.
    EXPECT_EQ(1u, Calls("GetOpenFileNameW",
                        "Choose backup file, Backup, 256, \\Storage Card\\Tolvenar, 1, 8204, jrn"));
}

TEST_F(BrowseTest, AForeignOrDamagedStorageIsToldAndThePreviousOneStays) {
    const struct {
        const char* name;
        std::string storage;
        Box box;
    } kRows[] = {
        {"Foreign", OtherProcessors(), kOtherDevice},
        {"Later", Changed(216, 5), kOtherDevice},  // the format's revision
        {"Early", Changed(216, 0), kOtherVersion},
        {"Short", "no storage", kHeaderUnread},
    };
    OpenPage();
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.name);
        const std::string stem = row.name;
        Put(stem + ".sav", row.storage);
        Put(stem + ".jrn", "");
        ChooseFile(stem + ".jrn");
        ExpectRefused(row.box);
        EXPECT_EQ(row.storage, Bytes(stem + ".sav"));
        EXPECT_EQ("", Bytes(stem + ".jrn"));
    }
}

// A new storage file would empty the journal; a lost journal's storage file is judged like any.
TEST_F(BrowseTest, HalfOfAPairIsNeverOverwritten) {
    const std::string journal = Bytes("Other.jrn");
    device().Remove(kOtherStorage);
    Put("Foreign.sav", OtherProcessors());
    OpenPage();
    ChooseFile("Other.jrn");
    ExpectRefused(kHeaderUnread);
    ChooseNew("Other.new");
    ExpectRefused(kHeaderUnread);
    EXPECT_EQ("no file", Bytes("Other.sav"));
    EXPECT_EQ(journal, Bytes("Other.jrn"));
    ChooseNew("Foreign");
    ExpectRefused(kOtherDevice);
    EXPECT_EQ(OtherProcessors(), Bytes("Foreign.sav"));
    EXPECT_EQ("no file", Bytes("Foreign.jrn"));
}

TEST_F(BrowseTest, OtherFailuresSayNothingAndThePreviousOneStays) {
    OpenPage();
    {
        const auto lock = device().Lock(kOtherJournal);
        ChooseFile("Other.jrn");
        ExpectRefused();
    }
    {
        Put("Held.sav", EmptyStorage());
        const auto lock = device().Lock(OnCard("Held.sav"));
        ChooseNew("Held");
        ExpectRefused();
    }
    Browse();
    Type(kOpenName, "Other.jrn");
    device().Fault("HeapAlloc", 2, 1, 8);  // the header comes first, then the lists
    Press(IDOK);
    ExpectRefused();
    EXPECT_EQ(0u, BoxCount());
    ChooseFile("Other.jrn");
    EXPECT_TRUE(NameBecomes("Other"));
}

// The messages have no owner, so dialog and button stay enabled beneath them.
TEST_F(BrowseTest, UnderAMessageNoSecondFileCanBeChosenButTheProgramCloses) {
    Put("Short.sav", "no storage");
    Put("Short.jrn", "");
    OpenPage();
    ChooseFile("Short.jrn");
    ASSERT_SOON(BoxIsUp());
    EXPECT_SOON(IsEnabled(kMainTitle));
    Press(IDC_BROWSE);
    Pause(200);
    EXPECT_FALSE(Shows(kOpenTitle));
    EXPECT_EQ(1u, Calls("GetOpenFileNameW"));
    ExpectBox(kHeaderUnread);
    ChooseFile("Short.jrn");
    ASSERT_SOON(BoxIsUp());
    ::PostMessageW(MainDialog(), WM_COMMAND, IDM_CLOSE, 0);
    ExpectEnd();
}

// With the journal of an interrupted save where there is one, else with an empty one.
TEST_F(BrowseTest, AStorageFileWithoutAJournalIsOpenedAsItStands) {
    const std::string storage = Bytes("Other.sav");
    const std::string journal = Bytes("Other.jrn");
    device().Remove(kOtherJournal);
    Put("Other.jrn_1", journal);
    Put("Lone.sav", storage);
    OpenPage();
    ChooseNew("Other");
    EXPECT_TRUE(NameBecomes("Other"));
    EXPECT_SOON_EQ(journal, Bytes("Other.jrn"));
    EXPECT_EQ("no file", Bytes("Other.jrn_1"));
    EXPECT_TRUE(DialogIsFree());
    ChooseNew("Lone");
    ExpectBox(kStatesAreMissing);
    EXPECT_TRUE(NameBecomes("Lone"));
    EXPECT_EQ("The other one", Text(IDC_STORAGE_DESCRIPTION));
    EXPECT_SOON(Bytes("Lone.jrn").empty());
    EXPECT_TRUE(DialogIsFree());
    // A name of which only the stem is that of a storage means this storage.
    ChooseNew("Other.new");
    EXPECT_TRUE(NameBecomes("Other"));
    EXPECT_EQ(storage, Bytes("Other.sav"));
    EXPECT_EQ(storage, Bytes("Lone.sav"));
    EXPECT_FALSE(Shows(kDescriptionTitle));
    ShowTab("Restore");
    EXPECT_EQ((Texts{"State 1"}), Items(IDC_STATES));
}

TEST_F(BrowseTest, AnExistingStorageKeepsEveryByteAndTheProgramNothingOfTheOldOne) {
    const std::string storage = Bytes("Other.sav");
    const std::string journal = Bytes("Other.jrn");
    OpenPage();
    const auto writes = Calls("WriteFile");
    ChooseFile("Other.jrn");
    ASSERT_TRUE(NameBecomes("Other"));
    ChooseFile("Backup.jrn");
    ASSERT_TRUE(NameBecomes("Backup"));
    const auto held = Held();
    ChooseFile("\\Storage Card\\Tolvenar\\Other.sav");  // the storage file itself will do
    ASSERT_TRUE(NameBecomes("Other"));
    ChooseFile("Backup.jrn");
    ASSERT_TRUE(NameBecomes("Backup"));
    EXPECT_EQ(held, Held());
    EXPECT_EQ(storage, Bytes("Other.sav"));
    EXPECT_EQ(journal, Bytes("Other.jrn"));
    EXPECT_EQ(writes, Calls("WriteFile"));
}

}  // namespace
}  // namespace tests
