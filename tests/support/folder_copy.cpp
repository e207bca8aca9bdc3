#include "tests/support/folder_copy.h"

#include <chrono>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "simulator/host/host_files.h"

namespace tests {
namespace {

// Counters and rules; they are the test's.
bool IsGate(const std::wstring& name) { return name == L"\\gate"; }

void ForEachFile(const std::wstring& folder, const std::wstring& inner,
                 const std::function<void(const std::wstring&)>& visit) {
    const sim::host::Listing listing = sim::host::List(folder + inner);
    for (const std::wstring& name : listing.files) {
        visit(inner + L"\\" + name);
    }
    for (const std::wstring& name : listing.folders) {
        ForEachFile(folder, inner + L"\\" + name, visit);
    }
}

// A process that was killed lets go of its files a moment later, and a program that has just ended
// cannot be written yet; that one has not changed either.
void Write(const std::wstring& file, const std::string& bytes) {
    constexpr int kTries = 200;
    for (int i = 0; i < kTries; ++i) {
        if (sim::host::ReadWhole(file) == bytes || sim::host::WriteWhole(file, bytes)) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("a device's file cannot be put back");
}

}  // namespace

FolderCopy::FolderCopy(const std::wstring& folder) {
    ForEachFile(folder, L"", [&](const std::wstring& name) {
        if (!IsGate(name)) {
            files_[name] = sim::host::ReadWhole(folder + name).value();
        }
    });
}

void FolderCopy::PutBack(const std::wstring& folder) const {
    std::vector<std::wstring> others;
    ForEachFile(folder, L"", [&](const std::wstring& name) {
        if (!IsGate(name) && files_.count(name) == 0) {
            others.push_back(folder + name);
        }
    });
    for (const std::wstring& other : others) {
        ::_wremove(other.c_str());
    }
    for (const auto& [name, bytes] : files_) {
        Write(folder + name, bytes);
    }
}

}  // namespace tests
