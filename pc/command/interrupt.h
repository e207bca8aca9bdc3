// Being asked to end while something is written: what is half done is taken back first.
#pragma once

namespace tolvenar::pc {

// While it lives a signal that asks the program to end is only remembered.
class InterruptWatch {
public:
    InterruptWatch();
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;
};

bool IsInterrupted();

}  // namespace tolvenar::pc
