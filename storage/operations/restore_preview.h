// What a restore of a state would do to the device, found out without a change to anything.
#pragma once

#include <cstdint>

#include "storage/opened/engine.h"

namespace tolvenar {

// What the user is told of it.
struct PreviewFigures {
    SavedCounts counts;            // objects that the restore adds, changes and deletes
    std::uint32_t left_alone = 0;  // objects that differ and that it must not touch
    bool is_damaged = false;       // some of them since the storage is damaged
    std::uint64_t written_bytes = 0;
    std::uint64_t missing_bytes = 0;  // what the device lacks for them
    std::uint32_t seconds = 0;        // that the restore takes, roughly
};

// Has lists and a registry-object table of its own: those of the open storage may be what the
// difference tree shows and its buttons act on.
class RestorePreview {
public:
    RestorePreview(DatabaseLayer& databases, Progress& progress);
    RestorePreview(const RestorePreview&) = delete;
    RestorePreview& operator=(const RestorePreview&) = delete;

    // Compares the device with a state of `opened`, whose journal and header it borrows meanwhile.
    // False, and no preview, when the two cannot be compared or the pair of files cannot be proved.
    // The log gets no line.
    bool Find(OpenedStorage& opened, std::uint32_t state_number);
    void Drop();

    // The state that was previewed; 0 when there is no preview.
    std::uint32_t state_number() const { return figures_.counts.state_number; }
    const PreviewFigures& figures() const { return figures_; }
    // Its difference list leads from the device to the state: what a restore writes back is marked
    // as added, what it deletes as deleted.
    Engine& engine() { return engine_; }

private:
    bool FindWithJournal(std::uint32_t state_number);
    bool Compare(std::uint32_t state_number);
    bool Plan();
    bool LookFromDevice();
    bool EnterOverwrittenFiles();

    OpenedStorage storage_{};
    ObjectInfo describer_;
    Engine engine_;
    PreviewFigures figures_;
};

}  // namespace tolvenar
