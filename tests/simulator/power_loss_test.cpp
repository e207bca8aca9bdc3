// A card that keeps only what was flushed, and what a loss of power leaves of the rest.
#include <functional>
#include <set>
#include <stdexcept>

#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

constexpr wchar_t kFile[] = L"\\Storage Card\\a.bin";
constexpr wchar_t kOther[] = L"\\Storage Card\\b.bin";
constexpr wchar_t kFolder[] = L"\\Storage Card\\Folder";
constexpr wchar_t kInFolder[] = L"\\Storage Card\\Folder\\c.bin";
constexpr DWORD kSector = 512;
constexpr int kSeeds = 60;

std::string Sectors(const std::string& letters) {
    std::string bytes;
    for (const char letter : letters) {
        bytes += std::string(kSector, letter);
    }
    return bytes;
}

class PowerLossTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        BeginUnsynced();
    }
    void BeginUnsynced() { device().Set("card.unsynced", "yes"); }

    // Writes the bytes at the beginning and closes; flushes first with `flush`.
    static void WriteTo(const wchar_t* path, const std::string& bytes, DWORD disposition,
                        bool flush = false) {
        HANDLE file = Open(path, GENERIC_WRITE, 0, disposition);
        EXPECT_TRUE(Write(file, bytes));
        EXPECT_TRUE(!flush || ::FlushFileBuffers(file));
        EXPECT_TRUE(::CloseHandle(file));
    }
    // "-" where nothing is, or "folder"; contents of whole sectors as one letter for each.
    std::string Seen(const wchar_t* path) {
        if (!device().Exists(path)) {
            return "-";
        }
        if (device().Info(path).is_folder) {
            return "folder";
        }
        const std::string bytes = device().FileBytes(path);
        std::string letters;
        for (std::size_t at = 0; at + kSector <= bytes.size(); at += kSector) {
            const std::string sector = bytes.substr(at, kSector);
            letters += sector == std::string(kSector, sector[0]) ? sector[0] : '~';
        }
        return bytes.size() % kSector == 0 ? letters : bytes;
    }
    // What the losses of all seeds leave of the paths when `change` comes before each. The card is
    // emptied before each.
    std::set<std::string> Left(const std::function<void()>& prepare,
                               const std::function<void()>& change,
                               const std::vector<const wchar_t*>& paths) {
        std::set<std::string> left;
        for (int seed = 0; seed < kSeeds; ++seed) {
            for (const auto& entry : sim::files::List(device().sim(), L"\\Storage Card")) {
                device().Remove(entry.path);
            }
            prepare();
            change();
            device().LosePower(static_cast<std::uint32_t>(seed));
            std::string all;
            for (const wchar_t* path : paths) {
                all += (all.empty() ? "" : " ") + Seen(path);
            }
            left.insert(all);
        }
        return left;
    }
};

using Lefts = std::set<std::string>;

TEST_F(PowerLossTest, WithNothingUnsyncedNothingChanges) {
    device().PutFile(kFile, "as it was");
    HANDLE file = Open(kFile, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING);
    EXPECT_TRUE(::CloseHandle(file));
    const std::string before = device().Command("dump");
    for (std::uint32_t seed = 0; seed < 5; ++seed) {
        EXPECT_EQ(0u, device().LosePower(seed));
    }
    EXPECT_EQ(before, device().Command("dump"));
}

TEST_F(PowerLossTest, WhatWasFlushedSurvives) {
    const auto change = [] { WriteTo(kFile, Sectors("abc"), CREATE_ALWAYS, true); };
    EXPECT_EQ(Lefts{"abc"}, Left([] {}, change, {kFile}));
}

TEST_F(PowerLossTest, ClosingAloneKeepsNothingForCertain) {
    const auto change = [] { WriteTo(kFile, Sectors("a"), CREATE_ALWAYS); };
    const Lefts left = Left([] {}, change, {kFile});
    EXPECT_EQ(1u, left.count("-")) << "made";
    EXPECT_EQ(1u, left.count("")) << "written";
    EXPECT_EQ(1u, left.count("a"));
    EXPECT_TRUE(left.count("~") + left.count(std::string(1, '\0')) > 0) << "never written";
}

TEST_F(PowerLossTest, SectorsAreKeptOrLostOneByOne) {
    const auto prepare = [this] { device().PutFile(kFile, Sectors("...")); };
    const auto change = [] { WriteTo(kFile, Sectors("abc"), OPEN_EXISTING); };
    EXPECT_EQ((Lefts{"...", "..c", ".b.", ".bc", "a..", "a.c", "ab.", "abc"}),
              Left(prepare, change, {kFile}));
}

