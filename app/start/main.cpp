// The program's entry point. Everything that it allocates lives on one heap, released in one call.
#include <memory>

#include "app/operations/messages.h"
#include "app/start/startup.h"
#include "build_text.h"
#include "platform/heap.h"

namespace {

int RunOnHeap(HINSTANCE instance, const wchar_t* command_line) {
    const std::unique_ptr<tolvenar::Application> app(new tolvenar::Application(instance));
    return app ? tolvenar::RunProgram(*app, command_line, TOLVENAR_BUILD) : 1;
}

// A launch with a reason has nobody in front of it.
bool HasUser(const wchar_t* command_line) {
    return command_line == nullptr || command_line[0] == 0;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPWSTR command_line, int) {
    if (!tolvenar::CreatePrivateHeap()) {
        if (HasUser(command_line)) {
            tolvenar::ShowMemoryMessage(nullptr);
        }
        return 1;
    }
    const int result = RunOnHeap(instance, command_line);
    tolvenar::DestroyPrivateHeap();
    return result;
}
