// Where the difference tree reads the contents of objects that were never stored. Platform-free.
#pragma once

#include <cstdint>

#include "snapshot/records/object_record.h"
#include "snapshot/text/text_buffer.h"
#include "storage/format/info_block.h"

namespace tolvenar {

class LiveContents {
public:
    // A text property of a database record that `block` describes, cut where `text` is full. False
    // when it has none of this identifier or cannot be read.
    virtual bool ReadTextProperty(const ObjectRecord& record, const InfoBlock& block,
                                  std::uint32_t propid, TextBuilder& text) = 0;
    // The data of a registry value as text. False when it is none or cannot be read.
    virtual bool ReadValueText(const ObjectRecord& record, TextBuilder& text) = 0;

protected:
    ~LiveContents() = default;
};

}  // namespace tolvenar
