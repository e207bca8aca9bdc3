// Where a chosen storage comes to lie: folders with dots, settings that refuse it, long names.
#include "tests/ui/storage_ui_test.h"

namespace tests {
namespace {

class ChosenLocationTest : public StorageUiTest {
protected:
    void ChooseNewWithoutDescription(const std::string& name) {
        ChooseNew(name);
        AnswerDescription(IDCANCEL);
    }
    void ExpectRefused(const Box& box) {
        ExpectBox(box);
        EXPECT_TRUE(DialogIsDone());
        ExpectFirstOpen();
        EXPECT_FALSE(Shows(kDescriptionTitle));
    }
    void ExpectNoneOpenFor(const std::string& stem) {
        EXPECT_SOON_EQ(stem, SettingText("StorageFile"));
        ExpectNoneOpen();
        EXPECT_EQ(0u, BoxCount());
    }
};

TEST_F(ChosenLocationTest, FolderAndStemAreKept) {
    device().PutFile(L"\\Storage Card\\Backups\\Home.sav", EmptyStorage(u"at home"));
    device().PutFile(L"\\Storage Card\\Backups\\Home.two.jrn", "");
    OpenPage();
    ChooseFile("\\Storage Card\\Backups\\Home.two.jrn");  // a stem ends at its first dot
    EXPECT_TRUE(NameBecomes("Home"));
    EXPECT_EQ("at home", Text(IDC_STORAGE_DESCRIPTION));
    EXPECT_EQ("Home", SettingText("StorageFile"));
    EXPECT_EQ("\\Storage Card\\Backups\\", SettingText("StoragePath"));
    EXPECT_EQ("\\Storage Card\\Backups\\", Text(IDC_STORAGE_FOLDER));
    ChooseNewWithoutDescription("\\Root");
    EXPECT_TRUE(IsCreatedAs("Root"));
    EXPECT_EQ("\\", SettingText("StoragePath"));
    EXPECT_EQ("\\", Text(IDC_STORAGE_FOLDER));
    EXPECT_EQ(236u, device().FileBytes(L"\\Root.sav").size());
}

// The first dot of the whole path ends the storage file's name, a folder's too (oddity 4).
TEST_F(ChosenLocationTest, ADotInAFolderCutsTheStorageFilesPath) {
    device().MakeFolder(L"\\Storage Card\\my.backup");
    OpenPage();
    ChooseNewWithoutDescription("\\Storage Card\\my.backup\\data");
    EXPECT_TRUE(IsCreatedAs("data"));
    EXPECT_EQ("\\Storage Card\\my.backup\\", SettingText("StoragePath"));
    EXPECT_EQ(236u, device().FileBytes(L"\\Storage Card\\my.sav").size());
    EXPECT_EQ("", device().FileBytes(L"\\Storage Card\\my.backup\\data.jrn"));
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\my.backup\\data.sav"));
    // Its neighbour shares the storage file and is opened as it stands.
    ChooseNew("\\Storage Card\\my.backup\\more");
    EXPECT_TRUE(NameBecomes("more"));
    EXPECT_FALSE(Shows(kDescriptionTitle));
    EXPECT_EQ(0u, BoxCount());
}

// The settings refuse the folder, so the name stands for a file beside the program. Header, states
// and names belong together.
TEST_F(ChosenLocationTest, ARefusedFolderOpensTheStorageThatTheSettingsNameOrNone) {
    DeleteSetting("StoragePath");
    const std::string storage = device().FileBytes(kOtherStorage);
    Open();
    ChooseFile("\\Storage Card\\Tolvenar\\Other.jrn");
    ExpectNoneOpenFor("Other");
    EXPECT_EQ("no value", SettingText("StoragePath"));
    EXPECT_EQ(storage, device().FileBytes(kOtherStorage));
    device().PutFile(L"\\Program Files\\Tolvenar\\Storage\\Other.sav",
                     EmptyStorage(u"beside the program"));
    ChooseFile("\\Storage Card\\Tolvenar\\Other.jrn");
    EXPECT_TRUE(NameBecomes("Other"));
    EXPECT_EQ("beside the program", Text(IDC_STORAGE_DESCRIPTION));
    EXPECT_EQ("\\Program Files\\Tolvenar\\Storage\\", Text(IDC_STORAGE_FOLDER));
    ShowTab("Restore");
    EXPECT_TRUE(Items(IDC_STATES).empty());
}

// Settings of more than 129 characters are written and not read back.
TEST_F(ChosenLocationTest, ANameOrFolderThatIsTooLongIsRefusedAndTheOpenStorageStays) {
    const std::wstring folder = L"\\Storage Card\\" + std::wstring(120, L'f');
    device().MakeFolder(folder);
    OpenPage();
    const std::string longest(129, 'n');
    ChooseNew(longest + "n");
    ExpectRefused(kNameTooLong);
    ChooseNew(std::string(folder.begin(), folder.end()) + "\\Home");
    ExpectRefused(kNameTooLong);
    ChooseNewWithoutDescription(longest);
    EXPECT_TRUE(IsCreatedAs(longest));
}

TEST_F(ChosenLocationTest, AnExistingPairOfATooLongNameIsRefusedBeforeTheOpenOneIsClosed) {
    const std::string stem(130, 'n');
    const std::wstring path = L"\\Storage Card\\Tolvenar\\" + std::wstring(130, L'n');
    device().PutFile(path + L".sav", EmptyStorage());
    device().PutFile(path + L".jrn", "");
    OpenPage();
    ChooseFile(stem + ".jrn");
    ExpectRefused(kNameTooLong);
    ShowTab("Restore");
    EXPECT_EQ((Texts{"State 2", "State 1"}), Items(IDC_STATES));
}

TEST_F(ChosenLocationTest, ANameOfForbiddenCharactersIsRefused) {
    OpenPage();
    for (const char* name : {"a<b", "a:b", "a/b", "a.b|c"}) {
        SCOPED_TRACE(name);
        ChooseNew(name);
        ExpectRefused(kNameForbidden);
    }
}

TEST_F(ChosenLocationTest, ANewNameThatIsEmptyBeforeItsExtensionIsRefused) {
    OpenPage();
    ChooseNew(".jrn");
    ExpectRefused(kNameEmpty);
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\Tolvenar\\.sav"));
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\Tolvenar\\.jrn"));
}

TEST_F(ChosenLocationTest, AnExistingPairOfAnEmptyNameIsOpened) {
    const std::wstring path = L"\\Storage Card\\Tolvenar\\";
    device().PutFile(path + L".sav", EmptyStorage(u"nameless"));
    device().PutFile(path + L".jrn", "");
    OpenPage();
    ChooseFile(".jrn");
    EXPECT_SOON_EQ("nameless", Text(IDC_STORAGE_DESCRIPTION));
    EXPECT_EQ("", SettingText("StorageFile"));
    ChooseFile("Backup.jrn");
    EXPECT_TRUE(NameBecomes("Backup"));
    device().Remove(path + L".jrn");  // its storage file alone is a storage, too
    ChooseNew(".jrn");
    EXPECT_SOON_EQ("nameless", Text(IDC_STORAGE_DESCRIPTION));
    EXPECT_EQ(0u, BoxCount());
}

// The platform's dialog refuses to open with a name that is none.
TEST_F(ChosenLocationTest, ASettingThatIsNoNameKeepsNobodyFromChoosing) {
    for (const char* value : {"a<b", "a:b", "sub/Home", "sub\\Home"}) {
        SCOPED_TRACE(value);
        SetText("StorageFile", value);
        OpenPage();
        ExpectNoneOpen();
        Browse();
        EXPECT_EQ("", Text(kOpenName));
        Type(kOpenName, kCardFolder + "Backup.jrn");
        Press(IDOK);
        ExpectFirstOpen();
        Keys("ctrl+q");
        ExpectEnd();
    }
}

}  // namespace
}  // namespace tests
