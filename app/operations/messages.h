// Message boxes: all have the program's caption and come to the front.
#pragma once

#include "platform/win32.h"

#include <cstdint>

#include "platform/resource_text.h"
#include "storage/format/storage_header.h"
#include "storage/format/storage_names.h"
#include "storage/operations/restore_result.h"

namespace tolvenar {

constexpr std::size_t kMessageUnits = kResourceTextUnits + 24;  // a text with its figures
// A number as "%u" takes it; one that is too large becomes the largest.
unsigned CappedNumber(std::uint64_t number);

// `style`: icon and buttons. Returns the button.
int ShowMessage(HWND owner, const wchar_t* text, UINT style);

// The same with a text of the string table.
int ShowOwnMessage(HWND owner, UINT text, UINT style);

// What a report needs beside the result itself.
struct ReportContext {
    HWND owner;
    bool automatic;           // no message at all
    bool is_first_pass;       // a full card stays silent: the old storage may be given up for it
    std::uint64_t amount;     // bytes that the card must have free
    std::uint32_t available;  // bytes of memory that were free
    bool storage_is_full = false;  // not the card lacks room
};
// Tells the user of a backup's result. True when it counts as success.
bool ReportBackup(ResultCode result, const ReportContext& context);

// The same for an unattended restore; one that found nothing to do counts as success.
bool ReportRestore(HWND owner, const RestoreResult& result);

// The same for one that was asked for in the dialog. Items that could not be restored are shown in
// the tree instead, after a message when the storage is damaged; what could not be started or
// compared says nothing (docs/oddities.md, 23).
void ReportInteractiveRestore(HWND owner, const RestoreResult& result);

// Why a storage file could not be opened, without an owner; some results say nothing.
void TellWhyNotOpened(OpenStorageResult result);

// The journal of the chosen storage cannot be opened, without an owner.
void TellOfUnreadableJournal(HINSTANCE instance, const StorageNames& names);

// The message of too little memory before a restore and at the start; its figure is fixed
// (docs/oddities.md, 22).
void ShowMemoryMessage(HWND owner);

// The storage file holds data of which its journal says nothing: its states cannot be listed.
void TellOfMissingStates();

// Backup, differences and help need the installation.
void ShowInstallationMissing(HWND owner);

// The request found no operation thread.
void ShowNotStarted(HWND owner);

}  // namespace tolvenar
