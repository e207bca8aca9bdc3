// Loading and saving the journal against reading and writing the same bytes in calls of 32 bytes
// with no other work.
#include <algorithm>
#include <cstdio>

#include "benchmarks/on_new_device.h"
#include "benchmarks/row.h"
#include "platform/text.h"
#include "platform/unique_resource.h"
#include "simulator/store/device.h"
#include "storage/files/handle_bytes.h"
#include "storage/opened/journal.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kRecords = 100000;
constexpr int kRounds = 3;

ObjectRecord RecordOf(std::uint32_t number) {
    ObjectRecord record{};
    record.dwOID = number;
    record.info_checksum = static_cast<std::uint16_t>(number * 40503u);
    record.propOffset = number * 100;
    record.state_number = static_cast<std::uint16_t>(number % 50 + 1);
    record.flags = JF_ADD;
    record.type = ObjectType::kFile;
    return record;
}

// Milliseconds of the fastest of a few rounds; negative when a round fails.
template <typename Work>
double Fastest(Work work) {
    LARGE_INTEGER begin, end, frequency;
    ::QueryPerformanceFrequency(&frequency);
    double fastest = -1;
    for (int round = 0; round < kRounds; ++round) {
        ::QueryPerformanceCounter(&begin);
        if (!work()) {
            return -1;
        }
        ::QueryPerformanceCounter(&end);
        const double ms = 1000.0 * static_cast<double>(end.QuadPart - begin.QuadPart) /
                          static_cast<double>(frequency.QuadPart);
        fastest = fastest < 0 ? ms : std::min(fastest, ms);
    }
    return fastest;
}

bool WritePlainly(const StorageNames& names) {
    const UniqueHandle file = OpenFile(names.journal_temporary, GENERIC_WRITE, 0, CREATE_ALWAYS);
    const ObjectRecord record = RecordOf(1);
    for (std::uint32_t i = 0; i < kRecords; ++i) {
        DWORD done = 0;
        if (!::WriteFile(file.get(), &record, sizeof record, &done, nullptr)) {
            return false;
        }
    }
    return true;
}

bool ReadPlainly(const StorageNames& names) {
    const UniqueHandle file =
        OpenFile(names.journal_temporary, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    ObjectRecord record;
    std::uint32_t count = 0;
    DWORD done = 0;
    while (::ReadFile(file.get(), &record, sizeof record, &done, nullptr) && done != 0) {
        ++count;
    }
    return count == kRecords;
}

bool Fill(OpenedStorage& storage) {
    storage.journal = ObjectList::CreateList();
    for (std::uint32_t i = 1; storage.journal && i <= kRecords; ++i) {
        if (!storage.journal->AddObject(RecordOf(i))) {
            return false;
        }
    }
    return static_cast<bool>(storage.journal);
}

void Print(const char* what, double ours, double plain) {
    bench::Print({what, ours, "ms", "32-byte calls alone", plain, 5});
}

int Run() {
    OpenedStorage storage{};
    MakeStorageNames(u"\\bench", storage.names);
    const double plain_write = Fastest([&] { return WritePlainly(storage.names); });
    const double plain_read = Fastest([&] { return ReadPlainly(storage.names); });
    // A save frees the list, so each round fills one first; the filling is timed alone.
    const double fill = Fastest([&] { return Fill(storage); });
    const double fill_and_save = Fastest([&] {
        return Fill(storage) && CloseJournal(storage.names, storage.journal, true, nullptr) == 1;
    });
    const double load = Fastest([&] { return OpenJournal(storage, nullptr); });
    if (plain_write < 0 || plain_read < 0 || fill < 0 || fill_and_save < 0 || load < 0) {
        std::puts("journal: a round failed");
        return 1;
    }
    Print("journal of 100,000 records: load", load, plain_read);
    Print("journal of 100,000 records: save", fill_and_save - fill, plain_write);
    return storage.journal->CountRecords() == kRecords ? 0 : 1;
}

}  // namespace
}  // namespace tolvenar

int main() { return bench::OnNewDevice(tolvenar::Run); }
