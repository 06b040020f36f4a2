/* requests.cpp - the table of requests, and what the board says while they are carried out. */
#include "requests.h"

#include <atomic>

#include "board_functions.h"

namespace vboard_remote
{
namespace
{

std::atomic<bool> refusals_are_events{false};

// On the thread that was refused, the board's locks held: never waits, never throws.
void note_refusal(const char *line, void *user)
{
    try {
        if (is_in_request())
            own_refusal() = line;
        else if (refusals_are_events.load(std::memory_order_relaxed))
            static_cast<Outbox *>(user)->add_refusal(line);
    } catch (const std::exception &) {
        // No memory: one line less.
    }
}

void note_call(const vboard_call *call, void *user)
{
    try {
        static_cast<Outbox *>(user)->add_call(*call);
    } catch (const std::exception &) {
        // No memory: one call less.
    }
}

Answer follow_refusals_as_events(const Parameters &with, Context &)
{
    refusals_are_events = with.boolean("on");
    return {};
}

Answer follow_calls_as_asked(const Parameters &with, Context &context)
{
    follow_calls(with.boolean("on"), context);
    return {};
}

const Request kFollowRequests[] = {{"calls.follow", follow_calls_as_asked, false},
                                   {"refusals.follow", follow_refusals_as_events, false},
                                   {nullptr, nullptr, false}};

} // namespace

void follow_calls(bool on, Context &context)
{
    static bool following = false; // requests that do not wait come one at a time
    if (on && following) return context.outbox.flush();
    if (on != following)
        checked([&] { return vboard_calls_follow(on ? note_call : nullptr, &context.outbox); });
    following = on;
}

std::string &own_refusal()
{
    thread_local std::string line;
    return line;
}

bool &is_in_request()
{
    thread_local bool in_request = false;
    return in_request;
}

void follow_refusals(Outbox &outbox)
{
    vboard_refusals_follow(note_refusal, &outbox);
}

void end_following()
{
    refusals_are_events = false;
    vboard_calls_follow(nullptr, nullptr);
}

const Request *find_request(const std::string &name)
{
    for (const Request *room :
         {kInputRequests, kBoardRequests, kClockRequests, kLookRequests, kWaitRequests, kFollowRequests})
        for (const Request *request = room; request->name != nullptr; ++request)
            if (name == request->name) return request;
    return nullptr;
}

} // namespace vboard_remote
