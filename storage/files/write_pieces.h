// Writing much in pieces that each take seconds at most, so that the device stays awake between
// them. Header only.
#pragma once

#include <algorithm>
#include <cstdint>

#include "platform/keep_awake.h"

namespace tolvenar {

// A slow card takes some seconds for it.
constexpr std::uint32_t kPieceBytes = 0x100000;

// `write` is given where a piece begins and its length; it ends the whole by false.
template <typename Write>
bool WriteInPieces(std::uint32_t bytes, Write write) {
    std::uint32_t done = 0;
    do {
        const std::uint32_t length = std::min(bytes - done, kPieceBytes);
        if (length == kPieceBytes) {
            StayAwake();
        }
        if (!write(done, length)) {
            return false;
        }
        done += length;
    } while (done < bytes);
    return true;
}

}  // namespace tolvenar
