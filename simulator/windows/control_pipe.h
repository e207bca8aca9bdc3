// The wire between a process that asks and the one that owns the windows: one JSON request, one
// JSON answer, on a named pipe of the answering process.
#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace sim::windows {

// Answers requests with `answer` on a thread of its own, on the desktop of the calling thread, for
// as long as the process lives.
void ServePipe(const std::wstring& name,
               std::function<nlohmann::json(const nlohmann::json&)> answer);

// None when nobody answers on `name`.
std::optional<nlohmann::json> AskPipe(const std::wstring& name, const nlohmann::json& request);

}  // namespace sim::windows
