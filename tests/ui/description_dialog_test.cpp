// A name that does not exist yet becomes a new storage, with the description that the user gives.
#include <cstring>

#include "simulator/gate/gate.h"
#include "tests/ui/storage_ui_test.h"

namespace tests {
namespace {

const std::wstring kNew = L"\\Storage Card\\Tolvenar\\New";
constexpr std::size_t kDescriptionAt = 232;

class DescriptionDialogTest : public StorageUiTest {
protected:
    void ChooseNewName(const std::string& name) {
        ChooseNew(name);
        ASSERT_SOON(Shows(kDescriptionTitle) && Sees(IDC_DESCRIPTION_TEXT));
        EXPECT_TRUE(FocusComesTo(IDC_DESCRIPTION_TEXT));
    }
    std::string Storage(const std::wstring& ending = L"") {
        return device().FileBytes(kNew + ending + L".sav");
    }
    std::string Journal(const std::wstring& ending = L"") {
        return device().FileBytes(kNew + ending + L".jrn");
    }
    static std::uint32_t DescriptionBytes(const std::string& storage) {
        std::uint32_t bytes = 0;
        std::memcpy(&bytes, &storage.at(228), sizeof bytes);
        return bytes;
    }
    // The ASCII text behind the head.
    static std::string Description(const std::string& storage) {
        std::string text;
        for (std::size_t i = kDescriptionAt; i < storage.size(); i += 2) {
            text += storage[i];
        }
        return text;
    }
    void ExpectWithoutDescription(const std::wstring& ending) {
        EXPECT_TRUE(IsCreatedAs("New" + std::string(ending.begin(), ending.end())));
        ExpectOpenWithoutDescription(ending);
    }
    void ExpectOpenWithoutDescription(const std::wstring& ending) {
        EXPECT_EQ(" ", Text(IDC_STORAGE_DESCRIPTION));
        ASSERT_EQ(236u, Storage(ending).size());
        EXPECT_EQ(std::string(8, '\0'), Storage(ending).substr(228));
        EXPECT_EQ("", Journal(ending));
    }
    // The first storage is open, and nothing was left of the new one.
    void ExpectNothingMade() {
        EXPECT_TRUE(RulesAreUsedUp());
        ExpectFirstOpen();
        EXPECT_FALSE(Shows(kDescriptionTitle));
        EXPECT_FALSE(device().Exists(kNew + L".sav"));
        EXPECT_FALSE(device().Exists(kNew + L".jrn"));
    }
};

TEST_F(DescriptionDialogTest, OffersTheDevicesTextAndTakesWhatIsTypedBelowIt) {
    Ask("reg-set HKLM\\Ident OrigName REG_SZ \"My handheld\"");
    OpenPage();
    ChooseNewName("New");
    const std::string text = Text(IDC_DESCRIPTION_TEXT);
    EXPECT_EQ(0u, text.find("Device: My handheld, Processor:StrongARM(2577)\r\nWindows CE "
                            "v3.00\r\nStorage created at Monday, November 16, 2026, 9:"))
        << text;
    EXPECT_EQ(" AM\r\n----------\r\n", text.substr(text.size() - 17));
    EXPECT_SOON(IsDisabled(kMainTitle));
    const std::string edit = sim::Describe(static_cast<const void*>(Handle(IDC_DESCRIPTION_TEXT)));
    EXPECT_EQ(1u, Calls("SendMessageW", edit + ", 197, 199, "));       // EM_LIMITTEXT
    EXPECT_EQ(1u, Calls("SendMessageW", edit + ", 177, 1000, 1000"));  // EM_SETSEL
    for (const char* key : {"m", "enter", "n"}) {
        Keys(key);
    }
    EXPECT_SOON_EQ(text + "m\r\nn", Text(IDC_DESCRIPTION_TEXT));
    ExpectFocus("tab", IDOK);
    Keys("enter");
    EXPECT_TRUE(IsCreatedAs("New"));
    EXPECT_EQ(text + "m\r\nn", Text(IDC_STORAGE_DESCRIPTION));
    EXPECT_EQ(text + "m\r\nn", Description(Storage()));
}

TEST_F(DescriptionDialogTest, ANewNameBecomesAnEmptyStorageWithUpTo199Characters) {
    OpenPage();
    ChooseNewName("New");
    Type(IDC_DESCRIPTION_TEXT, "0123456789");
    AnswerDescription();
    EXPECT_TRUE(IsCreatedAs("New"));
    EXPECT_EQ("0123456789", Text(IDC_STORAGE_DESCRIPTION));
    EXPECT_EQ("New", SettingText("StorageFile"));
    EXPECT_EQ(252u, Storage().size());
    EXPECT_EQ(20u, DescriptionBytes(Storage()));
    EXPECT_EQ("0123456789", Description(Storage()));
    EXPECT_EQ("", Journal());
    EXPECT_EQ(0u, BoxCount());
    ShowTab("Restore");
    EXPECT_TRUE(Items(IDC_STATES).empty());

    ShowTab("Storage file");
    ChooseNewName("New2");
    Type(IDC_DESCRIPTION_TEXT, std::string(250, 'd'));
    AnswerDescription();
    EXPECT_TRUE(IsCreatedAs("New2"));
    EXPECT_EQ(398u, DescriptionBytes(Storage(L"2")));
    EXPECT_EQ(std::string(199, 'd'), Description(Storage(L"2")));
    EXPECT_EQ(std::string(199, 'd'), Text(IDC_STORAGE_DESCRIPTION));
}

TEST_F(DescriptionDialogTest, CancelEscapeAndAnEmptyTextMakeAStorageWithoutADescription) {
    OpenPage();
    ChooseNewName("New1");
    AnswerDescription(IDCANCEL);
    ExpectWithoutDescription(L"1");
    ChooseNewName("New2");
    Keys("esc");
    ExpectWithoutDescription(L"2");
    ChooseNewName("New3");
    Type(IDC_DESCRIPTION_TEXT, "");
    AnswerDescription();
    ExpectWithoutDescription(L"3");
    ChooseNewName("New4");
    Type(IDC_DESCRIPTION_TEXT, " ");
    AnswerDescription();
    EXPECT_TRUE(IsCreatedAs("New4"));
    EXPECT_EQ(" ", Description(Storage(L"4")));
}

TEST_F(DescriptionDialogTest, AStorageThatCannotBeMadeLeavesNothingBehind) {
    OpenPage();
    ChooseFile("New");
    ASSERT_SOON(BoxIsUp());
    Press(IDNO);
    EXPECT_SOON(!BoxIsUp());
    EXPECT_TRUE(Shows(kOpenTitle));
    Press(IDCANCEL);
    ExpectNothingMade();

    // The page shows anew what the settings name.
    SetText("StorageFile", "Else");
    device().Fault("CreateFileW", 1, 1, 112, "New.sav, 3221225472, 0, 2");
    ChooseNew("New");
    EXPECT_TRUE(NameBecomes("Else"));
    SetText("StorageFile", "Backup");
    device().Fault("CreateFileW", 1, 1, 112, "New.sav, 3221225472, 0, 2");
    ChooseNew("New");
    ExpectNothingMade();
    device().Fault("CreateFileW", 1, 1, 112, "New.jrn, 3221225472, 1");
    ChooseNewName("New");
    AnswerDescription();
    ExpectNothingMade();
    EXPECT_EQ(0u, BoxCount());

    {
        // What an interrupted save left would pass for the new storage's journal. It cannot be
        // moved aside, so that nothing is asked.
        device().PutFile(kNew + L".jrn_1", "old");
        const auto lock = device().Lock(kNew + L".jrn_1");
        ChooseNew("New");
        EXPECT_SOON(!Shows(kOpenTitle) && DialogIsDone());
        ExpectNothingMade();
    }
    device().Set("card.free", "0");
    ChooseNewName("New");
    AnswerDescription();
    ExpectBox(kHeaderUnread);
    ExpectNothingMade();
}

TEST_F(DescriptionDialogTest, ItSaysWhatCancelMeans) {
    OpenPage();
    ChooseNewName("New");
    EXPECT_EQ("Cancel makes a storage without one.", Text(IDC_DESCRIPTION_CANCEL_HINT));
    AnswerDescription(IDCANCEL);
    ExpectWithoutDescription(L"");
}

TEST_F(DescriptionDialogTest, ACardThatIsFullByThenTakesTheStorageWithoutTheDescription) {
    OpenPage();
    ChooseNewName("New");
    device().Set("card.free", "0");
    AnswerDescription();
    ExpectWithoutDescription(L"");
    EXPECT_EQ(0u, BoxCount());
}

// It would be told to be unreadable for ever otherwise.
TEST_F(DescriptionDialogTest, AProgramThatIsEndedUnderItLeavesAStorage) {
    OpenPage();
    ChooseNewName("New");
    Ask("kill all");
    ExpectEnd();
    ASSERT_EQ(236u, Storage().size());
    OpenPage();
    ChooseNew("New");
    EXPECT_TRUE(NameBecomes("New"));
    ExpectOpenWithoutDescription(L"");
    EXPECT_EQ(0u, BoxCount());
}

// The lists belong to the operation: the storage is made, but another one stays open.
TEST_F(DescriptionDialogTest, AnOperationUnderItLeavesTheNewStorageUnopened) {
    OpenPage();
    ChooseNewName("New");
    const HWND dialog = Dialog(L"Storage description");
    StartHeldBackupOfNote();
    ::PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    EXPECT_SOON(!::IsWindow(dialog) && device().Exists(kNew + L".jrn"));
    LetGoAndRest();
    EXPECT_EQ("Backup", SettingText("StorageFile"));
    EXPECT_EQ((Numbers{1, 2, 3}), States());
    EXPECT_EQ(1u, Calls("CreateFileW", "New.sav"));  // made, never opened
    EXPECT_EQ("", Journal());
}

// Another copy closes this one for its backup. The loops of dialogs end then with what looks like
// OK.
TEST_F(DescriptionDialogTest, ATakeOverUnderItIsCancel) {
    device().PutFile(kNote, "meanwhile");
    OpenPage();
    ChooseNewName("New");
    Type(IDC_DESCRIPTION_TEXT, "must not be kept");
    EXPECT_EQ(0, Run("AutoBackup: External"));
    ExpectEnd();
    EXPECT_EQ("Backup", SettingText("StorageFile"));
    EXPECT_EQ(236u, Storage().size());
    EXPECT_EQ("", Journal());
    EXPECT_EQ((Numbers{1, 2, 3}), States());
}

TEST_F(DescriptionDialogTest, ATakeOverUnderTheOpenDialogIsCancel) {
    device().PutFile(kNote, "meanwhile");
    OpenPage();
    Browse();
    Type(kOpenName, "Other.jrn");
    EXPECT_EQ(0, Run("AutoBackup: External"));
    ExpectEnd();
    EXPECT_EQ("Backup", SettingText("StorageFile"));
    for (const Call& call : Traced("CreateFileW")) {
        EXPECT_EQ('\\', call.arguments[0]) << "no path: " << call.arguments;
        EXPECT_FALSE(call.Has("Other"));
    }
    EXPECT_EQ((Numbers{1, 2, 3}), States());
}

}  // namespace
}  // namespace tests
