// The kept sums of what files take, held against a walk over all files.
#include "simulator/files/size_sums.h"

#include <random>
#include <stdexcept>

#include "simulator/files/file_table.h"
#include "simulator/files/files.h"
#include "tests/simulator/file_helpers.h"
#include "tests/support/child_role.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

constexpr wchar_t kCard[] = L"\\Storage Card";

// Writes until it is killed, in the middle of a file and of a change of its size.
const ChildRole kSizer(L"size", [](const wchar_t* path) {
    HANDLE file = Open(path, GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS);
    for (DWORD i = 0; i < 1000000; ++i) {
        ::SetFilePointer(file, static_cast<LONG>(i * 7919 % 60000), nullptr, FILE_BEGIN);
        if (i % 2 == 0 ? !Write(file, "some bytes") : !::SetEndOfFile(file)) {
            return 1;
        }
        if (i == 50) {
            sim::host::TellReady();
        }
    }
    return 1;
});

class SizeSumsTest : public DeviceTest {
protected:
    using Sums = std::pair<std::int64_t, std::int64_t>;  // of the store and of the card

    static Sums Kept(sim::Device& device) {
        sim::files::SizeSums& sums = sim::files::FileTable::Of(device).sizes();
        const std::int64_t store = sums.Used(false);
        return {store, sums.Used(true)};
    }
    static Sums Walked(sim::Device& device) {
        Sums sums;
        for (const sim::files::Entry& entry : sim::files::ListAll(device)) {
            const bool is_rom = (entry.attributes & 0x2040) != 0;
            (entry.on_card ? sums.second : sums.first) += is_rom ? 0 : entry.size;
        }
        return sums;
    }
    // What the program's side of this process keeps: the sums of its own copy of the device.
    Sums KeptByCoredll() {
        STORE_INFORMATION store{};
        ULARGE_INTEGER free{}, size{};
        EXPECT_TRUE(::GetStoreInformation(&store));
        EXPECT_TRUE(::GetDiskFreeSpaceExW(kCard, &free, &size, nullptr));
        return {store.dwStoreSize - store.dwFreeSize,
                static_cast<std::int64_t>(size.QuadPart - free.QuadPart)};
    }
    void ExpectSums() {
        const Sums walked = Walked(device().sim());
        EXPECT_EQ(walked, Kept(device().sim()));
        EXPECT_EQ(walked, KeptByCoredll());
    }
};

// Random changes by a program and by a tester.
class RandomChanges {
public:
    // At most so many files stay open for later changes.
    RandomChanges(TestDevice& device, unsigned seed, std::size_t most_open = 4)
        : device_(device), random_(seed), most_open_(most_open) {}
    ~RandomChanges() {
        for (HANDLE file : open_) {
            ::CloseHandle(file);
        }
    }
    void One() {
        const std::wstring path = Path();
        switch (random_() % 11) {
            case 0: Tested([&] { device_.PutFile(path, Bytes()); }); break;
            case 1: ::DeleteFileW(path.c_str()); break;
            case 2: OpenOne(path, CREATE_ALWAYS); break;
            case 3: OpenOne(path, OPEN_ALWAYS); break;
            case 4: CloseOne(); break;
            case 10: WriteMore(); break;
            case 5: ::MoveFileW(path.c_str(), Path().c_str()); break;
            case 6: ::CopyFileW(path.c_str(), Path().c_str(), FALSE); break;
            case 7:
                Tested([&] { device_.SetAttributes(path, random_() % 2 != 0 ? 0x40 : 0x20); });
                break;
            case 8: Tested([&] { device_.Remove(path); }); break;
            default: Cut(path); break;
        }
    }

private:
    template <typename Change>
    void Tested(Change&& change) {
        try {
            change();
        } catch (const sim::files::FileError&) {
        }
    }
    std::wstring Path() {
        const wchar_t* const folders[] = {L"", L"\\Folder", L"\\Storage Card", kCard};
        return std::wstring(folders[random_() % 4]) + L"\\" + std::to_wstring(random_() % 9);
    }
    std::string Bytes() { return std::string(random_() % 5000, 'x'); }
    void OpenOne(const std::wstring& path, DWORD disposition) {
        HANDLE file = Open(path.c_str(), random_() % 3 != 0 ? GENERIC_WRITE : GENERIC_READ,
                           random_() % 2 != 0 ? FILE_SHARE_READ : 0, disposition);
        if (file == INVALID_HANDLE_VALUE) {
            return;
        }
        Write(file, Bytes());
        open_.push_back(file);
        if (open_.size() > most_open_) {
            CloseOne();
        }
    }
    // Through a handle that was open when somebody asked before.
    void WriteMore() {
        if (!open_.empty()) {
            Write(open_.front(), Bytes());
        }
    }
    void CloseOne() {
        if (!open_.empty()) {
            ::CloseHandle(open_.front());
            open_.erase(open_.begin());
        }
    }
    void Cut(const std::wstring& path) {
        HANDLE file = Open(path.c_str(), GENERIC_WRITE, 0, OPEN_EXISTING);
        ::SetFilePointer(file, static_cast<LONG>(random_() % 6000), nullptr, FILE_BEGIN);
        ::SetEndOfFile(file);
        ::CloseHandle(file);
    }

