// A process's own tree views; the part of inspect.h that knows them.
#pragma once

#include "simulator/windows/inspect.h"

namespace sim::windows {

std::vector<TreeItem> TreeItems(HWND tree);
// `path`: the texts from the root, joined by '|'.
// An HTREEITEM; null when there is none.
void* FindTreeItem(HWND tree, const std::string& path);
bool SelectTreeItem(HWND tree, const std::string& path);

}  // namespace sim::windows
