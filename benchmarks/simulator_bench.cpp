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
constexpr double kLinear = 1.5;  // an entry leaves the processor's cache on the way
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
    // Microseconds of each kind of call, beside what is on the device now.
    std::vector<double> Times() const {
        const HANDLE database = Opened();
        std::vector<double> times = {
            Fastest(kCalls, [](int) { AskForRoom(); }),
            Fastest(kCalls, [&](int i) { MakeFile(files_ + i); }),
            Fastest(kCalls, [](int i) { SetValue(i); }),
            Fastest(kCalls, [&](int i) { WriteRecord(database, i, last_record_); }),
            Fastest(kCalls, [&](int) { Describe(last_record_); }),
            Fastest(kCalls, [&](int) { Describe(database_oid_); }),
        };
        for (int i = 0; i < kCalls; ++i) {
            DeleteFileOf(files_ + i);
        }
        ::CloseHandle(database);
        return times;
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

constexpr const char* kCallNames[] = {"free room", "a new file",    "a value",
                                      "a record",  "a record's id", "a database's id"};

std::string Beside(const char* what, int objects) {
    return "simulated device, " + std::string(what) + " beside " + std::to_string(objects) +
           " objects";
}

int Run() {
    const std::wstring folder = sim::Device::Current().folder();
    bench::Print({"simulated device, its gate",
                  1000 * Fastest(100'000, [](int) { GetLastError(); }), "ns", "half a microsecond",
                  500, 1});
    Filled device;
    double load_before = 0;
    double first_load = 0;
    std::vector<double> beside_few;
    for (const int objects : kObjects) {
        device.GrowTo(objects);
        const double load = Fastest(1, [&](int) { Load(folder); }) / 1000;
        if (load_before > 0) {
            bench::Print(
                {Beside("loading", objects), load, "ms", "half as many objects", load_before});
        }
        load_before = load;
        const std::vector<double> times = device.Times();
        if (beside_few.empty()) {
            beside_few = times;
            first_load = load;
        }
        for (std::size_t i = 0; objects == kObjects[std::size(kObjects) - 1] && i < times.size();
             ++i) {
            bench::Print({Beside(kCallNames[i], objects), times[i], "us", "beside an eighth",
                          beside_few[i]});
        }
    }
    bench::Print({"simulated device, loading", load_before, "ms", "eight times that of an eighth",
                  8 * first_load, kLinear});
    return 0;
}

}  // namespace

int main() { return bench::OnNewDevice(Run); }
