// What a device should hold after a series of changes, kept apart from the device: every change is
// made to both, and the model tells the contents that must be there.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "simulator/databases/database_store.h"
#include "tests/support/contents.h"
#include "tests/support/device_test.h"

namespace tests {

struct ModelFile {
    std::string bytes;
    std::uint32_t attributes = 0;
    std::uint64_t modified = 0;
};

using ModelValue = std::pair<std::uint32_t, std::string>;  // type and data

struct ModelDatabase {
    sim::databases::Database shape;
    std::vector<sim::databases::Record> records;  // in no order
};

struct DeviceModel {
    std::map<std::wstring, ModelFile> files;
    std::map<std::wstring, std::uint32_t> folders;  // attributes
    std::map<std::u16string, std::map<std::u16string, ModelValue>> keys;
    std::map<std::u16string, ModelDatabase> databases;

    Contents Expected() const;
};

// Makes changes on the device through the simulator, and in the model.
class ModelledDevice {
public:
    explicit ModelledDevice(TestDevice& device) : device_(device) {}
    DeviceModel& model() { return model_; }

    void PutFile(const std::wstring& path, const std::string& bytes);
    void SetAttributes(const std::wstring& path, std::uint32_t attributes);
    void Touch(const std::wstring& path, std::uint64_t time);
    void MakeFolder(const std::wstring& path);  // the one above is there
    void Remove(const std::wstring& path);      // a folder with all that is in it
    void Move(const std::wstring& from, const std::wstring& to);

    void CreateKey(const std::u16string& path);  // and those above
    void SetValue(const std::u16string& path, const std::u16string& name, const ModelValue& value);
    void DeleteValue(const std::u16string& path, const std::u16string& name);
    void DeleteKey(const std::u16string& path);  // with all below

    void CreateDatabase(const sim::databases::Database& shape);
    void DeleteDatabase(const std::u16string& name);
    void AddRecord(const std::u16string& database, const sim::databases::Record& record);
    // Record number `index` of the model.
    void ChangeRecord(const std::u16string& database, std::size_t index,
                      const sim::databases::Record& record);
    void DeleteRecord(const std::u16string& database, std::size_t index);

private:
    void NoteFile(const std::wstring& path, const std::string& bytes);
    std::uint32_t FindRecord(const sim::databases::Database& database,
                             const sim::databases::Record& record);

    TestDevice& device_;
    DeviceModel model_;
};

}  // namespace tests
