#include "pc/serve/server.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <httplib.h>
#include <mutex>
#include <thread>

#include "pc/serve/disposition.h"
#include "pc/serve/token.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {
namespace {

constexpr const char* kLoopback = "127.0.0.1";
constexpr std::size_t kThreads = 4;
constexpr std::uint32_t kPieceBytes = 64 * 1024;
constexpr std::time_t kPatienceSeconds = 5;

// A page has no script, loads nothing but its style, stands in no other page, and tells nobody its
// address.
const httplib::Headers kHeaders = {
    {"Content-Security-Policy",
     "default-src 'none'; style-src 'self'; form-action 'self'; base-uri 'none'; "
     "frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"X-Frame-Options", "DENY"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cache-Control", "no-store"},
};

void Refuse(httplib::Response& response, int status, const char* told) {
    response.status = status;
    response.set_content(told, "text/plain; charset=utf-8");
}

// The library would compress a body as a whole, which takes it a minute for ten megabytes; what is
// read piece by piece goes out as it is.
void ReadFromBody(Reply& reply) {
    reply.read_bytes = static_cast<std::uint32_t>(reply.body.size());
    reply.read = [body = std::make_shared<const std::string>(std::move(reply.body))](
                     std::uint32_t offset, std::uint32_t bytes, std::string& piece) {
        piece = body->substr(offset, bytes);
        return true;
    };
}

}  // namespace

struct Server::Parts {
    explicit Parts(Answer answered_by) : answer(std::move(answered_by)) {}

    void Handle(const httplib::Request& asked, httplib::Response& response);
    void Send(Reply reply, httplib::Response& response);

    const Answer answer;
    const std::string token = NewToken();
    std::string host;  // as a browser that was led here names it
    std::string address;
    std::mutex one_at_a_time;
    httplib::Server http;
    std::thread thread;
};

// A name that an attacker lets point to this machine comes with its own Host.
void Server::Parts::Handle(const httplib::Request& asked, httplib::Response& response) {
    if (asked.get_header_value_count("Host") != 1 || asked.get_header_value("Host") != host) {
        return Refuse(response, 421, "Not this host.\n");
    }
    const std::string& path = asked.path;
    const std::size_t begin = 1 + token.size();
    if (path.size() <= begin || path[begin] != '/' ||
        !IsToken(std::string_view(path).substr(1, token.size()), token)) {
        return Refuse(response, 404, "Not here.\n");
    }
    if (asked.method != "GET" && asked.method != "HEAD") {
        return Refuse(response, 405, "Nothing is taken.\n");
    }
    Request request{path.substr(begin + 1), {asked.params.begin(), asked.params.end()}};
    const std::lock_guard<std::mutex> guard(one_at_a_time);
    Send(answer(request), response);
}

void Server::Parts::Send(Reply reply, httplib::Response& response) {
    response.status = reply.status;
    if (!reply.saved_as.empty()) {
        response.set_header("Content-Disposition", DispositionOf(reply.saved_as));
    }
    if (!reply.read) {
        ReadFromBody(reply);
    }
    if (reply.read_bytes == 0) {
        response.set_content("", reply.type);
        return;
    }
    response.set_content_provider(
        reply.read_bytes, reply.type,
        [this, read = reply.read](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
            std::string piece;
            {
                const std::lock_guard<std::mutex> guard(one_at_a_time);
                if (!read(static_cast<std::uint32_t>(offset),
                          static_cast<std::uint32_t>(std::min<std::size_t>(length, kPieceBytes)),
                          piece)) {
                    return false;
                }
            }
            return sink.write(piece.data(), piece.size());
        });
}

Server::Server(int port, Answer answer) : parts_(std::make_unique<Parts>(std::move(answer))) {
    httplib::Server& http = parts_->http;
    // Two programs must not listen on one port, which the library would let them.
    http.set_socket_options([](socket_t socket) {
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    http.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    http.set_default_headers(kHeaders);
    http.set_read_timeout(kPatienceSeconds);
    http.set_write_timeout(kPatienceSeconds);
    http.set_keep_alive_timeout(1);
    http.set_payload_max_length(0);
    http.set_pre_routing_handler(
        [parts = parts_.get()](const httplib::Request& asked, httplib::Response& response) {
            parts->Handle(asked, response);
            return httplib::Server::HandlerResponse::Handled;
        });
    const bool is_bound = port == 0 ? (port = http.bind_to_any_port(kLoopback)) > 0
                                    : http.bind_to_port(kLoopback, port);
    if (!is_bound) {
        throw Failure(ExitCode::kCannot, "the port is not to be had");
    }
    parts_->host = fmt::format("{}:{}", kLoopback, port);
    parts_->address = fmt::format("http://{}/{}/", parts_->host, parts_->token);
    parts_->thread = std::thread([&http] { http.listen_after_bind(); });
    while (!http.is_running()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

Server::~Server() {
    if (parts_->thread.joinable()) {
        parts_->http.stop();
        parts_->thread.join();
    }
}

const std::string& Server::address() const { return parts_->address; }

}  // namespace tolvenar::pc
