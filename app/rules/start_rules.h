// What each wish of the user needs. Platform-free.
#pragma once

namespace tolvenar {

// What the user may ask for and be refused.
enum class Wish {
    kBackUp,
    kRestoreState,
    kPreviewRestore,
    kRestoreDifferences,
    kShowDifferences,
    kShowHelp,
};

enum class Refusal {
    kNone,
    kOccupied,        // nothing is said
    kNoStorage,       // a storage is to be chosen first
    kNoInstallation,  // the user is told
};

struct Situation {
    bool is_occupied;
    bool has_storage;
    bool is_installed;
};

// The first reason that stands against the wish.
Refusal Judge(Wish wish, const Situation& situation);

}  // namespace tolvenar
