#include "tests/ui/stored_states.h"

#include "difftree/window/opened_differences.h"
#include "simulator/store/utf8.h"
#include "snapshot/engine/difference_engine.h"
#include "storage/opened/journal.h"
#include "storage/opened/storage_file.h"
#include "storage/operations/backup_writer.h"
#include "tests/support/fake_tree.h"

namespace tests {
namespace {

using namespace tolvenar;

constexpr char16_t kStoragePath[] = u"\\Storage Card\\Tolvenar\\Backup";

std::string Narrow(const std::u16string& text) {
    return sim::Utf8(std::wstring(text.begin(), text.end()));
}

void AddLines(const FakeItem& item, std::size_t depth, std::vector<TreeLine>& lines) {
    lines.push_back({depth, Narrow(item.text), item.is_bold,
                     StyleOf(kDefaultStyles, item.record->flags).colour});
    for (const FakeItem* child : item.children) {
        AddLines(*child, depth + 1, lines);
    }
}

}  // namespace

StoredStates::StoredStates(TestDevice& device) {
    device.MakeFolder(L"\\Storage Card\\Tolvenar");
    OpenStorageResult result{};
    const bool made = MakeStorageNames(kStoragePath, storage_.names) &&
                      CreateStorage(kStoragePath, nullptr) != nullptr &&
                      OpenStorage(storage_.names.sav, storage_, result) &&
                      OpenJournal(storage_, nullptr);
    EXPECT_TRUE(made);
}

StoredStates::~StoredStates() { CloseStorage(storage_); }

void StoredStates::BackUp(const std::string& description) {
    const std::u16string text(description.begin(), description.end());
    BackupResult result;
    const std::uint32_t number = NextStateNumber(storage_.journal.get());
    EXPECT_TRUE(DoBackup(engine_, number, text.c_str(), false, result));
    EXPECT_EQ(ResultCode::kSuccess, result.code);
}

std::vector<TreeLine> StoredStates::Tree(unsigned older, unsigned newer, bool advanced_view) {
    storage_.difference.reset();
    EXPECT_EQ(older == 0 ? 0 : 1, older == 0 ? 0 : FindDifferenceEx(engine_, older, newer));
    OpenedDifferences differences(engine_);
    TreeBuild build;
    build.advanced_view = advanced_view;
    const std::string caption =
        "Differences from State " + std::to_string(older) + " to State " + std::to_string(newer);
    const std::u16string root(caption.begin(), caption.end());
    build.root_caption = older != 0 ? root.c_str() : nullptr;
    FakeTree tree;
    EXPECT_EQ(1, BuildDifferenceTree(tree, EnglishTexts(), differences.enumerator(), build));
    std::vector<TreeLine> lines;
    AddLines(*tree.root(), 0, lines);
    return lines;
}

}  // namespace tests
