// The pages and downloads of a storage, each by a name that is a word and numbers: no name of the
// storage stands in an address.
//
//   (nothing)                     all states
//   state-3                       what a state holds
//   changes-3                     what it changed
//   compare?older=1&newer=3       what differs between two
//   object-3-8123                 one object, by the state and the place of its block
//   file-3-8123                   its contents
//   key-3-8123.reg                a key and all below it
//   database-3-8123.csv, .json    a database
//   registry-3.reg, databases-3.json   all of a state
#pragma once

#include <cstdint>
#include <vector>

#include "pc/report/report_data.h"
#include "pc/serve/reply.h"
#include "pc/storage/stored_pair.h"

namespace tolvenar::pc {

class Site {
public:
    Site(StoredPair& pair, ReportData data) : pair_(pair), data_(std::move(data)) {}
    Site(const Site&) = delete;
    Site& operator=(const Site&) = delete;

    // One call at a time, those of a Reply's `read` among them.
    Reply Answer(const Request& request);

    StoredPair& pair() { return pair_; }
    const ReportData& data() const { return data_; }
    bool HasState(std::uint32_t number) const;
    // Those of one state stay for the next call.
    const std::vector<StoredObject>& Objects(std::uint16_t state);
    // Null when the state has none whose block is there.
    const StoredObject* Find(std::uint16_t state, std::uint32_t place);

private:
    Reply AnswerOrThrow(const Request& request);

    StoredPair& pair_;
    const ReportData data_;
    std::uint16_t kept_state_ = 0;
    std::vector<StoredObject> kept_objects_;
};

}  // namespace tolvenar::pc
