// The program's entry point. Everything that it allocates lives on one heap, released in one call.
#include <memory>

#include "app/start/startup.h"
#include "platform/heap.h"

namespace {

int RunOnHeap(HINSTANCE instance, const wchar_t* command_line) {
    const std::unique_ptr<tolvenar::Application> app(new tolvenar::Application(instance));
    return app ? tolvenar::RunProgram(*app, command_line) : 1;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPWSTR command_line, int) {
    if (!tolvenar::CreatePrivateHeap()) {
        return 0;
    }
    const int result = RunOnHeap(instance, command_line);
    tolvenar::DestroyPrivateHeap();
    return result;
}
