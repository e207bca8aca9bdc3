// read_storage STEM OLDER NEWER: opens STEM.sav and STEM.jrn on this machine through the program's
// own rooms, rebuilds every state and prints the objects of each, then the tree of what differs
// between two.
#include <cstdlib>
#include <iostream>
#include <string>

#include "difftree/model/list_enumerator.h"
#include "snapshot/compare/difference.h"
#include "snapshot/compare/prune.h"
#include "snapshot/compare/states.h"
#include "storage/format/journal_records.h"
#include "storage/format/storage_reader.h"
#include "tests/support/fake_tree.h"
#include "tests/support/host_file.h"

namespace {

using namespace tolvenar;

// There is no device: what was never stored cannot be described.
class NoDevice final : public LiveObjects, public LiveContents {
public:
    bool GetOIDInfo(std::uint32_t, std::uint32_t, InfoBlock&) override { return false; }
    const RegistryObject* FindRegistryObject(std::uint32_t) override { return nullptr; }
    bool ReadTextProperty(const ObjectRecord&, const InfoBlock&, std::uint32_t,
                          TextBuilder&) override {
        return false;
    }
    bool ReadValueText(const ObjectRecord&, TextBuilder&) override { return false; }
};

std::string Narrow(std::u16string_view text) {
    std::string narrow;
    for (const char16_t unit : text) {
        narrow += unit < 0x80    ? std::string(1, static_cast<char>(unit))
                  : unit == 0xFF ? "!"
                  : unit == 0xB1 ? "~"
                                 : "?";
    }
    return narrow;
}

struct Storage {
    HostFile sav;
    HostFile journal_file;
    StorageReader reader{sav};
    NoDevice device;
    InfoSource info{reader, device};
    std::unique_ptr<ObjectList> journal = ObjectList::CreateList();

    explicit Storage(const std::string& stem)
        : sav((stem + ".sav").c_str()), journal_file((stem + ".jrn").c_str()) {}
    bool Load() {
        std::uint32_t taken = 0;
        return sav && journal_file && ReadJournalRecords(journal_file, *journal, nullptr, taken);
    }
    std::unique_ptr<ObjectList> State(std::uint32_t number) {
        auto list = ObjectList::CreateList();
        return BuildStateList(*list, *journal, number, info) ? std::move(list) : nullptr;
    }
};

bool PrintState(Storage& storage, std::uint32_t number) {
    const auto state = storage.State(number);
    if (state == nullptr) {
        return false;
    }
    std::cout << "State " << number << "\n";
    for (const ObjectList::Node& node : *state) {
        InfoBlock block;
        if (!storage.reader.GetInfoFromStorage(node.record->propOffset, block)) {
            return false;
        }
        std::cout << "  " << unsigned{static_cast<std::uint8_t>(node.record->type)} << " "
                  << Narrow(block.name()) << " " << block.head().data_bytes << "\n";
    }
    return true;
}

bool PrintTree(Storage& storage, std::uint32_t older, std::uint32_t newer) {
    const auto from = storage.State(older);
    const auto to = storage.State(newer);
    const auto differences = ObjectList::CreateList();
    if (from == nullptr || to == nullptr ||
        !CmpLists(from.get(), to.get(), *differences, storage.info)) {
        return false;
    }
    PruneDifferences(*differences, kBackupPruning, storage.info);
    const FailureTable no_failures;
    ListEnumerator enumerator(differences.get(), no_failures, &storage.reader, storage.device,
                              storage.device);
    FakeTree tree;
    TreeBuild build;
    build.advanced_view = true;
    if (BuildDifferenceTree(tree, EnglishTexts(), enumerator, build) != 1) {
        return false;
    }
    for (const std::u16string& line : tree.Lines()) {
        std::cout << Narrow(line) << "\n";
    }
    return true;
}

bool Print(const char* stem, std::uint32_t older, std::uint32_t newer) {
    Storage storage(stem);
    StorageHeader header{};
    if (!storage.Load() || !storage.reader.ReadHead(header)) {
        return false;
    }
    std::cout << Narrow(header.deviceName) << " " << header.processorType << "\n";
    for (std::uint32_t number = 1; number <= LastStoredState(storage.journal.get()); ++number) {
        if (!PrintState(storage, number)) {
            return false;
        }
    }
    return PrintTree(storage, older, newer);
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        std::cerr << "read_storage STEM OLDER NEWER\n";
        return 2;
    }
    const auto number = [&](int i) {
        return static_cast<std::uint32_t>(std::strtoul(arguments[i], nullptr, 10));
    };
    return Print(arguments[1], number(2), number(3)) ? 0 : 1;
}
