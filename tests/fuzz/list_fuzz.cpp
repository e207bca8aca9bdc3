// Records as a damaged journal may hold them, replayed and compared; the plain walk must agree.
#include "snapshot/compare/difference.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/native/recording_log.h"
#include "tests/support/plain_walk.h"

using namespace tolvenar;

namespace {

plain::List Copy(const ObjectList& list) {
    const std::vector<KeyedRecord> walk = Walk(list);
    return {walk.begin(), walk.end()};
}

void ExpectSameLog(const plain::Reference& reference) {
    Require(reference.log.size() == LogLines().size());
    for (std::size_t i = 0; i < reference.log.size(); ++i) {
        Require(reference.log[i] == LogLines()[i].substr(2));
    }
    ClearLog();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzSource info(data, size);
    plain::Reference reference{info, {}};
    const auto all = LoadRecords(data, size);
    const plain::List plain_all = Copy(*all);
    std::unique_ptr<ObjectList> states[2] = {ObjectList::CreateList(), ObjectList::CreateList()};
    plain::List plain_states[2];
    ClearLog();
    for (std::uint32_t i = 0; i < 2; ++i) {
        // The plain walk looks at every state from the least on, so only low ones are affordable.
        const std::uint32_t state = i + (size > 1 ? data[1] % 8u : 0u);
        Require(BuildStateList(*states[i], *all, state, info));
        plain::BuildStateList(plain_states[i], plain_all, state, reference);
        Require(Copy(*states[i]) == plain_states[i]);
        ExpectSameLog(reference);
        reference.log.clear();
    }
    const auto diff = ObjectList::CreateList();
    plain::List plain_diff;
    Require(CmpLists(states[0].get(), states[1].get(), *diff, info));
    plain::CmpLists(plain_states[0], plain_states[1], plain_diff, reference);
    Require(Copy(*diff) == plain_diff);
    ExpectSameLog(reference);
    return 0;
}
