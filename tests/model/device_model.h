// What a device should hold after a series of changes, kept apart from the device: every change is
// made to both. The ids of the model mean nothing.
#pragma once

#include <cstdint>
#include <string>

#include "tests/support/contents.h"
#include "tests/support/device_test.h"

namespace tests {

// Makes changes on the device through the simulator, and in the model.
class ModelledDevice {
public:
    explicit ModelledDevice(TestDevice& device) : device_(device) {}
    DeviceImage& model() { return model_; }

    void PutFile(const std::wstring& path, const std::string& bytes);
    void SetAttributes(const std::wstring& path, std::uint32_t attributes);
    void Touch(const std::wstring& path, std::uint64_t time);
    void MakeFolder(const std::wstring& path);  // the one above is there
    void Remove(const std::wstring& path);      // a folder with all that is in it
    void Move(const std::wstring& from, const std::wstring& to);

    void CreateKey(const std::u16string& path);  // and those above
    void SetValue(const std::u16string& path, const std::u16string& name, const ImageValue& value);
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
    DeviceImage model_;
};

}  // namespace tests
