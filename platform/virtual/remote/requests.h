/*
 * requests.h - the requests that the agent carries out: those of api/v1.json that are the board's, and
 * those that only the host makes:
 *
 *     boot            {boot_reason, rtc: {seconds, at_wall_us} or null, battery, monitor,
 *                     analog: [{input, lost, moving}], stepped: {board_us, wall_us} or null, pacing,
 *                     faults: [{call, nth, count, code}], line_buffered, follow_calls}: the board as it is
 *                     when the program begins
 *     picture         {device?, settled} -> {width, height, blank}, and I420 behind the answer
 *     calls.follow    {on}: events "calls"; asked again, those that were collected come before the answer
 *     refusals.follow {on}: events "refusal"
 */
#ifndef VBOARD_REMOTE_REQUESTS_H
#define VBOARD_REMOTE_REQUESTS_H

#include <string>

#include <nlohmann/json.hpp>

#include "channel.h"
#include "outbox.h"
#include "parameters.h"

namespace vboard_remote
{

struct Answer {
    nlohmann::json result = nlohmann::json::object();
    Bytes blob;
};

/* What a request may use. Requests that are not marked as waiting come one at a time. */
struct Context {
    Outbox &outbox;
};

struct Request {
    const char *name;
    Answer (*carry_out)(const Parameters &with, Context &context); // throws RequestFailure
    bool waits; // may take long: it is carried out beside the others
};

/* Null: there is none of that name. */
const Request *find_request(const std::string &name);

/* As the request "calls.follow". */
void follow_calls(bool on, Context &context);

/* The rooms of the table; each ends with a null name. */
extern const Request kInputRequests[];
extern const Request kBoardRequests[];
extern const Request kClockRequests[];
extern const Request kLookRequests[];
extern const Request kWaitRequests[];

/*
 * Call the control face, and fail with the board's own words when it gives -1. From a request.
 * @return its result, 0 or more
 */
template <typename Call> auto checked(Call call, const char *code_without_words = "refused");

/* Where the board's refusals on this thread go while it is in a request; empty: it refused nothing. */
std::string &own_refusal();
bool &is_in_request();

template <typename Call> auto checked(Call call, const char *code_without_words)
{
    own_refusal().clear();
    const auto result = call();
    if (result >= 0) return result;
    if (!own_refusal().empty()) throw RequestFailure("refused", own_refusal());
    const bool late = std::string(code_without_words) == "timed_out";
    throw RequestFailure(code_without_words,
                         late ? "what was waited for did not come in time" : "the board refused");
}

/* Follow the board's refusals for as long as the agent lives: for the requests' own, and the events. */
void follow_refusals(Outbox &outbox);
void end_following();

/* The result of "state". */
nlohmann::json board_state();

/* The trace that a request has begun; empty: none. */
std::string traced_file();

/* See quiet.cpp. */
bool wait_quiet(int timeout_ms);

} // namespace vboard_remote

#endif