TEST_F(PowerLossTest, ASectorIsAsItWasAfterAnyOfItsWrites) {
    const auto prepare = [this] { device().PutFile(kFile, Sectors(".")); };
    const auto change = [] {
        WriteTo(kFile, Sectors("a"), OPEN_EXISTING);
        WriteTo(kFile, Sectors("b"), OPEN_EXISTING);
    };
    EXPECT_EQ((Lefts{".", "a", "b"}), Left(prepare, change, {kFile}));
}

TEST_F(PowerLossTest, OnlyWhatCameAfterTheFlushIsUncertain) {
    const auto change = [] {
        WriteTo(kFile, Sectors("ab"), CREATE_ALWAYS, true);
        WriteTo(kFile, Sectors("x"), OPEN_EXISTING);
    };
    EXPECT_EQ((Lefts{"ab", "xb"}), Left([] {}, change, {kFile}));
}

TEST_F(PowerLossTest, AFileIsCut) {
    const auto prepare = [this] { device().PutFile(kFile, Sectors("ab")); };
    const auto change = [] {
        HANDLE file = Open(kFile, GENERIC_WRITE, 0, OPEN_EXISTING);
        ::SetFilePointer(file, kSector, nullptr, FILE_BEGIN);
        EXPECT_TRUE(::SetEndOfFile(file));
        EXPECT_TRUE(::CloseHandle(file));
    };
    EXPECT_EQ((Lefts{"a", "ab"}), Left(prepare, change, {kFile}));
    const auto grow = [] { WriteTo(kFile, Sectors("abc"), OPEN_EXISTING); };
    EXPECT_EQ(1u, Left(prepare, grow, {kFile}).count("ab")) << "its growth is lost";
}

TEST_F(PowerLossTest, ADeletedFileComesBack) {
    const auto prepare = [this] { device().PutFile(kFile, Sectors("a")); };
    const auto change = [] { EXPECT_TRUE(::DeleteFileW(kFile)); };
    EXPECT_EQ((Lefts{"-", "a"}), Left(prepare, change, {kFile}));
}

TEST_F(PowerLossTest, ARenamedFileHasEitherName) {
    const auto prepare = [this] { device().PutFile(kFile, Sectors("a")); };
    const auto change = [] { EXPECT_TRUE(::MoveFileW(kFile, kOther)); };
    EXPECT_EQ((Lefts{"a -", "- a"}), Left(prepare, change, {kFile, kOther}));
}

TEST_F(PowerLossTest, ADeletionAndARenamingToItsNameAreLostApart) {
    const auto prepare = [this] {
        device().PutFile(kFile, Sectors("o"));
        device().PutFile(kOther, Sectors("n"));
    };
    const auto change = [] {
        EXPECT_TRUE(::DeleteFileW(kFile));
        EXPECT_TRUE(::MoveFileW(kOther, kFile));
    };
    // Both names for one file are not; of two files with one name either is found.
    EXPECT_EQ((Lefts{"o n", "- n", "n -", "o -"}), Left(prepare, change, {kFile, kOther}));
}

TEST_F(PowerLossTest, AFlushedFileKeepsItsNameBeforeOneThatComesBack) {
    const auto prepare = [this] { device().PutFile(kFile, Sectors("o")); };
    const auto change = [] {
        EXPECT_TRUE(::DeleteFileW(kFile));
        WriteTo(kFile, Sectors("n"), CREATE_NEW, true);
    };
    EXPECT_EQ(Lefts{"n"}, Left(prepare, change, {kFile}));
}

TEST_F(PowerLossTest, OnACardThatAnswersTooEarlyAFlushKeepsNothing) {
    device().Set("card.unsynced", "always");
    const auto change = [] { WriteTo(kFile, Sectors("a"), CREATE_ALWAYS, true); };
    EXPECT_EQ(1u, Left([] {}, change, {kFile}).count("-"));
}

TEST_F(PowerLossTest, AFlushMakesTheFoldersCertainThatItLiesIn) {
    const auto make = [] { EXPECT_TRUE(::CreateDirectoryW(kFolder, nullptr)); };
    const auto flushed = [&] {
        make();
        WriteTo(kInFolder, Sectors("c"), CREATE_NEW, true);
    };
    EXPECT_EQ(Lefts{"c"}, Left([] {}, flushed, {kInFolder}));
    const auto closed = [&] {
        make();
        WriteTo(kInFolder, Sectors("c"), CREATE_NEW);
        EXPECT_TRUE(::DeleteFileW(kInFolder));
        EXPECT_TRUE(::RemoveDirectoryW(kFolder));
    };
    EXPECT_EQ((Lefts{"-", "folder"}), Left([] {}, closed, {kFolder}));
}

