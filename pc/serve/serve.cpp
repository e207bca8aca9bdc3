#include "pc/serve/serve.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <thread>

#include "pc/command/interrupt.h"
#include "pc/command/json.h"
#include "pc/command/opened.h"
#include "pc/serve/server.h"
#include "pc/serve/site.h"

namespace tolvenar::pc {
namespace {

constexpr auto kBetweenLooks = std::chrono::milliseconds(50);
constexpr int kLastPort = 65535;

void Tell(const Options& options, const std::string& address, Console& console) {
    if (options.json) {
        Json json;
        json["address"] = address;
        console.Line(json.dump());
    } else {
        console.Line(address);
        console.Line("Open this address in a browser. Ctrl-C ends it.");
    }
    // Whoever started this waits for the address.
    if (!console.out.Finish()) {
        throw Failure(ExitCode::kCannot, "the address cannot be told");
    }
}

ExitCode RunServe(const Options& options, Console& console) {
    const std::unique_ptr<StoredPair> pair = OpenWhole(options.storage, console);
    const InterruptWatch watch;
    Site site(*pair, GatherReport(*pair, console));
    const bool is_sound = site.data().is_sound();
    {
        const Server server(options.port,
                            [&site](const Request& request) { return site.Answer(request); });
        Tell(options, server.address(), console);
        while (!IsInterrupted()) {
            std::this_thread::sleep_for(kBetweenLooks);
        }
    }
    console.Tell("closed");
    return is_sound ? ExitCode::kDone : ExitCode::kDamaged;
}

void AddServeOptions(CLI::App& app, Options& options) {
    AddStorageOfAllStates(app, options);
    app.add_option("--port", options.port, "where it listens; any that is free otherwise")
        ->check(CLI::Range(1, kLastPort));
}

}  // namespace

const Command kServeCommand = {"serve", "shows a storage in a browser of this machine",
                               "tolvenar serve Home.sav", AddServeOptions, RunServe};

}  // namespace tolvenar::pc
