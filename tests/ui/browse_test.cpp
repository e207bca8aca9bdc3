// Choosing a storage file: what the open dialog is given, and what each choice comes to.
#include "platform/win32.h"

#include "tests/ui/storage_ui_test.h"

namespace {

using Texts = std::vector<std::string>;

constexpr char kNoText[] = "";
constexpr char kUnreadable[] = "Storage header was not created.";
constexpr char kOtherDevice[] = "Storage file is not compatible with your device.";
constexpr char kOtherVersion[] =
    "This Storage File is not compatible with the Tolvenar version,\nplease use earlier Tolvenar "
    "version.";

// A device's storage with one byte of its head changed.
std::string Changed(std::size_t at, char byte) {
    std::string storage = tests::EmptyStorage();
    storage[at] = byte;
    return storage;
}
std::string OtherProcessors() { return Changed(200, 1); }

class BrowseTest : public tests::StorageUiTest {
protected:
    void TearDown() override {
        EXPECT_EQ("[]", device().Faults());
        StorageUiTest::TearDown();
    }
    static std::wstring OnCard(const std::string& name) {
        const std::string path = tests::kCardFolder + name;
        return {path.begin(), path.end()};
    }
    void Put(const std::string& name, const std::string& bytes) {
        device().PutFile(OnCard(name), bytes);
    }
    std::string Bytes(const std::string& name) {
        return device().Exists(OnCard(name)) ? device().FileBytes(OnCard(name)) : "no file";
    }
    bool DialogIsFree() {
        return Eventually([&] { return !Shows(tests::kOpenTitle); }) && DialogIsDone();
    }
    // Handles, windows, threads and blocks of memory that the program has now.
    std::vector<int> Held() {
        const nlohmann::json counters = Ask("counters");
        for (const nlohmann::json& process : counters["processes"]) {
            if (process["name"] == tests::kProgram && process["windows"] != 0) {
                return {process["handles"], process["windows"], process["threads"],
                        process["heapBlocks"]};
            }
        }
        return {};
    }
    // The first storage is still open.
    void ExpectRefused(const char* text) {
        if (text != kNoText) {
            ExpectBox(tests::kPlainBox, text);
        }
        ASSERT_TRUE(DialogIsFree());
        ExpectFirstOpen();
        EXPECT_FALSE(Shows(tests::kDescriptionTitle));
    }
};

TEST_F(BrowseTest, TheOpenDialogBeginsWithTheStorageInUseAndCancellingItChangesNothing) {
    OpenPage();
    Browse();
    EXPECT_EQ("Backup", Text(tests::kOpenName));
    EXPECT_EQ("\\Storage Card\\Tolvenar", Text(tests::kOpenFolder));
    EXPECT_EQ((Texts{"Backup Files (*.jrn)", "All files (*.*)"}), Items(tests::kOpenFilter));
    EXPECT_EQ(0, Selected(tests::kOpenFilter));
    EXPECT_EQ((Texts{"Backup.jrn", "Other.jrn"}), Items(tests::kOpenList));
    EXPECT_FALSE(Sees(tests::kOpenReadOnly));
    EXPECT_FALSE(Top("Tolvenar")->at("enabled"));
    Select(tests::kOpenFilter, "All files (*.*)");
    EXPECT_TRUE(Eventually([&] {
        return Items(tests::kOpenList) ==
               Texts({"Backup.jrn", "Backup.sav", "Other.jrn", "Other.sav"});
    }));
    Type(tests::kOpenName, "Other.jrn");
    Press(tests::kCancel);
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
        const char* text;
    } kRows[] = {
        {"Foreign", OtherProcessors(), kOtherDevice},
        {"Later", Changed(216, 5), kOtherDevice},  // the format's revision
        {"Early", Changed(216, 0), kOtherVersion},
        {"Short", "no storage", kUnreadable},
    };
    OpenPage();
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.name);
        const std::string stem = row.name;
        Put(stem + ".sav", row.storage);
        Put(stem + ".jrn", "");
        ChooseFile(stem + ".jrn");
        ExpectRefused(row.text);
        EXPECT_EQ(row.storage, Bytes(stem + ".sav"));
        EXPECT_EQ("", Bytes(stem + ".jrn"));
    }
}

