#include "simulator/system/last_error.h"

#include <windows.h>

namespace sim {

LastError::LastError() : value_(::GetLastError()) {}
LastError::~LastError() { ::SetLastError(value_); }

bool LastError::Answer(std::uint32_t error) {
    if (error != 0) {
        value_ = error;
    }
    return error == 0;
}

}  // namespace sim
