// Answers a browser of this machine, and nobody else.
#pragma once

#include <memory>
#include <string>

#include "pc/serve/reply.h"

namespace tolvenar::pc {

class Server {
public:
    using Answer = std::function<Reply(const Request& request)>;

    // Listens on 127.0.0.1 from now on; `port` 0 is any that is free. Calls to `answer`, and of its
    // replies' `read`, come one at a time. A Failure when the port is not to be had.
    Server(int port, Answer answer);
    // Every answer that is under way has ended.
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // Of the first page. A new token is in it.
    const std::string& address() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace tolvenar::pc
