// The input chooses what happens on a device and in restores to it: no new id changes a state.
#include "tests/fuzz/fuzz_source.h"
#include "tests/support/journal_series.h"

using namespace tolvenar;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    JournalSeries series([&input](std::uint32_t limit) { return input.Byte() % limit; });
    for (int restore = 0; restore < 4 && !input.empty(); ++restore) {
        Require(series.Restore());
    }
    return 0;
}
