// The trace of a device: one line of JSON for each call of any of its processes, in the file
// `trace.jsonl` of the device's folder.
#pragma once

#include <string>
#include <vector>

#include "simulator/gate/gate_file.h"
#include "simulator/store/device.h"

namespace sim {

// Starts with an empty trace.
void StartTrace(Device& device);
void StopTrace(Device& device);
// Its lines so far, oldest first.
std::vector<std::string> TraceLines(Device& device);

// Appends one line, whole even when several processes write at once.
void AppendTrace(GateFile& file, const std::wstring& folder, const std::string& line);

// `text` as a JSON string with its quotes; `text` is UTF-8.
std::string JsonText(const std::string& text);

}  // namespace sim
