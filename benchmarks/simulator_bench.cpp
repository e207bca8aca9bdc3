// What the simulated device itself costs as it grows: reading its log, and single calls, which are
// to take as long beside many objects as beside few.
#include "platform/win32.h"

#include <algorithm>
#include <string>
#include <vector>
#include <windbase.h>

#include "benchmarks/on_new_device.h"
#include "benchmarks/row.h"
#include "simulator/databases/database_store.h"
#include "simulator/files/space.h"
#include "simulator/store/device.h"

namespace {

constexpr int kObjects[] = {12'500, 25'000, 50'000, 100'000};
constexpr int kCalls = 200;
constexpr int kRounds = 3;
constexpr CEPROPID kNumberId = (1u << 16) | CEVT_UI4;

double Now() {
    LARGE_INTEGER count, frequency;
    ::QueryPerformanceFrequency(&frequency);
    ::QueryPerformanceCounter(&count);
    return 1e6 * static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// Microseconds of one run in the fastest round.
template <typename Run>
double Fastest(int runs, Run&& run) {
    double fastest = 1e12;
    for (int round = 0; round < kRounds; ++round) {
        const double begin = Now();
        for (int i = 0; i < runs; ++i) {
            run(i);
        }
        fastest = std::min(fastest, (Now() - begin) / runs);
    }
    return fastest;
}

void MakeFile(int number) {
    wchar_t path[64];
    ::wsprintfW(path, L"\\Folder %u\\%u", number % 50, number);
    const HANDLE file = ::CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    ::WriteFile(file, path, sizeof path, &written, nullptr);
    ::CloseHandle(file);
}

void DeleteFileOf(int number) {
    wchar_t path[64];
    ::wsprintfW(path, L"\\Folder %u\\%u", number % 50, number);
    ::DeleteFileW(path);
}

void SetValue(int number) {
    wchar_t path[64];
    ::wsprintfW(path, L"Key %u", number / 20);
    HKEY key = nullptr;
    ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, path, 0, nullptr, 0, 0, nullptr, &key, nullptr);
    ::wsprintfW(path, L"Value %u", number % 20);
    ::RegSetValueExW(key, path, 0, REG_BINARY, reinterpret_cast<const BYTE*>(path), 20);
    ::RegCloseKey(key);
}

CEOID WriteRecord(HANDLE database, int number, CEOID record) {
    CEPROPVAL value{};
    value.propid = kNumberId;
    value.val.ulVal = static_cast<ULONG>(number);
    return ::CeWriteRecordProps(database, record, 1, &value);
}

// A tenth are files, a fifth records in one database, the rest values.
struct Call {
    std::string what;
    double us;
};

class Filled {
public:
    Filled() {
        CREATE_SYSTEMGUID(&store_);
        CEDBASEINFO info{};
        info.dwFlags = CEDB_VALIDCREATE;
        ::wsprintfW(info.szDbaseName, L"Records");
        info.wNumSortOrder = 1;
        info.rgSortSpecs[0] = {kNumberId, 0};
        database_oid_ = ::CeCreateDatabaseEx(&store_, &info);
        for (int i = 0; i < 50; ++i) {
            wchar_t path[32];
            ::wsprintfW(path, L"\\Folder %u", i);
            ::CreateDirectoryW(path, nullptr);
        }
    }
    void GrowTo(int objects) {
        const HANDLE database = Opened();
        for (; objects_ < objects; ++objects_) {
            const int kind = objects_ % 10;
            if (kind == 0) {
                MakeFile(files_++);
            } else if (kind <= 2) {
                last_record_ = WriteRecord(database, records_++, 0);
            } else {
                SetValue(values_++);
            }
        }
        ::CloseHandle(database);
    }
    // Microseconds of the calls beside so many objects.
    std::vector<Call> Calls() const {
        const HANDLE database = Opened();
        const std::vector<Call> calls = {
            {"asking for room", Fastest(kCalls, [](int) { AskForRoom(); })},
            {"a file more, and asking for room", Fastest(kCalls,
                                                         [&](int i) {
                                                             MakeFile(files_ + i);
                                                             AskForRoom();
                                                         })},
            {"a file made and deleted", Fastest(kCalls,
                                                [&](int i) {
                                                    MakeFile(files_ + i);
                                                    DeleteFileOf(files_ + i);
                                                })},
            {"setting a value", Fastest(kCalls, [](int i) { SetValue(i); })},
            {"writing a record",
             Fastest(kCalls, [&](int i) { WriteRecord(database, i, last_record_); })},
            {"describing a record", Fastest(kCalls, [&](int) { Describe(last_record_); })},
            {"describing a database", Fastest(kCalls, [&](int) { Describe(database_oid_); })},
        };
        for (int i = 0; i < kCalls; ++i) {
            DeleteFileOf(files_ + i);
        }
        ::CloseHandle(database);
        return calls;
    }

private:
    HANDLE Opened() const {
        CEOID oid = database_oid_;
        CEGUID store = store_;
        return ::CeOpenDatabaseEx(&store, &oid, nullptr, kNumberId, 0, nullptr);
    }
    static void AskForRoom() {
        STORE_INFORMATION store{};
        ::GetStoreInformation(&store);
    }
    void Describe(CEOID oid) const {
        CEGUID store = store_;
        CEOIDINFO info{};
        ::CeOidGetInfoEx(&store, oid, &info);
    }

    CEGUID store_{};
    CEOID database_oid_ = 0;
    CEOID last_record_ = 0;
    int objects_ = 0, files_ = 0, records_ = 0, values_ = 0;
};

// Reads the whole log and asks for what is kept of it.
void Load(const std::wstring& folder) {
    sim::Device device(folder);
    sim::files::SpaceOf(device, false);
    sim::databases::DatabaseStore(device).ByName(u"Records");
}

void PrintLoad(int objects, double now, double before) {
    bench::Row row = {"simulated device: loading " + std::to_string(objects) + " objects",
                      now / 1000,
                      "ms",
                      "half as many",
                      before / 1000,
                      2.5};
    bench::Print(before > 0 ? row : bench::Row{row.what, row.figure, "ms", "itself", row.figure});
}

int Run() {
    const std::wstring folder = sim::Device::Current().folder();
    const double gate = Fastest(1'000'000, [](int) { ::GetLastError(); });
    bench::Print(
        {"simulated device: the gate of a call", 1000 * gate, "ns", "itself", 1000 * gate});
    Filled device;
    double before = 0;
    std::vector<Call> few;
    for (const int objects : kObjects) {
        device.GrowTo(objects);
        const double load = Fastest(1, [&](int) { Load(folder); });
        PrintLoad(objects, load, before);
        before = load;
        if (few.empty()) {
            few = device.Calls();
        }
    }
    const std::vector<Call> many = device.Calls();
    for (std::size_t i = 0; i < few.size(); ++i) {
        bench::Print({"simulated device of 100,000 objects: " + few[i].what, many[i].us, "us",
                      "beside an eighth of them", few[i].us, 2});
    }
    return 0;
}

}  // namespace

int main() { return bench::OnNewDevice(Run); }
