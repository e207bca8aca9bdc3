#include "simulator/gate/call_time.h"

#include <algorithm>
#include <array>
#include <windows.h>
#include <x86intrin.h>

namespace sim {
namespace {

// Ticks of the calls made within the one that this thread is in.
thread_local long long inside = 0;

constexpr Call kWaiting[] = {
    Call::CallWindowProcW,
    Call::CreateDialogIndirectParamW,
    Call::CreateWindowExW,
    Call::DefWindowProcW,
    Call::DestroyWindow,
    Call::DialogBoxIndirectParamW,
    Call::DispatchMessageW,
    Call::EnableWindow,
    Call::EndDialog,
    Call::EnterCriticalSection,
    Call::EnumWindows,
    Call::GetMessageW,
    Call::GetOpenFileNameW,
    Call::GetSaveFileNameW,
    Call::IsDialogMessageW,
    Call::MessageBoxW,
    Call::MoveWindow,
    Call::MsgWaitForMultipleObjectsEx,
    Call::PeekMessageW,
    Call::SendDlgItemMessageW,
    Call::SendMessageW,
    Call::SetActiveWindow,
    Call::SetDlgItemTextW,
    Call::SetFocus,
    Call::SetForegroundWindow,
    Call::SetWindowPos,
    Call::SetWindowTextW,
    Call::ShowWindow,
    Call::Sleep,
    Call::TranslateAcceleratorW,
    Call::UpdateWindow,
    Call::WaitForMultipleObjects,
    Call::WaitForSingleObject,
};

long long Now() { return static_cast<long long>(__rdtsc()); }

long long HostCount() {
    LARGE_INTEGER count;
    ::QueryPerformanceCounter(&count);
    return count.QuadPart;
}

double MeasureTicks() {
    constexpr long long kPartOfSecond = 200;
    LARGE_INTEGER per_second;
    ::QueryPerformanceFrequency(&per_second);
    const long long begin = HostCount();
    const long long first = Now();
    long long count = begin;
    while (count - begin < per_second.QuadPart / kPartOfSecond) {
        count = HostCount();
    }
    const double microseconds =
        1e6 * static_cast<double>(count - begin) / static_cast<double>(per_second.QuadPart);
    return static_cast<double>(Now() - first) / microseconds;
}

}  // namespace

void CallTime::Begin(GateFile& gate, Call call) {
    sum_ = &gate.ticks[static_cast<std::size_t>(call)];
    inside_ = &inside;
    beside_ = *inside_;
    *inside_ = 0;
    begin_ = Now();
}

void CallTime::End() {
    if (sum_ == nullptr) {
        return;
    }
    const long long all = std::max(Now() - begin_, 0LL);
    ::InterlockedExchangeAdd64(sum_, std::max(all - *inside_, 0LL));
    *inside_ = beside_ + all;
}

double TicksInMicrosecond() {
    static const double ticks = MeasureTicks();
    return ticks;
}

bool IsWaiting(Call call) {
    return std::find(std::begin(kWaiting), std::end(kWaiting), call) != std::end(kWaiting);
}

}  // namespace sim
