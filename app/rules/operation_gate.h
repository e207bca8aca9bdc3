// Who may start what: the one request that is on its way, the one operation that runs, and what
// each wish of the user needs. Platform-free.
#pragma once

#include <atomic>

#include "app/rules/operation_request.h"

namespace tolvenar {

// What became of a message that asks for an operation.
enum class Taking {
    kDropped,       // an operation runs already
    kTaken,         // with the request of the page that posted it
    kOnlyAMessage,  // no page posted it: what it lacks is still to be found out
};

// Shared by the main thread, which puts requests, and the operation thread, which takes them. From
// Put to End there is no moment in which IsOccupied does not hold. A test looks at each write of a
// flag through a Flag of its own.
template <typename Flag>
class OperationGateOf {
public:
    // A request is on its way or an operation runs: no other may be asked for, nothing that it
    // works with may be changed and the program may not be closed.
    bool IsOccupied() const { return is_pending_ || is_busy_; }
    bool IsBusy() const { return is_busy_; }
    // Whether the main thread may look at the storage's lists: no operation is on them or about to
    // be.
    bool ListsAreFree() const { return !is_pending_ && !has_lists_; }

    // On the main thread, before the message is posted. False, and nothing put, while another
    // request is on its way.
    bool Put(const OperationRequest& request) {
        if (is_pending_) {
            return false;
        }
        request_ = request;
        KeepOrder();
        is_pending_ = true;
        return true;
    }
    // The message could not be posted.
    void Withdraw() { is_pending_ = false; }

    // On the operation thread, for a message of this kind and button: unless it is dropped the
    // operation begins, and what was put is in `request`.
    Taking Take(OperationRequest& request) {
        const bool is_put = IsPut(request);
        if (is_busy_) {
            if (is_put) {
                is_pending_ = false;
            }
            return Taking::kDropped;
        }
        has_lists_ = true;
        is_busy_ = true;
        if (!is_put) {
            return Taking::kOnlyAMessage;
        }
        request = request_;
        KeepOrder();
        is_pending_ = false;
        return Taking::kTaken;
    }
    // The operation has ended its work on the storage's lists; its report may follow.
    void ReleaseLists() { has_lists_ = false; }
    // The operation has ended.
    void End() {
        has_lists_ = false;
        is_busy_ = false;
    }

private:
    // Keeps the compiler from moving a request over a flag; volatile flags stay in order among
    // themselves. No more is needed: a device has one processor, and a PC's keep the order of
    // writes.
    static void KeepOrder() { std::atomic_signal_fence(std::memory_order_acq_rel); }

    // A message of another program may overtake the page's: what was put waits for its own.
    bool IsPut(const OperationRequest& wanted) const {
        if (!is_pending_) {
            return false;
        }
        KeepOrder();
        return request_.kind == wanted.kind && request_.button == wanted.button;
    }

    OperationRequest request_;  // the operation thread's while one is pending
    Flag is_pending_ = false;   // put and not taken yet
    Flag is_busy_ = false;
    Flag has_lists_ = false;
};
using OperationGate = OperationGateOf<volatile bool>;

}  // namespace tolvenar
