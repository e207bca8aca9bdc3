// How a command ends, and the exception that ends it. Header only.
#pragma once

#include <stdexcept>
#include <string>

namespace tolvenar::pc {

enum class ExitCode {
    kDone = 0,
    kCannot = 1,
    kUsage = 2,
    kIncomplete = 3,  // done but for what was told
    kDamaged = 4,
    kNotAStorage = 5,
};

// The graver of two: damage tells more than what is missing.
constexpr ExitCode Graver(ExitCode a, ExitCode b) { return a < b ? b : a; }

class Failure : public std::runtime_error {
public:
    Failure(ExitCode exit_code, const std::string& what)
        : std::runtime_error(what), code(exit_code) {}

    const ExitCode code;
};

}  // namespace tolvenar::pc
