// The application: every part that lives for the whole run, owned here once and handed on by
// reference.
#pragma once

#include "app/operations/progress_popup.h"
#include "app/operations/storage_stamp.h"
#include "app/operations/window_progress.h"
#include "app/rules/operation_gate.h"
#include "app/settings/settings.h"
#include "autobackup/power_status.h"
#include "autobackup/schedule_suspension.h"
#include "storage/opened/engine.h"
#include "storage/operations/restore_preview.h"

namespace tolvenar {

constexpr wchar_t kProgramName[] = L"Tolvenar";
constexpr std::size_t kLaunchReasonUnits = 260;

enum class StorageStatus {
    kOpen = 0,
    kNone = 3,  // no usable storage file: the pages offer to choose or create one
};

struct Application {
    explicit Application(HINSTANCE program_instance) : instance(program_instance) {}

    HINSTANCE instance;
    wchar_t launchReason[kLaunchReasonUnits] = L"";  // empty for an interactive start
    StorageStatus storageStatus = StorageStatus::kOpen;
    OperationGate gate;  // what is asked for and what runs
    // kDescriptionUnits of the operation thread while it waits for the description that the page
    // shows. No part of the message: any program may send that one with any address.
    char16_t* wanted_description = nullptr;
    // The message loop is told to end: whatever a modal loop answers from now on is no answer.
    volatile bool is_ending = false;
    // The program runs without its installation, from the card after a hard reset for example.
    bool installationMissing = false;

    HWND main_window = nullptr;       // hidden; owns shutdown
    HWND operation_window = nullptr;  // hidden; receives the operation requests
    HWND main_dialog = nullptr;

    OpenedStorage storage{};
    StorageSearch search;
    DatabaseLayer databases;
    ObjectInfo describer{storage.registry_objects, databases};
    ProgressWindows progress_windows{};
    WindowProgress progress{progress_windows};
    ProgressPopup popup{instance, progress_windows};
    Engine engine{storage, databases, describer, progress};
    RestorePreview preview{databases, progress};  // the main thread's while no operation runs

    Settings settings{};
    SavedSchedule schedule;
    PowerStatus power;
};

}  // namespace tolvenar
