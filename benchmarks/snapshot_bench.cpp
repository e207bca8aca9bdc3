// Speed and size of checksum, lists, matching and replay, each beside a plain baseline measured in
// the same run.
#include <algorithm>
#include <chrono>
#include <set>

#include "benchmarks/row.h"
#include "snapshot/compare/difference.h"
#include "snapshot/records/checksum.h"
#include "tests/support/fake_info_source.h"
#include "tests/support/plain_walk.h"

namespace tolvenar {
namespace {

using Clock = std::chrono::steady_clock;

// Seconds of the fastest of `rounds` calls.
template <typename Work>
double Fastest(int rounds, Work work) {
    double best = 1e9;
    for (int i = 0; i < rounds; ++i) {
        const auto start = Clock::now();
        work();
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        if (seconds < best) {
            best = seconds;
        }
    }
    return best;
}

// The plain checksum: one table, one byte at a time.
std::uint16_t byte_table[256];

std::uint16_t ByteLoop(const std::uint8_t* bytes, std::size_t size) {
    unsigned crc = kChecksumSeed;
    for (; size != 0; --size) {
        crc = byte_table[(crc ^ *bytes++) & 0xFF] ^ (crc >> 8);
    }
    return static_cast<std::uint16_t>(crc);
}

void BenchChecksum(std::size_t block, const char* what, double bound) {
    for (unsigned i = 0; i < 256; ++i) {
        unsigned crc = i;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1) ? (crc >> 1) ^ 0x8408 : crc >> 1;
        }
        byte_table[i] = static_cast<std::uint16_t>(crc);
    }
    std::vector<std::uint8_t> bytes(1 << 16);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 7 >> 3);
    }
    volatile unsigned sink = 0;
    const auto run = [&](auto checksum) {
        unsigned sum = 0;
        for (int round = 0; round < 64; ++round) {
            for (std::size_t at = 0; at < bytes.size(); at += block) {
                sum += checksum(&bytes[at], block);
            }
        }
        sink = sum;
    };
    const double plain = Fastest(5, [&] { run(ByteLoop); });
    const double fast = Fastest(5, [&] {
        run([](const std::uint8_t* at, std::size_t size) { return Checksum16(at, size); });
    });
    constexpr double kBytes = 64.0 * 65536;
    bench::Print(
        {what, 1e9 * fast / kBytes, "ns/byte", "the byte loop", 1e9 * plain / kBytes, bound});
}

struct ListTimes {
    double insert, find, remove;
};

ListTimes TimeList(std::uint32_t records) {
    ListTimes times{1e9, 1e9, 1e9};
    const std::uint32_t repeats = 200000 / records;
    for (int round = 0; round < 3; ++round) {
        double sums[3] = {};
        for (std::uint32_t repeat = 0; repeat < repeats; ++repeat) {
            auto list = ObjectList::CreateList();
            const auto key = [](std::uint32_t i) { return ObjectKey{(i * 40503u) << 16, 0, i, 0}; };
            const ObjectRecord record{};
            sums[0] += Fastest(1, [&] {
                for (std::uint32_t i = 0; i < records; ++i) {
                    list->InsertCopy(key(i), record);
                }
            });
            sums[1] += Fastest(1, [&] {
                for (std::uint32_t i = 0; i < records; ++i) {
                    list->FindByKey(key(i));
                }
            });
            sums[2] += Fastest(1, [&] {
                for (std::uint32_t i = 0; i < records; ++i) {
                    list->RemoveByKey(key(i));
                }
            });
        }
        double* const best[3] = {&times.insert, &times.find, &times.remove};
        for (int i = 0; i < 3; ++i) {
            *best[i] = std::min(*best[i], sums[i] / repeats);
        }
    }
    return times;
}

void BenchList() {
    constexpr std::uint32_t kSizes[] = {10000, 20000, 100000, 200000};
    ListTimes times[4];
    for (int i = 0; i < 4; ++i) {
        times[i] = TimeList(kSizes[i]);
    }
    for (int i = 0; i < 4; i += 2) {
        const std::string records = " of " + std::to_string(kSizes[i + 1]) + " records";
        const auto row = [&](const char* what, double ListTimes::*time) {
            bench::Print({"list: " + (what + records), times[i + 1].*time * 1e9 / kSizes[i + 1],
                          "ns", "half as many", times[i].*time * 1e9 / kSizes[i], 1.5});
        };
        row("insert", &ListTimes::insert);
        row("find", &ListTimes::find);
        row("remove", &ListTimes::remove);
        if (i == 0) {
            bench::Print({"list: insertion", times[0].insert * 1e9 / kSizes[0], "ns",
                          "what was set", 300, 1});
        }
    }
}

// Bytes of a list: the pages that its nodes stand on, and at most two index words for
// each.
void BenchMemory() {
    constexpr std::uint32_t kRecords = 100000;
    constexpr std::uintptr_t kPage = 4096;
    const auto list = ObjectList::CreateList();
    for (std::uint32_t i = 0; i < kRecords; ++i) {
        list->InsertCopy({i << 16, 0, i, 0}, {});
    }
    std::set<std::uintptr_t> pages;
    for (const ObjectList::Node& node : *list) {
        pages.insert(reinterpret_cast<std::uintptr_t>(&node) / kPage);
    }
    const double bytes = double(pages.size()) * kPage / kRecords + 2 * sizeof(void*);
    bench::Print({"list: memory of a record, index included", bytes, "bytes", "a third of 260",
                  260.0 / 3, 1});
}

