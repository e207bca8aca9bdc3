// The platform's window to choose a file with, wherever the system has it.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

enum class FileChoice {
    kChosen,
    kNone,
    kNoChooser,  // the system has no such window
};
FileChoice ChooseFile(OPENFILENAMEW& request);

}  // namespace tolvenar
