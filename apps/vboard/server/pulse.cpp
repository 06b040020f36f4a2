/* pulse.cpp - see http_server.h: events of the board, and what is looked after five times a second. */
#include "server/http_server_self.h"

namespace vboard_app
{
namespace
{

using nlohmann::json;
using namespace std::chrono_literals;

constexpr auto kPeriod = 200ms;

} // namespace

void HttpServer::Self::on_event(const std::string &event, const json &data)
{
    if (event == "calls") return requests.calls().add(data);
    if (event != "board") return broadcast(event, data);
    // Another program does not know what is followed.
    requests.calls().started_again();
    follows_refusals = false;
    // What is known beside it is asked for on another thread than the board's own.
    ++at_work;
    const bool begun = workers.run([this] {
        requests.program_began();
        try {
            broadcast("board", requests.board_told());
        } catch (const RequestError &) {
            // It has ended, and that is told next.
        }
        post([this] { --at_work; });
    });
    if (!begun) --at_work;
}

void HttpServer::Self::pulse()
{
    std::unique_lock lock(pulse_mutex);
    while (!ends) {
        lock.unlock();
        const auto next = std::chrono::steady_clock::now() + kPeriod;
        try {
            pulse_once();
        } catch (const std::exception &) {
            // Without a program, or with one that stands still, there is nothing to tell.
        }
        lock.lock();
        if (ends) break;
        if (want_state + want_calls + want_refusals > 0)
            pulse_changed.wait_until(lock, next);
        else
            pulse_changed.wait_for(lock, 1s);
    }
}

void HttpServer::Self::pulse_once()
{
    CallRing &ring = requests.calls();
    ring.look_at_time();
    const bool refusals = want_refusals > 0;
    if (refusals != follows_refusals) {
        board.request("refusals.follow", {{"on", refusals}});
        follows_refusals = refusals;
    }
    if (want_calls > 0) {
        if (!calls_were_wanted) calls_told = ring.newest();
        calls_were_wanted = true;
        ring.keep_collecting();
        const json newer = ring.newer(calls_told);
        if (!newer.is_null()) {
            calls_told = newer.at("next");
            broadcast("calls", newer);
        }
    } else {
        calls_were_wanted = false;
    }
    if (want_state > 0) broadcast("state", board.request("state", json::object()));
}

} // namespace vboard_app
