// SHA-256 (FIPS 180-4) of a byte string, as lower-case hex: how a dump names a file's content.
#pragma once

#include <string>

namespace sim::files {

std::string Sha256(const std::string& bytes);

}  // namespace sim::files
