// Lists the databases of the object store by id.
#pragma once

#include <cstddef>
#include <memory>

#include "storage/objects/database_layer.h"

namespace tolvenar {

class DatabaseListing {
public:
    enum class End {
        kWhole,
        kCut,       // the enumeration ended before its end: what it gave is listed
        kNoMemory,  // the same for want of memory here
    };

    // A database that is deleted meanwhile ends an enumeration; it begins again then, three times.
    End Read(DatabaseLayer& layer);
    const CEOID* begin() const { return oids_.get(); }
    const CEOID* end() const { return oids_.get() + count_; }

private:
    DWORD ReadOnce(DatabaseLayer& layer);
    bool Add(CEOID oid);

    std::unique_ptr<CEOID[]> oids_;
    std::size_t count_ = 0;
    std::size_t capacity_ = 0;
    bool lacks_memory_ = false;
};

}  // namespace tolvenar
