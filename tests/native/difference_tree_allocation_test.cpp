// Builds of the difference tree with an allocation and all later ones failing, for each.
#include <gtest/gtest.h>

#include "tests/native/failing_new.h"
#include "tests/support/fake_tree.h"

namespace tolvenar {
namespace {

std::vector<FakeObject> SomeObjects() {
    FakeObject directory{ObjectType::kRegistryValue, u"Software\\Apps\\Acme Notes\u00FFInstlDir"};
    directory.value = u"\\Notes";
    std::vector<FakeObject> objects = {
        directory,
        {ObjectType::kRegistryValue, u"Software\\Apps\\Acme Notes\u00FFInstl"},
        {ObjectType::kDatabase, u"Notes"},
        {ObjectType::kDatabaseRecord, u"Contacts Database"},
        {ObjectType::kRegistryKey, u"a\\b"}};
    for (int i = 0; i < 300; ++i) {
        objects.push_back(
            {ObjectType::kFile,
             u"\\My Documents\\" + std::u16string(1, static_cast<char16_t>(0x4E00 + i))});
    }
    return objects;
}

class DifferenceTreeAllocationTest : public testing::TestWithParam<bool> {
protected:
    ~DifferenceTreeAllocationTest() override { FailAllocationsFrom(0); }
};

TEST_P(DifferenceTreeAllocationTest, EveryBuildEndsWithWhatThereIs) {
    TreeBuild build;
    build.advanced_view = GetParam();
    std::size_t failures = 0;
    for (std::size_t n = 1;; ++n) {
        FakeTree tree;
        FakeEnumerator enumerator(SomeObjects());
        FailAllocationsFrom(n);
        const int result = BuildDifferenceTree(tree, EnglishTexts(), enumerator, build);
        const std::size_t counted = CountedAllocations();
        FailAllocationsFrom(0);
        if (counted < n) {
            EXPECT_EQ(1, result);
            break;
        }
        // A larger index is a matter of speed alone: only the first one is needed.
        failures += result == 0 ? 1 : 0;
    }
    EXPECT_LT(600u, failures);
}

INSTANTIATE_TEST_SUITE_P(Views, DifferenceTreeAllocationTest, testing::Bool());

}  // namespace
}  // namespace tolvenar
