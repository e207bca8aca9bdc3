// What a restore from a damaged pair did to the device.
//
// Every case falls into exactly one class, the first of these that fits. "Wanted" is what the
// undamaged pair gives for the state that was restored, "before" and "after" are what the device
// holds. A restore that ends with 1 or 2 says that all is well.
//
// - exact: it says that all is well, and the device holds what is wanted.
// - older: the same, but of an earlier state than the last one: the pair has lost the last state's
//   record, and the program cannot know of it.
// - lost: an object that is in "before" and in what is wanted, in whatever version, is in neither
//   of the two versions afterwards. A record is known by its number, everything else by its name;
//   a version is the contents, without times and attributes.
// - silent: it says that all is well, and the device does not hold what is wanted.
// - refused: it says that something is wrong, or never began, and the device is as it was.
// - told: it says that something is wrong, and what it did is harmless.
//
// What the device had and the state has not may go in every class: a restore deletes it.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "storage/operations/result_code.h"
#include "tests/damage/holdings.h"

namespace tolvenar {

enum class Verdict { kExact, kOlder, kTold, kRefused, kLost, kSilent };
constexpr std::size_t kVerdicts = 6;
constexpr std::array<const char*, kVerdicts> kVerdictNames = {"exact",   "older", "told",
                                                              "refused", "lost",  "silent"};

struct Outcome {
    bool began = false;  // the storage was opened and has the state
    ResultCode code{};
    std::uint32_t state = 0;
    bool is_earlier = false;  // than the one that was asked for
};

// The names of what was lost.
std::vector<std::string> LostObjects(const Objects& before, const Objects& wanted,
                                     const Objects& after);

Verdict Judge(const Outcome& outcome, const Holdings& before, const Holdings& wanted,
              const Holdings& after);

inline bool IsBad(Verdict verdict) {
    return verdict == Verdict::kLost || verdict == Verdict::kSilent;
}

}  // namespace tolvenar
