// The Storage file page, and what the others do when another storage is open, or none.
#include "simulator/host/window_thread.h"
#include "tests/ui/storage_ui_test.h"

namespace tests {
namespace {

constexpr LONG kReadOnlyStyle = 0x0800;
constexpr unsigned kLimitMs = 10000;

const std::string kBrowseEffect = "Browse opens another storage file or makes a new one.";
const std::string kLostByReset =
    "In the device's own memory, not on a card: a hard reset takes it.";
const std::string kProtectedPair = "Write-protected: states can be restored, none can be added.";
const std::string kFixedFolder =
    "Without an installation both files (.sav and .jrn) must lie in this folder:";

class StoragePageTest : public StorageUiTest {
protected:
    void SetUp() override {
        StorageUiTest::SetUp();
        SetDword("Reminders", 2);
    }
    bool IsReadOnly(int id) {
        return (::GetWindowLongW(Handle(id), GWL_STYLE) & kReadOnlyStyle) != 0;
    }
    void ChooseOther() {
        ChooseFile("Other.jrn");
        ASSERT_TRUE(NameBecomes("Other"));
    }
};

// A single blank for a storage without a description: an empty field means that none is open.
TEST_F(StoragePageTest, ShowsNameFolderAndDescriptionOfTheOpenStorage) {
    OpenPage();
    ExpectFirstOpen();
    EXPECT_TRUE(IsReadOnly(IDC_STORAGE_NAME));
    EXPECT_TRUE(IsReadOnly(IDC_STORAGE_DESCRIPTION));
    Ask("trace on");
    ChooseOther();
    EXPECT_EQ(1u, Calls("SetWindowTextW", ", Loading List"));  // the popup's
    EXPECT_EQ("The other one", Text(IDC_STORAGE_DESCRIPTION));
    EXPECT_EQ(kCardFolder, Text(IDC_STORAGE_FOLDER));
    EXPECT_EQ("Other", SettingText("StorageFile"));
    EXPECT_EQ(0u, BoxCount());
}

TEST_F(StoragePageTest, WithoutSettingsAllIsEmptyAndSoIsTheOpenDialog) {
    DeleteSetting("StorageFile");
    Open();
    EXPECT_EQ("Storage file", SelectedTab());
    ExpectNoneOpen();
    Browse();
    EXPECT_SOON_EQ("", Text(kOpenName));
    EXPECT_SOON_EQ("\\", Text(kOpenFolder));
    Press(IDCANCEL);
    ExpectNoneOpen();
}

TEST_F(StoragePageTest, AStorageOnTheCardHasNothingToWarnOf) {
    OpenPage();
    EXPECT_EQ(kBrowseEffect, Text(IDC_STORAGE_NOTE));
    EXPECT_EQ("", Text(IDC_STORAGE_SECOND_NOTE));
}

TEST_F(StoragePageTest, AStorageInTheDevicesMemoryReadsThatAHardResetTakesIt) {
    device().PutFile(L"\\My Documents\\Mine.sav", EmptyStorage());
    device().PutFile(L"\\My Documents\\Mine.jrn", "");
    OpenPage();
    ChooseFile("\\My Documents\\Mine.jrn");
    ASSERT_TRUE(NameBecomes("Mine"));
    EXPECT_SOON_EQ(kLostByReset, Text(IDC_STORAGE_NOTE));
    EXPECT_EQ(kBrowseEffect, Text(IDC_STORAGE_SECOND_NOTE));
    EXPECT_EQ(0u, BoxCount());
    ChooseFile(kCardFolder + "Other.jrn");
    EXPECT_SOON_EQ(kBrowseEffect, Text(IDC_STORAGE_NOTE));
}

TEST_F(StoragePageTest, AWriteProtectedPairReadsThatItIs) {
    for (const std::wstring& file : {kOtherStorage, kOtherJournal}) {
        device().SetAttributes(file, FILE_ATTRIBUTE_READONLY);
        OpenPage();
        ChooseOther();
        EXPECT_SOON_EQ(kProtectedPair, Text(IDC_STORAGE_NOTE));
        Keys("ctrl+q");
        ExpectEnd();
        device().SetAttributes(file, FILE_ATTRIBUTE_NORMAL);
    }
}

TEST_F(StoragePageTest, OnABareDeviceItNamesTheFolderThatWorks) {
    DeleteSetting("StoragePath");
    DeleteSetting("StorageFile");
    Open();
    EXPECT_EQ(kFixedFolder, Text(IDC_STORAGE_NOTE));
    EXPECT_EQ("\\Program Files\\Tolvenar\\Storage\\", Text(IDC_STORAGE_SECOND_NOTE));
    // The folder of one that is open stands above.
    device().PutFile(L"\\Program Files\\Tolvenar\\Storage\\Home.sav", EmptyStorage());
    device().PutFile(L"\\Program Files\\Tolvenar\\Storage\\Home.jrn", "");
    ChooseFile("\\Program Files\\Tolvenar\\Storage\\Home.jrn");
    ASSERT_TRUE(NameBecomes("Home"));
    EXPECT_SOON_EQ(kLostByReset, Text(IDC_STORAGE_SECOND_NOTE));
    EXPECT_EQ(kFixedFolder, Text(IDC_STORAGE_NOTE));
}

// The list keeps copies of its own of the old storage's records, which are freed.
TEST_F(StoragePageTest, StatesAreThoseOfTheNewStorageAndARestoreTakesThem) {
    device().PutFile(kNote, "meanwhile");
    OpenOn("Restore");
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(IDC_STATES));
    Select(IDC_STATES, "State 1");
    ShowTab("Storage file");
    ChooseOther();
    ShowTab("Restore");
    EXPECT_EQ((Texts{"State 1"}), Items(IDC_STATES));
    EXPECT_EQ(0, Selected(IDC_STATES));
    EXPECT_EQ(0u, Text(IDC_STATE_TIME).find("11/16/26"));
    PressForReminder(IDC_RESTORE);
    EXPECT_EQ(kOtherText, device().FileBytes(kNote));
}

// They must never be applied by "+" and "--".
TEST_F(StoragePageTest, DifferencesOfTheOldStorageAreForgotten) {
    Open();
    ShowDifferences();
    ShowTab("Storage file");
    ChooseOther();
    ShowTab("Advanced Restore");
    EXPECT_EQ("", Text(IDC_DIFFERENCES_CAPTION));
    PressAndExpect(IDC_TAKE_BACK_CHANGES, kNothingToRestore);
    EXPECT_EQ(kOtherText, device().FileBytes(kNote));
}

TEST_F(StoragePageTest, ABackupGoesIntoTheNewStorageAndLeavesTheOldOneAlone) {
    device().PutFile(kNote, "meanwhile");
    const std::string storage = device().FileBytes(kStorageFile);
    const std::string journal = device().FileBytes(kJournalFile);
    OpenPage();
    ChooseOther();
    ShowTab("Backup");
    Press(IDC_BACKUP);
    EXPECT_SOON(Sees(IDC_STATES) && !IsBusy());
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(IDC_STATES));
    EXPECT_EQ(storage, device().FileBytes(kStorageFile));
    EXPECT_EQ(journal, device().FileBytes(kJournalFile));
}

