// What the storage's tests share: the demo storage's names, its files as bytes, a progress that
// remembers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/settings/settings.h"
#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/text/progress.h"
#include "storage/opened/opened_storage.h"
#include "tests/support/device_test.h"

namespace tolvenar {

using Bytes = std::vector<std::uint8_t>;
using Text = std::u16string;

// Writes down what it is told: "begin 3", "text", "step".
class RecordedProgress : public Progress {
public:
    void ProgressBegin(std::size_t count) override {
        events.push_back("begin " + std::to_string(count));
    }
    void ProgressStep(const char16_t* text) override {
        if (text == nullptr) {
            events.push_back("step");
            return;
        }
        const Text wide = text;
        events.push_back(std::string(wide.begin(), wide.end()));
    }
    std::vector<std::string> events;
};

// A device with a storage chosen: "\Backups\Home", in an existing folder.
class StorageTest : public tests::DeviceTest {
protected:
    void SetUp() override;
    // Fails also when a fault never fired.
    void TearDown() override;

    // The `n`th call of `function` from now on fails with `error`.
    void Fail(const char* function, int n, DWORD error) { device().Fault(function, n, 1, error); }
    // The `n`th allocation from now on fails. The test's own come from the same heap, so the code
    // under test must follow at once and make at least as many.
    void FailAllocation(int n);
    // How many allocations `body` makes.
    template <typename Body>
    int AllocationsOf(Body body) {
        const long none = CountedAllocations([] {});
        return static_cast<int>(CountedAllocations(body) - none);
    }

    static bool Exists(const char16_t* path) {
        return ::GetFileAttributesW(Wide(path)) != INVALID_FILE_ATTRIBUTES;
    }
    static void Put(const char16_t* path, const Bytes& bytes);
    static Bytes Content(const char16_t* path);
    // Holds a file open so that nobody else can open it.
    static UniqueHandle Hold(const char16_t* path);
    // Sees that nobody holds the file.
    static bool IsFree(const char16_t* path) { return static_cast<bool>(Hold(path)); }
    // The log's text.
    static Text Log();

    OpenedStorage storage_{};

private:
    template <typename Body>
    long CountedAllocations(Body body) {
        FailAllocation(1000000);
        body();
        return SeenAllocations();
    }
    long SeenAllocations();
};

// Counts how often `part` occurs in `text`.
std::size_t Occurrences(const Text& text, const Text& part);

constexpr char16_t kSav[] = u"\\Backups\\Home.sav";
constexpr char16_t kJournal[] = u"\\Backups\\Home.jrn";
constexpr char16_t kJournalTemporary[] = u"\\Backups\\Home.jrn_1";
constexpr char16_t kLog[] = u"\\Backups\\tolvenar_log.txt";

}  // namespace tolvenar
