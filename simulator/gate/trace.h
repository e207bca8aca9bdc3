// The trace of a device: one line of JSON for each call of any of its processes, in the file
// `trace.jsonl` of the device's folder.
#pragma once

#include <string>
#include <vector>

#include "simulator/gate/gate_file.h"

namespace sim {

// Starts with an empty trace.
void StartTrace(Device& device);
void StopTrace(Device& device);
// Its lines so far, oldest first.
std::vector<std::string> TraceLines(Device& device);

// While one lives, the calls of its thread are not traced: they are a command's and no program's.
// In a test's process a command allocates with the program's `new`. A trace that held what showing
// it allocates would grow by many lines for each line shown.
class UntracedThread {
public:
    explicit UntracedThread(Device& device);
    ~UntracedThread();
    UntracedThread(const UntracedThread&) = delete;
    UntracedThread& operator=(const UntracedThread&) = delete;

private:
    GateFile& gate_;
};

// What one process appends to the trace of the device in `folder`, opened at the first line.
class TraceFile {
public:
    explicit TraceFile(std::wstring folder) : folder_(std::move(folder)) {}
    ~TraceFile();
    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;
    // Appends one line, whole even when several threads and processes write at once.
    void Append(GateFile& gate, const std::string& line);

private:
    void* Opened();

    std::wstring folder_;
    void* volatile file_ = nullptr;
};

// `text` as a JSON string with its quotes; `text` is UTF-8.
std::string JsonText(const std::string& text);

}  // namespace sim
