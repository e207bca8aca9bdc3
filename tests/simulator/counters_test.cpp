// How often which call was made, and what a process holds.
#include "simulator/gate/counters.h"

#include "platform/win32.h"

#include <nlohmann/json.hpp>
#include <x86intrin.h>

#include "tests/support/device_test.h"

namespace {

using sim::Gauge;

class CountersTest : public tests::DeviceTest {
protected:
    long Calls(const std::string& function) {
        const auto calls = sim::TotalCalls(device().sim());
        const auto found = calls.find(function);
        return found == calls.end() ? 0 : found->second;
    }
    // Read without an allocation of this process's, which would be counted itself.
    long Held(Gauge gauge) const {
        const long last = gate_->processes_started - 1;
        return last < 0 ? 0 : gate_->processes[last].gauges[static_cast<std::size_t>(gauge)];
    }
    long long Ticks(sim::Call call) const { return gate_->ticks[static_cast<std::size_t>(call)]; }

    sim::MappedGate gate_{folder()};
};

TEST_F(CountersTest, EveryCallIsCounted) {
    const long before = Calls("DeleteFileW");
    for (int i = 0; i < 5; ++i) {
        ::DeleteFileW(L"\\no.txt");
    }
    EXPECT_EQ(before + 5, Calls("DeleteFileW"));
}

TEST_F(CountersTest, ClearedCountersBeginAtNothing) {
    ::DeleteFileW(L"\\no.txt");
    device().Command("counters clear");
    EXPECT_EQ(0, Calls("DeleteFileW"));
    ::DeleteFileW(L"\\no.txt");
    EXPECT_EQ(1, Calls("DeleteFileW"));
}

TEST_F(CountersTest, OpenHandlesAreHeldUntilClosed) {
    const long before = Held(Gauge::kHandles);
    HANDLE file = ::CreateFileW(L"\\a", GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_EQ(before + 2, Held(Gauge::kHandles));
    ::CloseHandle(file);
    ::CloseHandle(event);
    EXPECT_EQ(before, Held(Gauge::kHandles));
}

TEST_F(CountersTest, AFailedCallHoldsNothing) {
    const long before = Held(Gauge::kHandles);
    ::CreateFileW(L"\\no", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    device().Command("fault CreateEventW 1 8");
    EXPECT_EQ(nullptr, ::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_EQ(before, Held(Gauge::kHandles));
}

TEST_F(CountersTest, HeapBlocksGoWithTheirHeap) {
    HANDLE heap = ::HeapCreate(0, 0x1000, 0);
    const long before = Held(Gauge::kHeapBlocks);
    void* first = ::HeapAlloc(heap, 0, 10);
    ::HeapAlloc(heap, 0, 10);
    const long with_two = Held(Gauge::kHeapBlocks);
    ::HeapFree(heap, 0, first);
    const long with_one = Held(Gauge::kHeapBlocks);
    ::HeapDestroy(heap);
    const long after = Held(Gauge::kHeapBlocks);
    EXPECT_EQ(before + 2, with_two);
    EXPECT_EQ(before + 1, with_one);
    EXPECT_EQ(before, after);
}

TEST_F(CountersTest, LocalBlocksAreHeapBlocks) {
    const long before = Held(Gauge::kHeapBlocks);
    HLOCAL block = ::LocalAlloc(LMEM_FIXED, 16);
    const long with_one = Held(Gauge::kHeapBlocks);
    const HLOCAL left = ::LocalFree(block);
    const long after = Held(Gauge::kHeapBlocks);
    EXPECT_EQ(nullptr, left);
    EXPECT_EQ(before + 1, with_one);
    EXPECT_EQ(before, after);
}

TEST_F(CountersTest, BytesOfBlocksAreCountedWithTheMostThatTheyWere) {
    HANDLE heap = ::HeapCreate(0, 0x1000, 0);
    const long before = Held(Gauge::kHeapBytes);
    void* block = ::HeapAlloc(heap, 0, 100'000'000);
    const long with_block = Held(Gauge::kHeapBytes);
    ::HeapFree(heap, 0, block);
    const long after = Held(Gauge::kHeapBytes);
    ::HeapAlloc(heap, 0, 1000);
    const long peak = Held(Gauge::kHeapPeak);
    ::HeapDestroy(heap);
    const long at_end = Held(Gauge::kHeapBytes);
    EXPECT_EQ(before + 100'000'000, with_block);
    EXPECT_EQ(before, after);
    EXPECT_EQ(with_block, peak);
    EXPECT_EQ(before, at_end);
}

TEST_F(CountersTest, GdiObjectsAreCounted) {
    const long before = Held(Gauge::kGdiObjects);
    HPEN pen = ::CreatePen(PS_SOLID, 1, 0);
    EXPECT_EQ(before + 1, Held(Gauge::kGdiObjects));
    ::DeleteObject(pen);
    EXPECT_EQ(before, Held(Gauge::kGdiObjects));
}

TEST_F(CountersTest, ChildWindowsGoWithTheirParent) {
    const long before = Held(Gauge::kWindows);
    const auto make = [](HWND parent) {
        return ::CreateWindowExW(0, L"STATIC", L"", parent != nullptr ? WS_CHILD : WS_POPUP, 0, 0,
                                 10, 10, parent, nullptr, nullptr, nullptr);
    };
    HWND parent = make(nullptr);
    ASSERT_NE(nullptr, parent);
    make(make(parent));
    HWND single = make(parent);
    EXPECT_EQ(before + 4, Held(Gauge::kWindows));
    EXPECT_TRUE(::DestroyWindow(single));
    EXPECT_EQ(before + 3, Held(Gauge::kWindows));
    EXPECT_FALSE(::DestroyWindow(single));
    EXPECT_EQ(before + 3, Held(Gauge::kWindows));
    EXPECT_TRUE(::DestroyWindow(parent));
    EXPECT_EQ(before, Held(Gauge::kWindows));
}

DWORD WINAPI ReturnOnceFree(LPVOID mutex) {
    ::WaitForSingleObject(mutex, 60000);
    return 7;
}
DWORD WINAPI LeaveOnceFree(LPVOID mutex) {
    ::WaitForSingleObject(mutex, 60000);
    ::ExitThread(8);
}

TEST_F(CountersTest, AThreadCountsWhileItRuns) {
    const long before = Held(Gauge::kThreads);
    for (LPTHREAD_START_ROUTINE run : {ReturnOnceFree, LeaveOnceFree}) {
        HANDLE mutex = ::CreateMutexW(nullptr, TRUE, nullptr);
        HANDLE thread = ::CreateThread(nullptr, 0, run, mutex, 0, nullptr);
        EXPECT_EQ(before + 1, Held(Gauge::kThreads));
        ::ReleaseMutex(mutex);
        ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(thread, 60000));
        DWORD code = 0;
        ::GetExitCodeThread(thread, &code);
        EXPECT_EQ(run == ReturnOnceFree ? 7u : 8u, code);
        EXPECT_EQ(before, Held(Gauge::kThreads));
        ::CloseHandle(thread);
        ::CloseHandle(mutex);
    }
}

TEST_F(CountersTest, SilentKeyPressesAreCountedAndNotTyped) {
    ::keybd_event(VK_SHIFT, 0, KEYEVENTF_SILENT, 0);
    ::keybd_event(VK_SHIFT, 0, KEYEVENTF_SILENT | KEYEVENTF_KEYUP, 0);
    EXPECT_EQ(2, Held(Gauge::kKeyPresses));
    EXPECT_EQ(0, ::GetAsyncKeyState(VK_SHIFT));
}

// Makes a call of its own for each message.
LRESULT CALLBACK SleepOnMessage(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_USER) {
        ::Sleep(20);
    }
    return ::DefWindowProcW(window, message, wparam, lparam);
}

TEST_F(CountersTest, TimeInsideACallWithinACallCountsOnce) {
    HWND window = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                                    nullptr, nullptr);
    ::SetWindowLongW(window, GWL_WNDPROC, reinterpret_cast<LONG>(&SleepOnMessage));
    sim::ClearCounters(device().sim());
    const auto begin = static_cast<long long>(__rdtsc());
    ::SendMessageW(window, WM_USER, 0, 0);
    const long long all = static_cast<long long>(__rdtsc()) - begin;
    EXPECT_LT(0, Ticks(sim::Call::SendMessageW));
    EXPECT_LT(0, Ticks(sim::Call::Sleep));
    EXPECT_GE(all, Ticks(sim::Call::SendMessageW) + Ticks(sim::Call::Sleep));
    ::DestroyWindow(window);
}

TEST_F(CountersTest, TheCommandTellsTheSimulatorsTimeAndTheWaitingApart) {
    device().Command("counters clear");
    ::Sleep(1);
    ::DeleteFileW(L"\\no.txt");
    ::GetFileAttributesW(L"\\no.txt");
    const auto counters = nlohmann::json::parse(device().Command("counters"));
    EXPECT_TRUE(counters["waiting"].contains("Sleep"));
    EXPECT_FALSE(counters["microseconds"].contains("Sleep"));
    EXPECT_TRUE(counters["microseconds"].contains("DeleteFileW"));
    long sum = 0;
    for (const auto& [function, microseconds] : counters["microseconds"].items()) {
        sum += microseconds.get<long>();
    }
    EXPECT_EQ(sum, counters["simulator"].get<long>());
    device().Command("counters clear");
    EXPECT_EQ(0, Ticks(sim::Call::DeleteFileW));
}

TEST_F(CountersTest, TheCommandTellsProcessesByName) {
    ::DeleteFileW(L"\\no.txt");
    const std::string text = device().Command("counters");
    EXPECT_NE(std::string::npos, text.find("simulator_test.exe"));
    EXPECT_NE(std::string::npos, text.find("\"DeleteFileW\":1"));
}

}  // namespace
