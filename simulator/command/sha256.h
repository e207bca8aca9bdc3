// SHA-256 of a file's bytes, for `dump`.
#pragma once

#include <string>

namespace sim {

// 64 lower-case hex digits.
std::string Sha256(const std::string& bytes);

}  // namespace sim
