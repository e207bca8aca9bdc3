// A device with an empty storage on its card, backups of it and restores from it.
#pragma once

#include "storage/opened/journal.h"
#include "storage/opened/storage_file.h"
#include "storage/operations/backup_writer.h"
#include "storage/operations/restore_engine.h"
#include "tests/support/restore_fixture.h"

namespace tolvenar {

constexpr wchar_t kSettings[] = L"Software\\Kestrin2\\Tolvenar";

class RestoreEngineTest : public RestoreFixture {
protected:
    void SetUp() override {
        ASSERT_NE(nullptr, CreateStorage(storage_.names.path, nullptr));
        ASSERT_TRUE(OpenJournal(storage_, nullptr));
    }
    ResultCode Backup(std::uint32_t state) {
        ResultCode code{};
        std::uint32_t needed = 0;
        const bool ok = DoBackup(engine_, state, u"", false, code, needed);
        EXPECT_TRUE(ok || code != ResultCode::kSuccess);
        return code;
    }
    bool RestoreState(std::uint32_t state) { return DoRestore(engine_, state, code_); }
    bool RestoreAdvanced(bool invert) { return DoAdvancedRestore(engine_, invert, code_); }
    void ExpectNoLists() {
        EXPECT_EQ(nullptr, storage_.older);
        EXPECT_EQ(nullptr, storage_.newer);
        EXPECT_EQ(nullptr, storage_.difference);
    }
    void ExpectOnlyTheDifferenceList() {
        EXPECT_EQ(nullptr, storage_.older);
        EXPECT_EQ(nullptr, storage_.newer);
        EXPECT_NE(nullptr, storage_.difference);
    }
    ResultCode code_{};
};

}  // namespace tolvenar