TEST_F(PowerLossTest, TimesAndAttributesAreKeptOrLost) {
    std::set<std::pair<std::uint64_t, std::uint32_t>> seen;
    for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
        device().PutFile(kFile, "a");
        device().SetAttributes(kFile, FILE_ATTRIBUTE_ARCHIVE);
        device().Touch(kFile, 1000);
        HANDLE file = Open(kFile, GENERIC_WRITE, 0, OPEN_EXISTING);
        const FILETIME time = FileTime(2000);
        EXPECT_TRUE(::SetFileTime(file, &time, &time, &time));
        EXPECT_TRUE(::CloseHandle(file));
        EXPECT_TRUE(::SetFileAttributesW(kFile, FILE_ATTRIBUTE_HIDDEN));
        device().LosePower(seed);
        const auto info = device().Info(kFile);
        seen.insert({info.modified, info.attributes & FILE_ATTRIBUTE_HIDDEN});
    }
    EXPECT_EQ(1u, seen.count({1000, 0}));
    EXPECT_EQ(1u, seen.count({2000, FILE_ATTRIBUTE_HIDDEN}));
}

TEST_F(PowerLossTest, ThePowerCanGoAfterAnyChange) {
    const auto change = [] {
        WriteTo(kFile, Sectors("a"), CREATE_NEW, true);
        WriteTo(kOther, Sectors("b"), CREATE_NEW, true);
    };
    change();
    EXPECT_EQ(6u, device().LosePower(1));
    for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
        device().Remove(kFile);
        device().Remove(kOther);
        change();
        device().LosePower(seed, 3);  // behind the first flush
        EXPECT_EQ("a -", Seen(kFile) + " " + Seen(kOther));
        device().PutFile(kOther, "");
        device().Remove(kFile);
        device().Remove(kOther);
        change();
        device().LosePower(seed, 0);
        EXPECT_EQ("- -", Seen(kFile) + " " + Seen(kOther));
        device().PutFile(kFile, "");
        device().PutFile(kOther, "");
    }
}

TEST_F(PowerLossTest, TheSameSeedLeavesTheSame) {
    std::set<std::string> left;
    for (int i = 0; i < 3; ++i) {
        device().PutFile(kFile, Sectors("........"));
        WriteTo(kFile, Sectors("abcdefgh"), OPEN_EXISTING);
        device().LosePower(7);
        left.insert(Seen(kFile));
    }
    EXPECT_EQ(1u, left.size());
}

TEST_F(PowerLossTest, WhatATesterDoesIsCertainAndSoIsTheObjectStore) {
    const auto prepare = [this] { device().PutFile(L"\\store.txt", "old"); };
    const auto change = [this] {
        WriteTo(kFile, Sectors("a"), CREATE_NEW);
        device().PutFile(kFile, Sectors("t"));
        WriteTo(L"\\store.txt", "new", OPEN_EXISTING);
    };
    EXPECT_EQ(Lefts{"t new"}, Left(prepare, change, {kFile, L"\\store.txt"}));
}

TEST_F(PowerLossTest, AfterALossAllIsCertain) {
    WriteTo(kFile, Sectors("abcdefgh"), CREATE_NEW);
    device().LosePower(3);
    const std::string before = device().Command("dump");
    EXPECT_EQ(0u, device().LosePower(4));
    EXPECT_EQ(before, device().Command("dump"));
}

TEST_F(PowerLossTest, WithoutTheSettingEveryWriteIsCertain) {
    WriteTo(kFile, Sectors("a"), CREATE_NEW);
    device().Set("card.unsynced", "no");
    WriteTo(kOther, Sectors("b"), CREATE_NEW);
    BeginUnsynced();
    EXPECT_EQ("{\"changes\":0}", device().Command("lose 1"));
    EXPECT_EQ("a b", Seen(kFile) + " " + Seen(kOther));
    EXPECT_THROW(device().Set("card.unsynced", "perhaps"), std::runtime_error);
}

TEST_F(PowerLossTest, TheSpaceOfWhatIsLostIsFreeAgain) {
    device().Set("card.size", "4096");
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        WriteTo(kFile, Sectors("abcdef"), CREATE_ALWAYS);
        device().LosePower(seed);
    }
    ULARGE_INTEGER free{};
    EXPECT_TRUE(::GetDiskFreeSpaceExW(L"\\Storage Card", &free, nullptr, nullptr));
    const auto taken = device().Exists(kFile) ? device().Info(kFile).size : 0;
    EXPECT_EQ(4096u - taken, free.QuadPart);
}

TEST_F(PowerLossTest, AMappingForWritingIsRefused) {
    device().PutFile(kFile, "0123456789");
    HANDLE file = Open(kFile, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING);
    EXPECT_EQ(nullptr, ::CreateFileMappingW(file, nullptr, PAGE_READWRITE, 0, 0, nullptr));
    EXPECT_EQ(DWORD{ERROR_NOT_SUPPORTED}, ::GetLastError());
    HANDLE reading = ::CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
    EXPECT_NE(nullptr, reading);
    EXPECT_TRUE(::CloseHandle(reading));
    EXPECT_TRUE(::CloseHandle(file));
}

}  // namespace
}  // namespace tests