TEST_F(StoragePageTest, AJournalThatCannotBeReadLeavesNoStorageOpen) {
    OpenOn("Restore");
    ShowTab("Storage file");
    // Shared reading: the journal itself is read, not only tried.
    device().Fault("CreateFileW", 1, 2, 5, "Other.jrn, 3221225472, 1");
    ChooseFile("Other.jrn");
    ExpectNoneOpen();
    EXPECT_EQ(0u, BoxCount());
    EXPECT_EQ("Other", SettingText("StorageFile"));
    ShowTab("Restore");
    EXPECT_TRUE(Items(IDC_STATES).empty());
    EXPECT_EQ("", Text(IDC_STATE_TIME));
    // A button tries again.
    PressAndExpect(IDC_RESTORE, UnreadableJournal("\\Storage Card\\Tolvenar\\Other.jrn"));
    ExpectTab("Storage file");
    ShowTab("Advanced Restore");
    ::PostMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK),
                   reinterpret_cast<LPARAM>(Handle(IDC_STATES)));
    EXPECT_SOON_EQ(Texts{"State 1"}, Items(IDC_STATES));  // once it can be read it is opened
    ShowTab("Storage file");
    EXPECT_EQ("The other one", Text(IDC_STORAGE_DESCRIPTION));
}

// Whether the question came before the operation or during it.
TEST_F(StoragePageTest, DuringAnOperationNoStorageIsChosen) {
    OpenPage();
    const HWND button = Handle(IDC_BROWSE);
    StartHeldBackupOfNote();
    EXPECT_TRUE(sim::host::AnswerTime(::GetParent(button), kLimitMs, WM_COMMAND,
                                      MAKEWPARAM(IDC_BROWSE, BN_CLICKED),
                                      reinterpret_cast<LPARAM>(button)));
    LetGoAndRest();
    ExpectTab("Restore");
    EXPECT_FALSE(Shows(kOpenTitle));

    ShowTab("Storage file");
    Browse();
    Type(kOpenName, "Other.jrn");
    const HWND dialog = ::GetParent(Handle(kOpenName));
    StartHeldBackupOfNote();
    ::PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    EXPECT_SOON(!::IsWindow(dialog));
    LetGoAndRest();
    EXPECT_EQ("Backup", SettingText("StorageFile"));
    EXPECT_EQ(0u, Calls("CreateFileW", "Other"));
    EXPECT_EQ((Numbers{1, 2, 3, 4}), States());
}

}  // namespace
}  // namespace tests
