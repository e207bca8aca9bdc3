// What every benchmark on a simulated device runs in.
#pragma once

#include <string>

#include "simulator/host/attach.h"
#include "simulator/host/host_files.h"
#include "storage/log/operation_log.h"

namespace bench {

// Runs `body` on a device that is made for it and gone afterwards; its result.
inline int OnNewDevice(int (*body)()) {
    const std::wstring folder = sim::host::FolderFromEnvironmentOrTemp(L"TOLVENAR_TEST_DEVICES") +
                                L"\\bench-" + sim::host::UniqueName();
    sim::host::MakeFolder(folder);
    sim::host::AttachProcess(folder);
    tolvenar::InstallOperationLog();
    const int result = body();
    sim::host::AttachProcess(L"");
    sim::host::RemoveTree(folder);
    return result;
}

}  // namespace bench
