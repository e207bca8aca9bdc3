// Arguments: "first" makes a storage of the device, "again" does what a backup does that finds no
// change, "restore" writes everything in the storage back, "load" reads the journal alone.
#include "platform/win32.h"

#include <commctrl.h>

#include "app/operations/progress_popup.h"
#include "app/operations/window_progress.h"
#include "autobackup/agent_control.h"
#include "benchmarks/floor/floor.h"
#include "platform/heap.h"

namespace floor_program {
namespace {

constexpr int kSteps = 11;

void RunOperation(const wchar_t* what, tolvenar::Progress& progress) {
    for (int i = 0; i < kSteps; ++i) {
        progress.ProgressStep(u"Working...");
    }
    Things things;
    ScanDevice(things);
    if (::wcscmp(what, L"first") == 0) {
        WriteStorage(things, progress);
        return;
    }
    ReadStorage();
    if (::wcscmp(what, L"restore") == 0) {
        WriteBack(CountRecords(), progress);
    }
}

void Run(HINSTANCE instance, const wchar_t* what) {
    INITCOMMONCONTROLSEX controls = {sizeof controls, 0x12E};
    ::InitCommonControlsEx(&controls);
    ::FindWindowW(L"TolvenarOperationClass", nullptr);
    LoadJournal();
    if (::wcscmp(what, L"load") == 0) {
        return;
    }
    tolvenar::ProgressWindows windows{};
    tolvenar::WindowProgress progress(windows);
    tolvenar::ProgressPopup popup(instance, windows);
    popup.Show(nullptr, L"Floor", kSteps);
    tolvenar::CloseAgent();
    RunOperation(what, progress);
}

}  // namespace
}  // namespace floor_program

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPWSTR command_line, int) {
    if (!tolvenar::CreatePrivateHeap()) {
        return 1;
    }
    floor_program::Run(instance, command_line);
    tolvenar::DestroyPrivateHeap();
    return 0;
}
