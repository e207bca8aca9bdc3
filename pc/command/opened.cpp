#include "pc/command/opened.h"

namespace tolvenar::pc {

Opened OpenAddress(const std::string& text, Console& console) {
    const StorageAddress address = ParseAddress(text);
    Opened opened{std::make_unique<StoredPair>(FindPair(address.storage)), address.state};
    const StoredPair& pair = *opened.pair;
    if (pair.reads_temporary()) {
        console.Tell("the journal is read from \"" + pair.files().temporary +
                     "\": saving it was stopped");
    }
    if (!pair.list_is_sound()) {
        console.Tell(
            "the journal is damaged, or lacks a record, so what belongs to which state is not "
            "certain: "
            "\"tolvenar verify\" tells more");
    }
    return opened;
}

std::unique_ptr<StoredPair> OpenWhole(const std::string& address, Console& console) {
    Opened opened = OpenAddress(address, console);
    if (!opened.state.empty()) {
        throw Failure(ExitCode::kUsage,
                      "this command looks at all states: leave \"@" + opened.state + "\" away");
    }
    return std::move(opened.pair);
}

ExitCode ListVerdict(const StoredPair& pair) {
    return pair.list_is_sound() ? ExitCode::kDone : ExitCode::kDamaged;
}

}  // namespace tolvenar::pc
