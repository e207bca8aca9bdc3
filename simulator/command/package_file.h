// A Windows CE installation file: a cabinet whose part NAME.000 says what goes where.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sim {

struct PackageFile {
    std::string folder;
    std::string name;
    std::string bytes;
};
struct PackageValue {
    std::string key;  // HKCU\...
    std::string name;
    bool is_number = false;
    std::uint32_t number = 0;
    std::string text;
    bool keeps_existing = false;
};
struct PackageLink {
    unsigned folder = 0;  // the number of a folder of the system's
    std::string name;
    std::size_t target = 0;  // an entry of the files
};
struct Package {
    std::string name;
    std::string provider;
    std::uint32_t processor = 0;         // 0: any
    std::uint32_t major = 0, minor = 0;  // the oldest system
    std::vector<PackageFile> files;
    std::vector<PackageValue> values;
    std::vector<PackageLink> links;
};

// Throws CommandError for bytes that are no such file, or a compressed one.
Package ReadPackage(const std::string& bytes);

}  // namespace sim
