// Which calls make or end something that a gauge counts.
#pragma once

#include <array>

#include "simulator/gate/gate_file.h"

namespace sim {

struct Effect {
    Gauge gauge = Gauge::kNone;
    signed char change = 0;
};

struct EffectRow {
    Call call;
    Gauge gauge;
    signed char change;
};

// Heap blocks, threads, windows and the simulator's own handles are counted where they are kept,
// which know what the result alone hides; here stand the handles that are the host's.
constexpr EffectRow kEffectRows[] = {
    {Call::CreateEventW, Gauge::kHandles, 1},
    {Call::CreateMutexW, Gauge::kHandles, 1},
    {Call::CreateThread, Gauge::kHandles, 1},
    {Call::CreateCompatibleBitmap, Gauge::kGdiObjects, 1},
    {Call::CreateCompatibleDC, Gauge::kGdiObjects, 1},
    {Call::CreateDIBSection, Gauge::kGdiObjects, 1},
    {Call::CreateFontIndirectW, Gauge::kGdiObjects, 1},
    {Call::CreatePen, Gauge::kGdiObjects, 1},
    {Call::CreateSolidBrush, Gauge::kGdiObjects, 1},
    {Call::GetDC, Gauge::kGdiObjects, 1},
    {Call::LoadBitmapW, Gauge::kGdiObjects, 1},
    {Call::DeleteDC, Gauge::kGdiObjects, -1},
    {Call::DeleteObject, Gauge::kGdiObjects, -1},
    {Call::ReleaseDC, Gauge::kGdiObjects, -1},
    {Call::keybd_event, Gauge::kKeyPresses, 1},
};

constexpr std::array<Effect, kCallCount> MakeEffects() {
    std::array<Effect, kCallCount> effects{};
    for (const EffectRow& row : kEffectRows) {
        effects[static_cast<std::size_t>(row.call)] = {row.gauge, row.change};
    }
    return effects;
}
inline constexpr std::array<Effect, kCallCount> kEffects = MakeEffects();

}  // namespace sim
