// A folder of the host's file system that goes with all that is in it. Native; header only.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace tests {

class TemporaryFolder {
public:
    TemporaryFolder() {
        // mkdtemp wants six of this letter at the end, and puts others there.
        std::string name =
            (std::filesystem::temp_directory_path() / "tolvenar_").string() + std::string(6, 'X');
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no folder " + name);
        }
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // Path of a file in it.
    std::string In(const std::string& name) const { return (path_ / name).string(); }
    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(In(name), std::ios::binary) << bytes;
    }

private:
    std::filesystem::path path_;
};

}  // namespace tests
