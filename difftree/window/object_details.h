// What one version of an object is, in lines for a reader: size, time and attributes, and what it
// holds.
#pragma once

#include "platform/win32.h"

#include "difftree/model/data_text.h"
#include "storage/files/storage_view.h"
#include "storage/format/storage_reader.h"
#include "storage/opened/engine.h"

namespace tolvenar {

// Holds the storage file open for as long as it lives.
class ObjectDetails {
public:
    ObjectDetails(HINSTANCE instance, Engine& engine);
    ObjectDetails(const ObjectDetails&) = delete;
    ObjectDetails& operator=(const ObjectDetails&) = delete;

    // Appends the lines of a record of a difference list: a stored version is read from the storage
    // file, one that was never stored from the device. Of what it holds the start is shown. What
    // cannot be read is told in its place.
    void Append(const ObjectRecord& record, TextBuilder& text);

private:
    void AppendId(UINT id, TextBuilder& text) const;
    void AppendFormat(UINT id, std::uint32_t number, TextBuilder& text) const;
    void AppendTimeOf(const InfoBlockHead& head, TextBuilder& text) const;
    void AppendAttributes(std::uint32_t attributes, TextBuilder& text) const;
    void AppendHead(const InfoBlock& block, TextBuilder& text) const;
    bool AppendStoredData(const ObjectRecord& record, const InfoBlock& block, TextBuilder& text);
    bool AppendLiveData(const ObjectRecord& record, const InfoBlock& block, TextBuilder& text);
    void AppendData(const InfoBlock& block, const std::uint8_t* data, std::uint32_t size,
                    TextBuilder& text) const;
    void AppendFileStart(const std::uint8_t* data, std::uint32_t size, TextBuilder& text) const;

    HINSTANCE instance_;
    Engine& engine_;
    StorageMapping mapping_;
    bool has_storage_;
    MappedBytes bytes_{mapping_};
    StorageReader storage_{bytes_};
};

}  // namespace tolvenar
