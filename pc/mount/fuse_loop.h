// Hands the calls of the system for a folder to a MountedTree.
#pragma once

#include <string>

#include "pc/mount/mounted_tree.h"

struct fuse;

namespace tolvenar::pc {

class FuseMount {
public:
    // A Failure when the folder cannot be mounted on.
    FuseMount(MountedTree& tree, const std::string& folder);
    // Unmounts.
    ~FuseMount();
    FuseMount(const FuseMount&) = delete;
    FuseMount& operator=(const FuseMount&) = delete;

    // Answers until somebody unmounts the folder or a signal asks for the end. False when the
    // system ended it.
    bool Run();

private:
    ::fuse* fuse_ = nullptr;
};

}  // namespace tolvenar::pc