// Names that depend on the identifier alone: a stored block's offset is the identifier it is for.
class NumberedNames : public StoredObjects, public LiveObjects, public InfoSource {
public:
    NumberedNames()
        : InfoSource(static_cast<StoredObjects&>(*this), static_cast<LiveObjects&>(*this)) {}
    bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) override {
        return Fill(TolvOID + dwOID, block);
    }
    bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) override {
        return Fill(offset, block);
    }
    const RegistryObject* FindRegistryObject(std::uint32_t) override { return nullptr; }

private:
    static bool Fill(std::uint32_t number, InfoBlock& block) {
        block.Clear();
        char16_t name[40];
        for (int i = 0; i < 40; ++i) {
            name[i] = static_cast<char16_t>(u'a' + (number >> (i % 8 * 4) & 15));
        }
        return block.SetName(name, 40);
    }
};

// Half files, half registry values and keys. In the newer list every hundredth has changed.
ObjectRecord BenchRecord(std::uint32_t i, bool newer) {
    const bool changed = newer && i % 100 == 7;
    ObjectRecord record{};
    record.info_checksum = static_cast<std::uint16_t>(i * 40503u >> 3 ^ (changed ? 1 : 0));
    record.content_fingerprint = static_cast<std::uint16_t>(i);
    record.flags = JF_PRESENT;
    if (i % 2 == 0) {
        record.type = ObjectType::kFile;
        record.dwOID = 0x1000000 + i;
        return record;
    }
    record.type = i % 10 == 1 ? ObjectType::kRegistryKey : ObjectType::kRegistryValue;
    record.TolvOID = (i * 2654435761u >> 8) ^ (changed ? 0x10000u : 0u);
    record.propOffset = newer ? 0 : record.TolvOID;
    if (!newer && record.propOffset == 0) {
        record.propOffset = 1;
    }
    return record;
}

std::unique_ptr<ObjectList> BenchRecords(std::uint32_t count, bool newer) {
    auto list = ObjectList::CreateList();
    for (std::uint32_t i = 0; i < count; ++i) {
        // The device is not scanned in the order of the journal.
        list->AddObject(BenchRecord(newer ? i : count - 1 - i, newer));
    }
    return list;
}

double TimeCmpLists(std::uint32_t count, std::size_t& differences) {
    NumberedNames info;
    double best = 1e9;
    for (int round = 0; round < 3; ++round) {
        const auto older = BenchRecords(count, false);
        const auto newer = BenchRecords(count, true);
        const auto diff = ObjectList::CreateList();
        best = std::min(best, Fastest(1, [&] { CmpLists(older.get(), newer.get(), *diff, info); }));
        differences = diff->CountRecords();
    }
    return best;
}

double TimePlainWalk(std::uint32_t count) {
    NumberedNames info;
    const auto older = Walk(*BenchRecords(count, false));
    const auto newer = Walk(*BenchRecords(count, true));
    plain::List list1(older.begin(), older.end());
    plain::List list2(newer.begin(), newer.end());
    plain::List diff;
    plain::Reference reference{info, {}};
    return Fastest(1, [&] { plain::CmpLists(list1, list2, diff, reference); });
}

void BenchMatching() {
    std::size_t differences = 0;
    const double plain = TimePlainWalk(5000);
    const double small = TimeCmpLists(5000, differences);
    bench::Print({"CmpLists: 5,000", small * 1e3, "ms", "the plain walk", plain * 1e3});
    const double large = TimeCmpLists(100000, differences);
    bench::Print({"CmpLists: 100,000", large * 1e3, "ms", "what was set", 300, 1});
    const double twice = TimeCmpLists(200000, differences);
    bench::Print({"CmpLists: 200,000", twice * 1e3, "ms", "half as many", large * 1e3, 2.5});
}

// `count` records over `states` states: each state after the first deletes what the one before it
// changed and adds the new version.
double TimeReplay(std::uint32_t count, std::uint32_t states, std::size_t& objects) {
    NumberedNames info;
    const auto all = ObjectList::CreateList();
    const std::uint32_t each = count / states;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t state = i / each;
        // Odd states delete half of the state before them, the other half of their records is new.
        const bool deletes = state % 2 == 1 && i % each < each / 2;
        ObjectRecord record = BenchRecord(deletes ? i - each : i, false);
        record.state_number = static_cast<std::uint16_t>(state + 1);
        record.flags = deletes ? JF_DELETE : JF_ADD;
        all->AddObject(record);
    }
    double best = 1e9;
    for (int round = 0; round < 3; ++round) {
        const auto out = ObjectList::CreateList();
        best = std::min(best, Fastest(1, [&] { BuildStateList(*out, *all, states, info); }));
        objects = out->CountRecords();
    }
    return best;
}

void BenchReplay() {
    std::size_t objects = 0;
    const double half = TimeReplay(50000, 25, objects);
    const double full = TimeReplay(100000, 50, objects);
    bench::Print({"BuildStateList: 100,000 records, 50 states", full * 1e3, "ms", "half as many",
                  half * 1e3, 2.5});
    const double wide = TimeReplay(100000, 500, objects);
    bench::Print({"BuildStateList: 100,000 records, 500 states", wide * 1e3, "ms", "50 states",
                  full * 1e3, 1.5});
}

}  // namespace
}  // namespace tolvenar

int main() {
    using namespace tolvenar;
    BenchChecksum(65536, "Checksum16: blocks of 64 KB", 0.2);
    BenchChecksum(32, "Checksum16: blocks of 32 bytes", 1.0 / 3);
    BenchList();
    BenchMemory();
    BenchMatching();
    BenchReplay();
    return 0;
}
