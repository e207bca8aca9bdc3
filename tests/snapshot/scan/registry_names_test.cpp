// Names as long as the registry allows.
#include "snapshot/scan/registry_scanner.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class RegistryNamesTest : public EngineTest {};

// A key's name may have 255 units.
TEST_F(RegistryNamesTest, ASubkeyWithTheLongestNameComesBackWithItsValue) {
    const std::wstring longest(255, L'k');
    SetValue(HKEY_CURRENT_USER, longest, L"v", REG_SZ, "data");
    ASSERT_EQ(Done(), Backup());
    ASSERT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_CURRENT_USER, longest.c_str()));
    ASSERT_FALSE(KeyExists(HKEY_CURRENT_USER, longest));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("1:data", Value(HKEY_CURRENT_USER, longest, L"v"));
}

// One whose path does not fit a block is passed over, and what comes behind it is met.
TEST_F(RegistryNamesTest, ASubkeyBelowThatDoesNotFitDoesNotEndTheWalk) {
    const std::wstring parent = L"T\\P";
    SetValue(HKEY_CURRENT_USER, parent + L"\\" + std::wstring(255, L'a'), L"v", REG_SZ, "");
    SetValue(HKEY_CURRENT_USER, parent + L"\\b", L"v", REG_SZ, "data");
    ASSERT_EQ(Done(), Backup());
    ASSERT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_CURRENT_USER, (parent + L"\\b").c_str()));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("1:data", Value(HKEY_CURRENT_USER, parent + L"\\b", L"v"));
}

}  // namespace
}  // namespace tolvenar
