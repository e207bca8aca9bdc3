// States of a device made in the test's own process, as the program makes them, and what the tree
// of two of them must be.
#pragma once

#include <string>
#include <vector>

#include "storage/opened/engine.h"
#include "tests/support/program_test.h"

namespace tests {

// An item of a difference tree.
struct TreeLine {
    std::size_t depth;
    std::string text;
    bool is_bold;
    unsigned colour;  // of its caption
};

class StoredStates {
public:
    // Makes the storage that an installed program uses.
    explicit StoredStates(TestDevice& device);
    ~StoredStates();
    StoredStates(const StoredStates&) = delete;
    StoredStates& operator=(const StoredStates&) = delete;

    // The next state.
    void BackUp(const std::string& description = "");
    // The tree of what differs between two states; of nothing when both are 0.
    std::vector<TreeLine> Tree(unsigned older, unsigned newer, bool advanced_view);

private:
    class Silence final : public tolvenar::Progress {
        void ProgressBegin(std::size_t) override {}
        void ProgressStep(const char16_t*) override {}
    };

    tolvenar::OpenedStorage storage_{};
    tolvenar::DatabaseLayer databases_;
    tolvenar::ObjectInfo info_{storage_.registry_objects, databases_};
    Silence silence_;
    tolvenar::Engine engine_{storage_, databases_, info_, silence_};
};

}  // namespace tests
