// The Storage file page, and what the others do when another storage is open, or none.
#include "platform/win32.h"

#include "simulator/host/window_thread.h"
#include "tests/ui/storage_ui_test.h"

namespace {

using Texts = std::vector<std::string>;

constexpr int kStates = 1014;
constexpr LONG kReadOnlyStyle = 0x0800;
constexpr unsigned kLimitMs = 10000;

class StoragePageTest : public tests::StorageUiTest {
protected:
    void SetUp() override {
        StorageUiTest::SetUp();
        SetDword("Reminders", 2);
    }
    HWND Handle(int id) {
        return reinterpret_cast<HWND>(AnyControl(id)->at("handle").get<std::uintptr_t>());
    }
    bool IsReadOnly(int id) {
        return (::GetWindowLongW(Handle(id), GWL_STYLE) & kReadOnlyStyle) != 0;
    }
    void ChooseOther() {
        ChooseFile("Other.jrn");
        ASSERT_TRUE(NameBecomes("Other"));
    }
    bool PageBecomes(const std::string& tab) {
        return Eventually([&] { return SelectedTab() == tab; });
    }
};

// A single blank for a storage without a description: an empty field means that none is open.
TEST_F(StoragePageTest, ShowsNameFolderAndDescriptionOfTheOpenStorage) {
    OpenPage();
    ExpectFirstOpen();
    EXPECT_TRUE(IsReadOnly(tests::kStorageName));
    EXPECT_TRUE(IsReadOnly(tests::kStorageDescription));
    Ask("trace on");
    ChooseOther();
    EXPECT_EQ(1u, Calls("SetWindowTextW", ", Loading List"));  // the popup's
    EXPECT_EQ("The other one", Text(tests::kStorageDescription));
    EXPECT_EQ(tests::kCardFolder, Text(tests::kStorageFolder));
    EXPECT_EQ("Other", Setting("StorageFile"));
    EXPECT_EQ(0u, BoxCount());
}

TEST_F(StoragePageTest, WithoutSettingsAllIsEmptyAndSoIsTheOpenDialog) {
    DeleteSetting("StorageFile");
    Open();
    EXPECT_EQ("Storage file", SelectedTab());
    ExpectNoneOpen();
    Browse();
    EXPECT_EQ("", Text(tests::kOpenName));
    EXPECT_EQ("\\", Text(tests::kOpenFolder));
    Press(tests::kCancel);
    ExpectNoneOpen();
}

// The list keeps copies of its own of the old storage's records, which are freed.
TEST_F(StoragePageTest, StatesAreThoseOfTheNewStorageAndARestoreTakesThem) {
    device().PutFile(tests::kNote, "meanwhile");
    Open();
    ShowTab("Restore");
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(kStates));
    Select(kStates, "State 1");
    ShowTab("Storage file");
    ChooseOther();
    ShowTab("Restore");
    EXPECT_EQ((Texts{"State 1"}), Items(kStates));
    EXPECT_EQ(0, Selected(kStates));
    EXPECT_EQ(0u, Text(1015).find("11/16/26"));
    Press(1002);
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    EXPECT_EQ(tests::kOtherText, device().FileBytes(tests::kNote));
}

// They must never be applied by "+" and "--".
TEST_F(StoragePageTest, DifferencesOfTheOldStorageAreForgotten) {
    Open();
    ShowTab("Advanced Restore");
    Keys("alt+s");
    Keys("enter");
    EXPECT_TRUE(Eventually([&] { return Text(1041) == "Differences from State 1 to State 2"; }));
    ShowTab("Storage file");
    ChooseOther();
    ShowTab("Advanced Restore");
    EXPECT_EQ("", Text(1041));
    Press(1038);
    ExpectBox(tests::kInformationBox, "Difference not found. There is nothing to Restore.");
    EXPECT_EQ(tests::kOtherText, device().FileBytes(tests::kNote));
}

TEST_F(StoragePageTest, ABackupGoesIntoTheNewStorageAndLeavesTheOldOneAlone) {
    device().PutFile(tests::kNote, "meanwhile");
    const std::string storage = device().FileBytes(tests::kStorageFile);
    const std::string journal = device().FileBytes(tests::kJournalFile);
    OpenPage();
    ChooseOther();
    ShowTab("Backup");
    Press(1001);
    EXPECT_TRUE(Eventually([&] { return Sees(kStates) && !IsBusy(); }));
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(kStates));
    EXPECT_EQ(storage, device().FileBytes(tests::kStorageFile));
    EXPECT_EQ(journal, device().FileBytes(tests::kJournalFile));
}

TEST_F(StoragePageTest, AJournalThatCannotBeReadLeavesNoStorageOpen) {
    Open();
    ShowTab("Restore");
    ShowTab("Storage file");
    // Shared reading: the journal itself is read, not only tried.
    device().Fault("CreateFileW", 1, 1, 5, "Other.jrn, 3221225472, 1");
    ChooseFile("Other.jrn");
    ExpectNoneOpen();
    EXPECT_EQ("[]", device().Faults());
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ("Other", Setting("StorageFile"));
    ShowTab("Restore");
    EXPECT_TRUE(Items(kStates).empty());
    EXPECT_EQ("", Text(1015));
    Press(1002);
    EXPECT_TRUE(PageBecomes("Storage file"));
    ShowTab("Advanced Restore");
    ::PostMessageW(::GetParent(Handle(kStates)), WM_COMMAND, MAKEWPARAM(kStates, LBN_DBLCLK),
                   reinterpret_cast<LPARAM>(Handle(kStates)));
    EXPECT_TRUE(PageBecomes("Storage file"));
    ChooseOther();  // once it can be read it is opened
    EXPECT_EQ("The other one", Text(tests::kStorageDescription));
}

// Whether the question came before the operation or during it.
TEST_F(StoragePageTest, DuringAnOperationNoStorageIsChosen) {
    OpenPage();
    const HWND button = Handle(tests::kBrowse);
    StartHeldBackupOfNote();
    EXPECT_TRUE(sim::host::AnswerTime(::GetParent(button), kLimitMs, WM_COMMAND,
                                      MAKEWPARAM(tests::kBrowse, BN_CLICKED),
                                      reinterpret_cast<LPARAM>(button)));
    LetGo();
    EXPECT_TRUE(BecomesIdle());
    EXPECT_TRUE(PageBecomes("Restore"));
    EXPECT_FALSE(Shows(tests::kOpenTitle));

    ShowTab("Storage file");
    Browse();
    Type(tests::kOpenName, "Other.jrn");
    const HWND dialog = ::GetParent(Handle(tests::kOpenName));
    StartHeldBackupOfNote();
    ::PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    EXPECT_TRUE(Eventually([&] { return !::IsWindow(dialog); }));
    LetGo();
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ("Backup", Setting("StorageFile"));
    EXPECT_EQ(0u, Calls("CreateFileW", "Other"));
    EXPECT_EQ((std::vector<int>{1, 2, 3, 4}), States());
}

}  // namespace
