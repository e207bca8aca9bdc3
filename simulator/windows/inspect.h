// What a process can tell about its own windows, and do with them. For sources that include the
// host's <windows.h>; the messages carry pointers, so this runs inside the process that owns the
// windows.
#pragma once

#include <windows.h>

#include "simulator/windows/control.h"

namespace sim::windows {

std::string ClassOf(HWND window);

// SendMessage that gives up after a few seconds; 0 then.
LRESULT Ask(HWND window, UINT message, WPARAM wparam = 0, LPARAM lparam = 0);

// `top` and its descendants.
std::vector<Window> Describe(HWND top);
// Those of them that are visible.
std::vector<Window> DescribeVisible(HWND top);
// `top` alone.
std::vector<Window> DescribeTop(HWND top);
// The controls `id` below `top` and the windows that they stand in.
std::vector<Window> DescribeControls(HWND top, int id);

bool SetControlText(HWND control, const std::string& text);
bool SelectItem(HWND control, const std::string& item);

}  // namespace sim::windows