    TestDevice& device_;
    std::mt19937 random_;
    std::size_t most_open_;
    std::vector<HANDLE> open_;
};

TEST_F(SizeSumsTest, AreWhatAWalkGivesAfterEveryChange) {
    RandomChanges changes(device(), 1);
    for (int i = 0; i < 1500 && !HasFailure(); ++i) {
        changes.One();
        ExpectSums();
    }
}

TEST_F(SizeSumsTest, AreWhatAWalkGivesAfterManyChangesThatNobodyAskedAbout) {
    RandomChanges changes(device(), 2);
    for (int i = 0; i < 20 && !HasFailure(); ++i) {
        for (int j = 0; j < 100; ++j) {
            changes.One();
        }
        ExpectSums();
    }
}

TEST_F(SizeSumsTest, AreWhatAWalkGivesAfterAChangeThatIsTakenBack) {
    device().PutFile(L"\\a.txt", "first");
    ExpectSums();
    EXPECT_THROW(
        {
            sim::LogStore::Change change(device().sim().store());
            device().Remove(L"\\a.txt");
            device().PutFile(L"\\b.txt", "second, longer");
            EXPECT_EQ(Walked(device().sim()), Kept(device().sim()));
            throw std::runtime_error("halfway");
        },
        std::runtime_error);
    ExpectSums();
}

TEST_F(SizeSumsTest, AreWhatAWalkGivesAfterALossOfPower) {
    for (unsigned seed = 0; seed < 20 && !HasFailure(); ++seed) {
        device().Set("card.unsynced", "yes");
        {
            // What a tester does to a file that is open could not be taken back.
            RandomChanges changes(device(), seed, 0);
            for (int i = 0; i < 60; ++i) {
                changes.One();
            }
        }
        ExpectSums();
        device().LosePower(seed);
        ExpectSums();
        device().Set("card.unsynced", "no");
    }
}

TEST_F(SizeSumsTest, AreWhatAWalkGivesAfterTheLogIsReadAnew) {
    RandomChanges changes(device(), 3);
    for (int i = 0; i < 10 && !HasFailure(); ++i) {
        for (int j = 0; j < 30; ++j) {
            changes.One();
        }
        device().sim().store().Compact();
        ExpectSums();
        sim::Device other(folder());
        EXPECT_EQ(Walked(other), Kept(other));
    }
}

TEST_F(SizeSumsTest, AreWhatAWalkGivesAfterAWriterIsKilled) {
    ExpectSums();
    for (int i = 0; i < 5 && !HasFailure(); ++i) {
        sim::host::Child writer(L"size", L"\\sized.bin");
        ASSERT_TRUE(writer.WaitReady());
        Kept(device().sim());
        KeptByCoredll();
        writer.Kill();
        ExpectSums();
        sim::Device other(folder());
        EXPECT_EQ(Walked(other), Kept(other));
    }
    // Whoever holds the file alone makes its size certain again.
    EXPECT_EQ(0, OpenError(L"\\sized.bin", GENERIC_WRITE, 0, OPEN_EXISTING));
    ExpectSums();
}

}  // namespace
}  // namespace tests
