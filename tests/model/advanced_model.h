// What a restore of the differences between two states must do to a device, from the states' and
// the device's images alone.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/model/object_versions.h"

namespace tests {

class AdvancedModel {
public:
    // Takes what `from` has beyond `to` off the device and writes what `to` has beyond `from`.
    // Databases are left alone unless told.
    AdvancedModel(const DeviceImage& from, const DeviceImage& to, bool with_databases);

    // Does what can be done to the device while these files are held open. True when a run of a
    // restore leaves nothing over; what a second one could still do is done too. It writes once
    // more what it would else delete, when `to` has a file or folder of the name.
    bool Run(DeviceImage& device, const std::set<std::wstring>& locked);
    // What is left over, a line each: "- " for what could not be deleted, "+ " for what could not
    // be written, and the object's name.
    std::multiset<std::string> Left() const;

private:
    using Paths = std::set<std::wstring>;
    struct Operation {
        std::string line;
        std::function<bool(DeviceImage&, const Paths&)> apply;
    };
    using Operations = std::vector<Operation>;

    void KeepWhatIsWanted();
    void CompareFiles(const DeviceImage& from, const DeviceImage& to);
    void CompareKeys(const DeviceImage& from, const DeviceImage& to);
    void CompareDatabases(const DeviceImage& from, const DeviceImage& to);
    void DeleteFile(const std::wstring& path, bool is_folder);
    static Operation FileToWrite(const std::wstring& path, const ImageFile& file);
    void WriteDatabase(const std::u16string& name, const sim::databases::Database& shape);
    void DeleteRecord(const std::u16string& database, std::uint32_t oid,
                      const sim::databases::Record& record);
    void WriteRecord(const std::u16string& database, std::uint32_t oid,
                     const sim::databases::Record& record);

    // Works off what can be; whether anything could.
    static bool WorkOff(Operations& operations, DeviceImage& device, const Paths& locked);

    Operations deletions_;
    Operations files_;
    std::map<std::string, Operation> wanted_;  // the files of `to` by the lines of their deletions
    Operations others_;
    std::set<std::uint32_t> matched_;  // records that both states hold as they are
    std::uint32_t next_id_ = 0xF0000000;
};

}  // namespace tests
