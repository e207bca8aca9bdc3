#include "simulator/windows/control_pipe.h"

#include <memory>
#include <windows.h>

namespace sim::windows {
namespace {

constexpr DWORD kBufferBytes = 65536;
constexpr DWORD kBusyTimeoutMs = 5000;

struct Server {
    HANDLE pipe;
    HDESK desktop;
    std::function<nlohmann::json(const nlohmann::json&)> answer;
};

bool WriteText(HANDLE pipe, const std::string& text) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(text.size());
    return ::WriteFile(pipe, text.data(), size, &written, nullptr) && written == size;
}

// One message, however long.
std::optional<std::string> ReadText(HANDLE pipe) {
    std::string text;
    std::string part(kBufferBytes, '\0');
    for (;;) {
        DWORD count = 0;
        const bool whole = ::ReadFile(pipe, &part[0], kBufferBytes, &count, nullptr) != 0;
        if (!whole && ::GetLastError() != ERROR_MORE_DATA) {
            return std::nullopt;
        }
        text.append(part, 0, count);
        if (whole) {
            return text;
        }
    }
}

void AnswerOne(Server& server) {
    const auto request = ReadText(server.pipe);
    if (!request) {
        return;
    }
    const nlohmann::json parsed = nlohmann::json::parse(*request, nullptr, false);
    if (WriteText(server.pipe, server.answer(parsed).dump())) {
        ::FlushFileBuffers(server.pipe);
    }
}

DWORD WINAPI Serve(void* param) {
    const std::unique_ptr<Server> server(static_cast<Server*>(param));
    ::SetThreadDesktop(server->desktop);
    for (;;) {
        if (!::ConnectNamedPipe(server->pipe, nullptr) &&
            ::GetLastError() != ERROR_PIPE_CONNECTED) {
            return 1;
        }
        AnswerOne(*server);
        ::DisconnectNamedPipe(server->pipe);
    }
}

}  // namespace

void ServePipe(const std::wstring& name,
               std::function<nlohmann::json(const nlohmann::json&)> answer) {
    HANDLE pipe = ::CreateNamedPipeW(
        name.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_WAIT,
        PIPE_UNLIMITED_INSTANCES, kBufferBytes, kBufferBytes, 0, nullptr);
    if (pipe == INVALID_HANDLE_VALUE) {
        return;
    }
    auto server = std::make_unique<Server>();
    server->pipe = pipe;
    server->desktop = ::GetThreadDesktop(::GetCurrentThreadId());
    server->answer = std::move(answer);
    HANDLE thread = ::CreateThread(nullptr, 0, Serve, server.get(), 0, nullptr);
    if (thread == nullptr) {
        ::CloseHandle(pipe);
        return;
    }
    server.release();
    ::CloseHandle(thread);
}

std::optional<nlohmann::json> AskPipe(const std::wstring& name, const nlohmann::json& request) {
    HANDLE pipe = INVALID_HANDLE_VALUE;
    while (pipe == INVALID_HANDLE_VALUE) {
        pipe = ::CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                             0, nullptr);
        if (pipe != INVALID_HANDLE_VALUE) {
            break;
        }
        // Between two callers the pipe is not connected yet; absent altogether it is nobody's.
        if (::GetLastError() != ERROR_PIPE_BUSY ||
            !::WaitNamedPipeW(name.c_str(), kBusyTimeoutMs)) {
            return std::nullopt;
        }
    }
    DWORD mode = PIPE_READMODE_MESSAGE;
    ::SetNamedPipeHandleState(pipe, &mode, nullptr, nullptr);
    std::optional<std::string> text;
    if (WriteText(pipe, request.dump())) {
        text = ReadText(pipe);
    }
    ::CloseHandle(pipe);
    if (!text) {
        return std::nullopt;
    }
    return nlohmann::json::parse(*text, nullptr, false);
}

}  // namespace sim::windows
