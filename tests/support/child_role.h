// What a second process of the test program does instead of running tests; see
// simulator/host/child.h. A role is a static object: `const tests::ChildRole holder(L"hold",
// [](const wchar_t* path) { … });`
#pragma once

#include "simulator/host/child.h"

namespace tests {

class ChildRole {
public:
    ChildRole(const wchar_t* name, int (*run)(const wchar_t* argument)) {
        if (sim::host::ChildRole() == name) {
            sim::host::EndChild(run(sim::host::ChildArgument().c_str()));
        }
    }
};

}  // namespace tests
