// A folder of the host's file system that goes with all that is in it. Header only.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

namespace tests {

class TemporaryFolder {
public:
    TemporaryFolder() {
#ifdef _WIN32
        std::random_device random;
        path_ = std::filesystem::temp_directory_path() /
                ("tolvenar_" + std::to_string(random()) + "_" + std::to_string(random()));
        if (!std::filesystem::create_directory(path_)) {
            throw std::runtime_error("no folder " + path_.string());
        }
#else
        // mkdtemp wants six of this letter at the end, and puts others there.
        std::string name =
            (std::filesystem::temp_directory_path() / "tolvenar_").string() + std::string(6, 'X');
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no folder " + name);
        }
        path_ = name;
#endif
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
