// Backups and restores on devices whose registry answers otherwise.
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

class RegistryVariantsTest : public RestoreEngineTest {};

// However it is listed, it comes back as the value without a name.
TEST_F(RegistryVariantsTest, TheValueWithoutANameComesBack) {
    for (const char* variant : {"empty", "listed", "default"}) {
        SCOPED_TRACE(variant);
        device().Set("registry.unnamed", variant);
        const std::wstring key = L"Key " + std::to_wstring(variant[0]);
        SetValue(HKEY_CURRENT_USER, key, L"", REG_SZ, "before");
        ASSERT_EQ(Done(), Backup());
        const std::uint32_t state = HighestStateNumber(storage_.journal.get());
        EXPECT_EQ(0u, backup_.failed);
        SetValue(HKEY_CURRENT_USER, key, L"", REG_SZ, "after");
        EXPECT_EQ(Done(), Restore(state));
        EXPECT_EQ("1:before", Value(HKEY_CURRENT_USER, key, L""));
        EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(state));
        // Under another name the device would have it and the state not.
        ::RegDeleteKeyW(HKEY_CURRENT_USER, key.c_str());
    }
}

TEST_F(RegistryVariantsTest, AValueOfTheNameDefaultIsItself) {
    device().Set("registry.unnamed", "listed");
    SetValue(HKEY_CURRENT_USER, L"Key", L"Default", REG_SZ, "named");
    ASSERT_EQ(Done(), Backup(1));
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Key");
    EXPECT_EQ(Done(), Restore(1));
    device().Set("registry.unnamed", "empty");
    EXPECT_EQ("1:named", Value(HKEY_CURRENT_USER, L"Key", L"Default"));
}

TEST_F(RegistryVariantsTest, NewKeysGoWhereOneWithSubkeysIsRefused) {
    ASSERT_EQ(Done(ResultCode::kSuccess), Backup(1));
    device().Set("registry.delete.key", "refused");
    SetValue(HKEY_CURRENT_USER, L"New\\A\\B\\C", L"v", REG_DWORD, Word(1));
    SetValue(HKEY_CURRENT_USER, L"New\\D", L"v", REG_DWORD, Word(1));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"New"));
}

TEST_F(RegistryVariantsTest, AKeyThatAnotherProgramHasOpenIsTold) {
    ASSERT_EQ(Done(), Backup(1));
    SetValue(HKEY_CURRENT_USER, L"Open", L"v", REG_DWORD, Word(1));
    SetValue(HKEY_CURRENT_USER, L"New", L"v", REG_DWORD, Word(1));
    device().Command("reg-lock HKCU\\Open");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, L"Open"));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"New"));
    EXPECT_TRUE(LogHas("E DoRestore: Not restored, write-protected or in use: HKCU\\Open"));
}

TEST_F(RegistryVariantsTest, AValueThatTheDeviceRefusesIsToldAndTheRestComesBack) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"Large", REG_BINARY, Bytes(5000, 'l'));
    SetValue(HKEY_CURRENT_USER, L"Key", L"Small", REG_BINARY, "small");
    ASSERT_EQ(Done(), Backup(1));
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Key");
    device().Set("registry.value.limit", "4096");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_EQ("3:small", Value(HKEY_CURRENT_USER, L"Key", L"Small"));
    EXPECT_TRUE(LogHas("HKCU\\Key\\Large"));
}

}  // namespace
}  // namespace tolvenar
