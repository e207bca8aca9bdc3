// What the proof of a storage costs beside the restore that it belongs to: one that finds nothing
// to do on a storage of 70,000 records.
#include <cstdio>

#include "benchmarks/on_new_device.h"
#include "benchmarks/row.h"
#include "platform/text.h"
#include "snapshot/engine/descriptions.h"
#include "storage/opened/journal.h"
#include "storage/opened/storage_file.h"
#include "storage/operations/backup_writer.h"
#include "storage/operations/pair_proof.h"
#include "storage/operations/restore_engine.h"

namespace tolvenar {
namespace {

constexpr int kKeys = 2000;
constexpr int kValuesOfAKey = 34;

class Silence final : public Progress {
    void ProgressBegin(std::size_t) override {}
    void ProgressStep(const char16_t*) override {}
};

double Now() {
    LARGE_INTEGER count, frequency;
    ::QueryPerformanceFrequency(&frequency);
    ::QueryPerformanceCounter(&count);
    return 1000.0 * static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

bool FillRegistry() {
    for (int i = 0; i < kKeys; ++i) {
        wchar_t path[64];
        ::wsprintfW(path, L"Software\\Bench\\Group %u\\Key %u", i % 50, i);
        UniqueHkey key;
        if (::RegCreateKeyExW(HKEY_LOCAL_MACHINE, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                              key.Put(), nullptr) != ERROR_SUCCESS) {
            return false;
        }
        for (DWORD value = 0; value < kValuesOfAKey; ++value) {
            wchar_t name[32];
            ::wsprintfW(name, L"Value %u", value);
            const DWORD data[4] = {value, static_cast<DWORD>(i), value * i, 7};
            if (::RegSetValueExW(key.get(), name, 0, REG_BINARY,
                                 reinterpret_cast<const BYTE*>(data),
                                 sizeof data) != ERROR_SUCCESS) {
                return false;
            }
        }
    }
    return true;
}

int Run() {
    OpenedStorage storage{};
    DatabaseLayer databases;
    ObjectInfo info{storage.registry_objects, databases};
    Silence silence;
    Engine engine{storage, databases, info, silence};
    OpenStorageResult opened{};
    BackupResult backup;
    if (!FillRegistry() || CreateStorage(u"\\bench", nullptr) == nullptr ||
        !MakeStorageNames(u"\\bench", storage.names) ||
        !OpenStorage(storage.names.sav, storage, opened) || !OpenJournal(storage, nullptr) ||
        !DoBackup(engine, 1, u"", false, backup)) {
        std::puts("restore: the storage could not be made");
        return 1;
    }
    const double begin = Now();
    RestoreResult result;
    DoRestore(engine, 1, nullptr, result);
    const double restored = Now();
    std::size_t findings = 1;
    {
        Descriptions descriptions(engine);
        PairCheck check(*storage.journal, descriptions.stored);
        findings = CheckOpenPair(engine, descriptions, check) ? check.findings_in_list() : 1;
    }
    const double checked = Now();
    if (result.code != ResultCode::kNoDifference || findings != 0) {
        std::puts("restore: it found a difference");
        return 1;
    }
    bench::Print({"proof of a storage of 70,000 records", checked - restored, "ms",
                  "a restore that finds nothing", restored - begin, 0.1});
    return 0;
}

}  // namespace
}  // namespace tolvenar

int main() { return bench::OnNewDevice(tolvenar::Run); }
