// What the program tells in message boxes and reminders, as the user reads it.
#pragma once

#include <ostream>
#include <string>

namespace tests {

// Styles of message boxes, with the bit that brings them to the front.
enum : unsigned {
    kPlainBox = 0x10000,
    kErrorBox = 0x10010,
    kQuestionBox = 0x10024,  // with Yes and No
    kWarningBox = 0x10030,
    kInformationBox = 0x10040,
    kWarnedQuestionBox = 0x10134,  // with Yes and No, which is the default
};

struct Box {
    std::string text;
    unsigned style;
    std::string caption = "Tolvenar";
};
inline bool operator==(const Box& a, const Box& b) {
    return a.text == b.text && a.style == b.style && a.caption == b.caption;
}
inline void PrintTo(const Box& box, std::ostream* out) {
    *out << "'" << box.text << "' under '" << box.caption << "' in style " << box.style;
}

inline const Box kNothingToBackUp = {"Difference not found. There is nothing to Backup.",
                                     kInformationBox};
inline const Box kNothingToRestore = {"Difference not found. There is nothing to Restore.",
                                      kInformationBox};
inline const Box kStorageIsEmpty = {"Storage is empty. There is nothing to Restore.",
                                    kInformationBox};
inline const Box kJournalUnread = {"Journal read Fail.", kErrorBox};
// With the journal's path.
inline Box UnreadableJournal(const std::string& path) {
    return {
        "Journal read Fail.\n" + path +
            "\nAnother program may hold this file, or it is damaged. Please free it, or move it to "
            "another folder, and start Tolvenar again.",
        kErrorBox};
}
inline const Box kNotStarted = {"Can't start action. Try again.", kWarningBox};
inline const Box kDriverIsObsolete = {
    "Restore Fail. Probably your Storage Card Driver is obsolete.", kWarningBox};
inline const Box kNotInstalled = {
    "Tolvenar installation is not detected on the device, restore Tolvenar first please.",
    kWarningBox};
inline const Box kMayOldStorageGo = {
    "Not enough disk space to backup. Old Storage may be deleted to free disk "
    "space.\r\nContinue?",
    kQuestionBox};
inline const Box kWriteProtected = {"The storage is write-protected.", kErrorBox};
inline const Box kStorageIsFull = {
    "The storage file is full and takes no more states. Its states can be restored as before.\n"
    "Please choose a new storage file.",
    kErrorBox};
inline const Box kStatesAreMissing = {
    "The storage file holds data, but its list of states is empty or missing. A first backup that "
    "was ended looks the same.\nThe data stay in the file; new states are added behind them.",
    kWarningBox};
inline const Box kStorageIsDamaged = {
    "Restore Fail. The storage is damaged: some items were left as they are. The log names them.",
    kWarningBox};
inline const Box kOlderListInUse = {
    "The older list of states is in use now. Please choose the state to restore.", kInformationBox};
inline const Box kHeaderUnread = {"Storage header was not created.", kPlainBox};
inline const Box kOtherDevice = {"Storage file is not compatible with your device.", kPlainBox};
inline const Box kOtherVersion = {
    "This Storage File is not compatible with the Tolvenar version,\nplease use earlier Tolvenar "
    "version.",
    kPlainBox};
inline const Box kNameTooLong = {
    "The name of this storage file, or of its folder, is too long. Please choose a shorter one.",
    kPlainBox};
inline const Box kNameForbidden = {
    "The name of a storage file can have none of these characters: < > : / * ? | and quotation "
    "marks.",
    kPlainBox};
inline const Box kNameEmpty = {"Please type a name before the dot.", kPlainBox};
inline Box TooLittleMemory(const std::string& figure) {
    return {"Not enough memory to start operation. You need to free at least the " + figure +
                " Mb of the device memory.",
            kErrorBox};
}

inline const std::string kBackupReminder =
    "Please close all application but Tolvenar\nto continue the Backing up\n\nARE YOU SURE?";
inline const std::string kRestoreReminder =
    "Please close all applications but Tolvenar\nto continue the Restoring\n\nARE YOU SURE?";
inline const std::string kRestoredReminder =
    "Data successfully restored.\nPlease reboot your Windows CE to complete the Restoring.";

}  // namespace tests
