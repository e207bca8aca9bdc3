// Choosing storage files in the dialog: the steps that several tests take, and files to choose.
#pragma once

#include "tests/support/ui_test.h"

namespace tests {

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
    void AnswerDescription(int button = IDOK);
    // The page shows that name and the choosing is over.
    bool NameBecomes(const std::string& text);
    // The Backup page comes up for a storage that was made; this page shows that name then.
    bool IsCreatedAs(const std::string& text);
    // The page shows that no storage is open.
    void ExpectNoneOpen();
    // The page shows the first storage and the settings name it.
    void ExpectFirstOpen();
    // A held backup that has something to store.
    void StartHeldBackupOfNote();

private:
    void MakeStorages();

    int backups_ = 0;
};

// What kNote, which all states hold, is in the second storage.
inline const std::string kOtherText = "of the other storage";

// Files of the second storage.
inline const std::wstring kOtherStorage = L"\\Storage Card\\Tolvenar\\Other.sav";
inline const std::wstring kOtherJournal = L"\\Storage Card\\Tolvenar\\Other.jrn";
inline const std::string kCardFolder = "\\Storage Card\\Tolvenar\\";

// The bytes of a storage of this device without a state, made by hand; with 16-bit text as its
// description.
std::string EmptyStorage(const std::u16string& description = u"");

}  // namespace tests
