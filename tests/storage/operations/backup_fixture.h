// A device with an open storage, backups of it, and the blocks that they leave, written by hand.
#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>

#include "platform/unique_resource.h"
#include "storage/operations/backup_writer.h"
#include "tests/support/engine_test.h"

namespace tolvenar {

using Text = std::u16string;

constexpr std::uint32_t kHead = 236;  // of a silent storage

// Little-endian bytes. A character 0xFF stands for the unit U+00FF.
std::string Wide8(const std::string& ascii);
std::string Word(std::uint32_t value);
std::string Half(std::uint32_t value);
// A block as it stands in the storage file.
std::string Block(std::uint32_t first_field, std::uint32_t second_field, std::uint64_t time,
                  std::uint32_t data_bytes, unsigned type, const std::string& name);

class BackupTest : public EngineTest {
protected:
    bool Backup(std::uint32_t state, const char16_t* description = u"", bool keep_closed = false);
    // Puts what is on a fresh device into state 1, so that a test's own objects stand alone in 2.
    void BackupFreshDevice();

    std::string Sav() { return device().FileBytes(kSavPath); }
    std::string Journal() { return device().FileBytes(kJournalPath); }

    // The loaded journal's record of the object in `state`; null when there is none.
    const ObjectRecord* JournalRecord(std::uint16_t state, CEOID oid, ObjectType type);

    // Neither file of the storage is open and no list of the operation is left.
    void ExpectEverythingClosed();

    ResultCode code_ = ResultCode::kNotStarted;
    std::uint32_t bytes_needed_ = 0;
};

}  // namespace tolvenar
