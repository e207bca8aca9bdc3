// Heaps with a count of their blocks, threads with a count of those that run, and what only leaves
// a trace: silent key presses and debug texts.
#include <memory>
#include <windows.h>

#include "simulator/exports/gated.h"
#include "simulator/system/heap_count.h"
#include "simulator/system/host_calls.h"

namespace {

struct ThreadStart {
    LPTHREAD_START_ROUTINE run;
    void* parameter;
};

unsigned long __stdcall RunThread(void* given) {
    const std::unique_ptr<ThreadStart> kept(static_cast<ThreadStart*>(given));
    const ThreadStart start = *kept;
    const DWORD code = start.run(start.parameter);
    sim::AddToGauge(sim::Gauge::kThreads, -1);
    return code;
}

HANDLE StartThread(LPSECURITY_ATTRIBUTES security, SIZE_T stack_bytes, LPTHREAD_START_ROUTINE run,
                   void* parameter, DWORD flags, LPDWORD id) {
    auto start = std::make_unique<ThreadStart>(ThreadStart{run, parameter});
    sim::AddToGauge(sim::Gauge::kThreads, 1);
    HANDLE thread =
        sim::host::StartThread(security, stack_bytes, &RunThread, start.get(), flags, id);
    if (thread == nullptr) {
        sim::AddToGauge(sim::Gauge::kThreads, -1);
        return nullptr;
    }
    start.release();  // RunThread's
    return thread;
}

// Windows CE ends a process with its first thread, which loads this library.
const DWORD first_thread = GetCurrentThreadId();

// What a heap has at first is real memory, and a full device has little of it. A test has its heap
// before it has a device.
bool HeapFits(SIZE_T first_bytes) {
    const std::int64_t limit =
        Device::HasCurrent() ? Device::Current().NumberSetting("heap.first", -1) : -1;
    return limit < 0 || first_bytes <= static_cast<std::uint64_t>(limit);
}

// Blocks of the process's own heap are counted together with LocalAlloc's, which come from it.
void* const kLocalHeap = nullptr;

}  // namespace

HANDLE WINAPI HeapCreate(DWORD options, SIZE_T first, SIZE_T most) {
    return Gated(
        Call::HeapCreate, HANDLE{},
        [&]() -> HANDLE {
            if (!HeapFits(first)) {
                sim::SetHostError(ERROR_NOT_ENOUGH_MEMORY);
                return nullptr;
            }
            return sim::host::CreateHeap(options, first, most);
        },
        options, first, most);
}

BOOL WINAPI HeapDestroy(HANDLE heap) {
    return Gated(
        Call::HeapDestroy, FALSE,
        [&]() -> BOOL {
            if (!sim::host::DestroyHeap(heap)) {
                return FALSE;
            }
            sim::ForgetHeap(heap);
            return TRUE;
        },
        heap);
}

LPVOID WINAPI HeapAlloc(HANDLE heap, DWORD flags, SIZE_T bytes) {
    return Gated(
        Call::HeapAlloc, LPVOID{},
        [&] {
            void* block = sim::host::AllocateBlock(heap, flags, bytes);
            if (block != nullptr) {
                sim::NoteTaken(heap, sim::host::BlockBytes(heap, block));
            }
            return block;
        },
        heap, flags, bytes);
}

BOOL WINAPI HeapFree(HANDLE heap, DWORD flags, LPVOID block) {
    return Gated(
        Call::HeapFree, FALSE,
        [&]() -> BOOL {
            const std::size_t bytes = sim::host::BlockBytes(heap, block);
            if (!sim::host::FreeBlock(heap, flags, block)) {
                return FALSE;
            }
            if (block != nullptr) {
                sim::NoteFreed(heap, bytes);
            }
            return TRUE;
        },
        heap, flags, block);
}

HLOCAL WINAPI LocalAlloc(UINT flags, SIZE_T bytes) {
    return Gated(
        Call::LocalAlloc, HLOCAL{},
        [&]() -> HLOCAL {
            void* block = sim::host::AllocateLocal(flags, bytes);
            if (block != nullptr) {
                sim::NoteTaken(kLocalHeap, sim::host::BlockBytes(kLocalHeap, block));
            }
            return block;
        },
        flags, bytes);
}

HLOCAL WINAPI LocalFree(HLOCAL block) {
    // Its success is a null, its failure the block.
    return Gated(
        Call::LocalFree, block,
        [&]() -> HLOCAL {
            const std::size_t bytes = sim::host::BlockBytes(kLocalHeap, block);
            HLOCAL left = sim::host::FreeLocal(block);
            if (left == nullptr && block != nullptr) {
                sim::NoteFreed(kLocalHeap, bytes);
            }
            return left;
        },
        block);
}

HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stack_bytes,
                           LPTHREAD_START_ROUTINE run, LPVOID parameter, DWORD flags, LPDWORD id) {
    return Gated(
        Call::CreateThread, HANDLE{},
        [&] { return StartThread(security, stack_bytes, run, parameter, flags, id); }, run,
        parameter, flags);
}

void WINAPI ExitThread(DWORD code) {
    {
        sim::GateEntry entry(Call::ExitThread, false);
        if (entry.wants_arguments()) {
            entry.AddArgument(sim::Describe(code));
        }
        entry.Decide();
        if (entry.traces()) {
            entry.Finish({});
        }
    }
    if (GetCurrentThreadId() == first_thread) {
        sim::EndThisProcess(code);
    }
    sim::AddToGauge(sim::Gauge::kThreads, -1);
    sim::host::EndThread(code);
}

// A silent press keeps the device awake and types nothing; it is counted, and so is every other.
void WINAPI keybd_event(BYTE key, BYTE scan, DWORD flags, ULONG_PTR) {
    GatedVoid(
        Call::keybd_event, [] { sim::NoteKey(); }, key, scan, flags);
}

void WINAPI OutputDebugStringW(LPCWSTR text) {
    GatedVoid(
        Call::OutputDebugStringW, [] {}, text);
}
