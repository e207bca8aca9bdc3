// Where the difference tree gets its objects from, one after the other. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

#include "snapshot/records/failure_reasons.h"
#include "snapshot/records/object_record.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {

constexpr std::size_t kObjectNameUnits = 261;  // with terminator

struct EnumeratedObject {
    char16_t name[kObjectNameUnits];  // of a value: key path, U+00FF, value name; of a record: its
                                      // database
    ObjectType type;
    std::uint16_t flags;   // JF_* of its record
    FailureReason reason;  // why it could not be restored
    std::uint32_t dwOID;
    std::uint32_t hive;          // root key handle value of a registry object
    const ObjectRecord* record;  // in the list that is gone through
};

class DifferenceEnumerator {
public:
    // Answers of Next; any other is an object.
    static constexpr int kObject = 0;
    static constexpr int kEnd = -1;
    static constexpr int kEndOfList = -2;
    static constexpr int kNoObject = -3;  // to be called again
    static constexpr int kAbort = -4;

    virtual int Next(EnumeratedObject& object) = 0;
    // Reads a text property of the database record that Next gave last, cut where `text` is full.
    // False when the record has none of this identifier or cannot be read.
    virtual bool ReadTextProperty(std::uint32_t propid, TextBuilder& text) = 0;
    // Reads the data of the registry value that Next gave last as text. False when it is none or
    // cannot be read.
    virtual bool ReadValueText(TextBuilder& text) = 0;

protected:
    ~DifferenceEnumerator() = default;
};

}  // namespace tolvenar
