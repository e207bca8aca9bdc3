// A device with an empty storage on its card, backups of it and restores from it.
#pragma once

#include "tests/support/contents.h"
#include "tests/support/restore_fixture.h"

namespace tolvenar {

class RestoreEngineTest : public RestoreFixture {
protected:
    void SetUp() override {
        RestoreFixture::SetUp();
        ASSERT_TRUE(Make());
    }
    void BackUpWith(const std::wstring& path, const Bytes& contents) {
        device().PutFile(path, contents);
        ASSERT_EQ(Done(), Backup(1));
    }
    // "\\b.txt" comes back, "\\a.txt" cannot.
    void RestoreTwoFilesOfWhichOneIsReadOnly() {
        device().PutFile(L"\\a.txt", "stored");
        BackUpWith(L"\\b.txt", "stored");
        device().PutFile(L"\\a.txt", "changed since");
        device().Remove(L"\\b.txt");
        device().SetAttributes(L"\\a.txt", FILE_ATTRIBUTE_READONLY);
        EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    }
    bool LogHas(const std::string& part) {
        for (const std::string& line : LogLines()) {
            if (line.find(part) != std::string::npos) {
                return true;
            }
        }
        return false;
    }
    tests::Contents Now() { return tests::ContentsOf(device().sim()); }
};

}  // namespace tolvenar
