// Files of a profile folder, in and out, and the files of a dump.
#include "simulator/files/file_profile.h"

#include "simulator/files/sha256.h"
#include "simulator/host/host_files.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

class FileProfileTest : public DeviceTest {
protected:
    std::wstring Profile() { return folder() + L"\\profile"; }
    void PutHost(const std::wstring& path, const std::string& bytes) {
        const std::wstring file = Profile() + path;
        sim::host::MakeFolder(file.substr(0, file.rfind(L'\\')));
        ASSERT_TRUE(sim::host::WriteWhole(file, bytes));
    }
};

TEST_F(FileProfileTest, AProfilesFilesAndCardAreImported) {
    PutHost(L"\\files\\Windows\\rom.dll", "rom");
    PutHost(L"\\files\\My Documents\\a.txt", "text");
    PutHost(L"\\card\\dir\\b.txt", "card");
    PutHost(L"\\files.json",
            R"({"\\Windows\\rom.dll": {"attributes": 8263, "modified": 126227808000000000}})");
    sim::host::MakeFolder(Profile() + L"\\files\\Empty");
    sim::files::ImportFiles(device().sim(), Profile());
    EXPECT_EQ("text", device().FileBytes(L"\\My Documents\\a.txt"));
    EXPECT_EQ("card", device().FileBytes(L"\\Storage Card\\dir\\b.txt"));
    EXPECT_EQ(0x2047u, device().Info(L"\\Windows\\rom.dll").attributes);
    EXPECT_EQ(126227808000000000ull, device().Info(L"\\Windows\\rom.dll").modified);
    EXPECT_TRUE(device().Info(L"\\Empty").is_folder);
}

TEST_F(FileProfileTest, WhatIsExportedIsImportedTheSame) {
    device().PutFile(L"\\Größe\\a.txt", "text");
    device().SetAttributes(L"\\Größe\\a.txt", 0x3);
    device().Touch(L"\\Größe\\a.txt", 126227808000000000ull);
    device().PutFile(L"\\Storage Card\\b.txt", "card");
    device().MakeFolder(L"\\Empty");
    device().SetAttributes(L"\\Empty", 0x12);
    const nlohmann::json before = sim::files::DumpFiles(device().sim());
    sim::files::ExportFiles(device().sim(), Profile());
    const std::wstring other = folder() + L"\\other";
    sim::host::MakeFolder(other);
    sim::Device copy(other);
    sim::files::ImportFiles(copy, Profile());
    nlohmann::json after = sim::files::DumpFiles(copy);
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        after[i]["oid"] = before[i]["oid"];
    }
    EXPECT_EQ(before.dump(1), after.dump(1));
}

TEST_F(FileProfileTest, ADumpTellsFilesByPath) {
    device().Set("oid.next", "100");
    device().PutFile(L"\\b.txt", "abc");
    device().Touch(L"\\b.txt", 126227808000000000ull);
    device().MakeFolder(L"\\a");
    EXPECT_EQ(
        R"([{"attributes":272,"oid":0,"path":"\\Storage Card"},)"
        R"({"attributes":16,"oid":101,"path":"\\a"},)"
        R"({"attributes":32,"modified":126227808000000000,"oid":100,"path":"\\b.txt",)"
        R"("sha256":"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad","size":3}])",
        sim::files::DumpFiles(device().sim()).dump());
}

TEST_F(FileProfileTest, Sha256OfKnownTexts) {
    EXPECT_EQ("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855",
              sim::files::Sha256(""));
    EXPECT_EQ("248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1",
              sim::files::Sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"));
    EXPECT_EQ("cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0",
              sim::files::Sha256(std::string(1000000, 'a')));
}

}  // namespace
}  // namespace tests
