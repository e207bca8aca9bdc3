// A device with a storage chosen on its card, and the parts that an operation works with.
#pragma once

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "storage/opened/journal.h"
#include "storage/opened/storage_file.h"
#include "tests/support/device_test.h"
#include "tests/support/engine_parts.h"

namespace tolvenar {

using Text = std::u16string;
using Texts = std::vector<Text>;
using Lines = std::vector<std::string>;

// Nothing of the storage is made; the folder is there.
class StorageTest : public tests::DeviceTest, public EngineParts {
protected:
    void SetUp() override;
    void TearDown() override;

    // Time moves at every write, and a restore does not wait for the store to settle.
    void LetTimePass();
    // The device as it comes from a reset: empty, with the card still in it. Time passes.
    void ResetDevice();

    // The `n`th call of `function` from now on fails with `error`. Nothing is allocated behind the
    // rule.
    void Fail(const char* function, int n, std::uint32_t error);
    // The `n`th allocation from now on fails. The test's own come from the same heap, so the code
    // under test must follow at once.
    void FailAllocation(int n) { Fail("HeapAlloc", n, ERROR_NOT_ENOUGH_MEMORY); }
    // How many allocations `body` makes.
    template <typename Body>
    int AllocationsOf(Body body) {
        const long none = CountedAllocations([] {});
        return static_cast<int>(CountedAllocations(body) - none);
    }

    bool Exists(const char16_t* path) { return device().Exists(Wide(path)); }
    void Put(const char16_t* path, const Bytes& bytes) { device().PutFile(Wide(path), bytes); }
    Bytes Content(const char16_t* path) { return device().FileBytes(Wide(path)); }
    // An open file, which others may read and write, too.
    static UniqueHandle Reader(const char16_t* path);
    // Holds a file open so that nobody else can open it.
    static UniqueHandle Hold(const char16_t* path);
    // Sees that nobody holds the file.
    static bool IsFree(const char16_t* path) { return static_cast<bool>(Hold(path)); }

    // The log's text.
    Text Log();
    // Its lines without date and time: "E DoRestoreRecord: Fail GetOIDInfo".
    Lines LogLines();

    // The record of the object in a list; null when there is none.
    static const ObjectRecord* RecordOf(const ObjectList& list, CEOID oid);
    // The same of the loaded journal, in one state.
    const ObjectRecord* JournalRecord(std::uint16_t state, CEOID oid, ObjectType type);
    bool DatabaseExists(const char16_t* name);
    // "name=number" of each record, sorted; see AddRecord.
    Lines Records(const char16_t* database);

    // Neither file of the storage is open, and no list of an operation is left but the differences.
    void ExpectClosed(bool with_differences = false);

private:
    template <typename Body>
    long CountedAllocations(Body body) {
        FailAllocation(1000000);
        body();
        return SeenAllocations();
    }
    long SeenAllocations();
};

// The storage is made and open.
class EngineTest : public StorageTest {
protected:
    void SetUp() override;
};

// Counts how often `part` occurs in `text`.
template <typename Unit>
std::size_t Occurrences(const std::basic_string<Unit>& text, const Unit* part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

}  // namespace tolvenar
