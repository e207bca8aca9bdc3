// Choosing storage files in the dialog: the steps that several tests take, and files to choose.
#pragma once

#include "tests/ui/ui_test.h"

namespace tests {

// The open dialog and its controls.
inline const std::string kOpenTitle = "Choose backup file";
inline const std::string kDescriptionTitle = "Storage description";
enum : int {
    kOpenFolder = 0x440,
    kOpenList = 0x460,
    kOpenFilter = 0x470,
    kOpenReadOnly = 0x410,
    kOpenName = 0x480,
    kStorageName = 1019,
    kStorageFolderLabel = 1121,
    kStorageFolder = 1122,
    kStorageDescription = 1026,
    kDescriptionText = 1014,
    kBrowse = 1012,
};

// Beside the storage that an installed program uses lies a second one, "Other", with a state and a
// description of its own.
class StorageUiTest : public UiTest {
protected:
    // Two states in the first storage, one in the second, which is as the device is.
    void SetUp() override;

    // Opens the program with its Storage file page.
    void OpenPage();
    // Presses Browse and waits for the open dialog.
    void Browse();
    // Types a name, or a path, into the open dialog and presses OK.
    void ChooseFile(const std::string& name);
    // The same for a name that does not exist yet: the system asks whether it shall be made.
    void ChooseNew(const std::string& name);
    // Waits for the dialog that asks for a description and answers it.
    void AnswerDescription(int button = kOk);
    // The page shows that name and the choosing is over.
    bool NameBecomes(const std::string& text);
    // The page shows that no storage is open.
    void ExpectNoneOpen();
    // The page shows the first storage and the settings name it.
    void ExpectFirstOpen();
    // A held backup that has something to store.
    void StartHeldBackupOfNote();

    std::string Setting(const std::string& name);
    void SetSetting(const std::string& name, const std::string& text);
    void DeleteSetting(const std::string& name);

private:
    void MakeStorages();

    int backups_ = 0;
};

// A file of the device that all states hold, and what it is in the second storage.
inline const std::wstring kNote = L"\\My Documents\\a.txt";
inline const std::string kOtherText = "of the other storage";

// Files of the second storage.
inline const std::wstring kOtherStorage = L"\\Storage Card\\Tolvenar\\Other.sav";
inline const std::wstring kOtherJournal = L"\\Storage Card\\Tolvenar\\Other.jrn";
inline const std::string kCardFolder = "\\Storage Card\\Tolvenar\\";

// The bytes of a storage of this device without a state, made by hand; with 16-bit text as its
// description.
std::string EmptyStorage(const std::u16string& description = u"");

}  // namespace tests
