// A damaged difference list and damaged blocks under both pruning tables.
#include "snapshot/compare/prune.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/native/recording_log.h"

using namespace tolvenar;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzSource info(data, size);
    const auto diff = LoadRecords(data, size);
    const std::size_t before = diff->CountRecords();
    PruneDifferences(*diff, kBackupPruning, info);
    PruneDifferences(*diff, kRestorePruning, info);
    std::size_t left = 0;
    for ([[maybe_unused]] const ObjectList::Node& node : *diff) {
        ++left;
    }
    Require(left == diff->CountRecords() && left <= before);
    ClearLog();
    return 0;
}
