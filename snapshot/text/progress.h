// Progress towards whoever shows it. Platform-free.
#pragma once

#include <cstddef>

namespace tolvenar {

class Progress {
public:
    // Begins a task of `count` items: the item bar starts again.
    virtual void ProgressBegin(std::size_t count) = 0;
    // One item is done; with a text, a new phase begins and is announced.
    virtual void ProgressStep(const char16_t* text = nullptr) = 0;

protected:
    ~Progress() = default;
};

}  // namespace tolvenar
