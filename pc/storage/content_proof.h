// Proves the contents of every stored version, on two processors where there are two.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "pc/storage/stored_pair.h"

namespace tolvenar::pc {

class ContentProof {
public:
    // Begins in another thread: until Finish the pair may be used as by nobody else.
    explicit ContentProof(StoredPair& pair);
    ~ContentProof();
    ContentProof(const ContentProof&) = delete;
    ContentProof& operator=(const ContentProof&) = delete;

    // Takes part until all is proved. Calls `progress` with numbers of bytes that were proved since
    // the last call. What is wrong with each version, in the order of the check's.
    template <typename Progress>
    const std::vector<Damage>& Finish(Progress progress) {
        std::uint64_t told = 0;
        while (ProveNextPart(own_reader_)) {
            const std::uint64_t proved = proved_bytes_;
            progress(proved - told);
            told = proved;
        }
        Join();
        return damage_;
    }

private:
    bool ProveNextPart(StorageReader& reader);
    void Join();

    const PairCheck& check_;
    std::vector<const StoredVersion*> parts_;  // where each begins, and the end of the last one
    std::atomic<std::size_t> next_part_{0};
    std::atomic<std::uint64_t> proved_bytes_{0};
    std::vector<Damage> damage_;
    StorageReader own_reader_;
    StorageReader helper_reader_;
    std::thread helper_;
};

}  // namespace tolvenar::pc
