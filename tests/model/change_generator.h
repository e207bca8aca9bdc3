// Random changes of a device, the same ones for the same seed. Left out are the changes that the
// program does not see or cannot take back, which have tests of their own: Booleans, real numbers
// and sort properties, attributes of folders, read-only files, types and sort orders of databases.
#pragma once

#include <array>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/model/device_model.h"

namespace tests {

constexpr std::size_t kValueKinds = 16;
// All data that values ever have. Some have the same low byte of their checksum, so that an
// identifier does not tell one from the other; some differ in their type alone.
const std::array<ImageValue, kValueKinds>& ValuePalette();

class ChangeGenerator {
public:
    ChangeGenerator(ModelledDevice& device, std::uint32_t seed) : device_(device), random_(seed) {}

    // Makes one change and tells it.
    std::string Change();
    // As many as `most`.
    std::string ChangeSome(std::size_t most);
    std::uint32_t Below(std::size_t limit) {
        return static_cast<std::uint32_t>(random_() % static_cast<std::uint32_t>(limit));
    }

private:
    std::string WriteFile();
    std::string ChangeAttributes();
    std::string TouchFile();
    std::string MakeFolder();
    template <bool of_folder>
    std::string Remove();
    template <bool of_folder>
    std::string Move();
    std::string CreateKey();
    std::string SetValue();
    std::string DeleteValue();
    std::string DeleteKey();
    std::string CreateDatabase();
    std::string DeleteDatabase();
    std::string AddRecord();
    std::string ChangeRecord();
    std::string DeleteRecord();

    DeviceImage& model() { return device_.model(); }
    template <typename Map>
    typename Map::key_type AnyKeyOf(const Map& map) {
        return std::next(map.begin(), static_cast<std::ptrdiff_t>(Below(map.size())))->first;
    }
    std::vector<std::wstring> Paths(bool of_folders);
    std::wstring AnyPath(bool of_folder);  // "" when there is none
    std::wstring AnyFolder();              // "" is the root
    std::wstring FreePath();               // in a folder that is there; "" when the name is taken
    std::string AnyBytes();
    sim::databases::Record AnyRecord();
    // A database with records; "" when there is none.
    std::u16string DatabaseWithRecords();

    ModelledDevice& device_;
    std::mt19937 random_;
};

}  // namespace tests
