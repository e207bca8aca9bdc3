#include "pc/command/interrupt.h"

#include <csignal>

namespace tolvenar::pc {
namespace {

#ifdef _WIN32
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGBREAK};
#else
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
#endif

volatile std::sig_atomic_t interrupted = 0;

void Remember(int) { interrupted = 1; }

}  // namespace

InterruptWatch::InterruptWatch() {
    interrupted = 0;
    for (const int signal : kSignals) {
        std::signal(signal, Remember);
    }
}

InterruptWatch::~InterruptWatch() {
    for (const int signal : kSignals) {
        std::signal(signal, SIG_DFL);
    }
    interrupted = 0;
}

bool IsInterrupted() { return interrupted != 0; }

}  // namespace tolvenar::pc