// A new storage file would empty the journal; a lost journal's storage file is judged like any.
TEST_F(BrowseTest, HalfOfAPairIsNeverOverwritten) {
    const std::string journal = Bytes("Other.jrn");
    device().Remove(tests::kOtherStorage);
    Put("Foreign.sav", OtherProcessors());
    OpenPage();
    ChooseFile("Other.jrn");
    ExpectRefused(kUnreadable);
    ChooseNew("Other.new");
    ExpectRefused(kUnreadable);
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
        const auto lock = device().Lock(tests::kOtherJournal);
        ChooseFile("Other.jrn");
        ExpectRefused(kNoText);
    }
    {
        Put("Held.sav", tests::EmptyStorage());
        const auto lock = device().Lock(OnCard("Held.sav"));
        ChooseNew("Held");
        ExpectRefused(kNoText);
    }
    Browse();
    Type(tests::kOpenName, "Other.jrn");
    device().Fault("HeapAlloc", 2, 1, 8);  // the header comes first, then the lists
    Press(tests::kOk);
    ExpectRefused(kNoText);
    EXPECT_EQ("[]", device().Faults());
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
    ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
    EXPECT_TRUE(Top("Tolvenar")->at("enabled"));
    Press(tests::kBrowse);
    Pause(200);
    EXPECT_FALSE(Shows(tests::kOpenTitle));
    EXPECT_EQ(1u, Calls("GetOpenFileNameW"));
    ExpectBox(tests::kPlainBox, kUnreadable);
    ChooseFile("Short.jrn");
    ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
    ::PostMessageW(::FindWindowW(L"Dialog", L"Tolvenar"), WM_COMMAND, 40004, 0);
    ExpectEnd();
}

// With the journal of an interrupted save where there is one, else with an empty one.
TEST_F(BrowseTest, AStorageFileWithoutAJournalIsOpenedAsItStands) {
    const std::string storage = Bytes("Other.sav");
    const std::string journal = Bytes("Other.jrn");
    device().Remove(tests::kOtherJournal);
    Put("Other.jrn_1", journal);
    Put("Lone.sav", storage);
    OpenPage();
    ChooseNew("Other");
    EXPECT_TRUE(NameBecomes("Other"));
    EXPECT_TRUE(Eventually([&] { return Bytes("Other.jrn") == journal; }));
    EXPECT_EQ("no file", Bytes("Other.jrn_1"));
    EXPECT_TRUE(DialogIsFree());
    ChooseNew("Lone");
    EXPECT_TRUE(NameBecomes("Lone"));
    EXPECT_EQ("The other one", Text(tests::kStorageDescription));
    EXPECT_TRUE(Eventually([&] { return Bytes("Lone.jrn").empty(); }));
    EXPECT_TRUE(DialogIsFree());
    // A name of which only the stem is that of a storage means this storage.
    ChooseNew("Other.new");
    EXPECT_TRUE(NameBecomes("Other"));
    EXPECT_EQ(storage, Bytes("Other.sav"));
    EXPECT_EQ(storage, Bytes("Lone.sav"));
    EXPECT_FALSE(Shows(tests::kDescriptionTitle));
    ShowTab("Restore");
    EXPECT_EQ((Texts{"State 1"}), Items(1014));
}

TEST_F(BrowseTest, AnExistingStorageKeepsEveryByteAndTheProgramNothingOfTheOldOne) {
    const std::string storage = Bytes("Other.sav");
    const std::string journal = Bytes("Other.jrn");
    OpenPage();
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
    EXPECT_EQ(0u, Calls("WriteFile"));
}

}  // namespace
