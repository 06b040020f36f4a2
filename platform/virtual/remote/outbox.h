/*
 * outbox.h - what waits to be written to the channel. Answers wait for room, on the agent's threads;
 * what the program's threads bring never waits: beyond a bound it is dropped and counted.
 */
#ifndef VBOARD_REMOTE_OUTBOX_H
#define VBOARD_REMOTE_OUTBOX_H

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "channel.h"
#include "vboard_calls.h"

namespace vboard_remote
{

/* A vboard_call with texts of its own. */
struct EndedCall {
    int64_t time_us, duration_us;
    uint32_t thread;
    bool failed;
    std::string name, arguments, result;
};

/* Any thread, but for write_all. */
class Outbox
{
public:
    /* An answer, or an event that must not be lost. Waits for room; nothing happens after the end. */
    void send(std::string text, Bytes blob = {});

    /* From the program's threads. */
    void add_call(const vboard_call &call);
    void add_refusal(const char *line);

    /* The writer's thread: write until the channel ends or nobody is to be told any more. */
    void write_all(Channel &channel);

    /* Nobody reads any more. */
    void end();

    /* Wait until all that is here now has been written, a short while at most. */
    void flush();

private:
    struct Message {
        std::string text;
        Bytes blob;
    };

    bool has_events() const { return !calls_.empty() || !refusals_.empty(); }
    void take_events();

    std::mutex mutex_; // guards all below
    std::condition_variable changed_, written_;
    std::deque<Message> messages_;
    size_t message_bytes_ = 0;
    std::vector<EndedCall> calls_;
    std::vector<std::string> refusals_;
    uint64_t lost_calls_ = 0, lost_refusals_ = 0; // since the last event of that kind
    bool ended_ = false, hurry_ = false, writing_ = false;
};

} // namespace vboard_remote

#endif
