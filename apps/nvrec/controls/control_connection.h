/*
 * control_connection.h - one client of the control socket, from its connection to its end. Nothing here
 * waits: the server says when there is something to read or room to write.
 *
 * Threads: the server's.
 */
#pragma once

#include <string>

#include "controls/control_socket.h"
#include "host/clock.h"

namespace nvrec
{

class ControlConnection
{
public:
    enum class State {
        kReading,   /* the request is not whole yet                            */
        kAsked,     /* it is, and a worker has it                              */
        kWriting,   /* the reply goes out                                      */
        kLingering, /* it went; what the client still sends is read and dropped */
        kOver       /* to be closed                                            */
    };

    /** @param number  by which the server knows it */
    ControlConnection(int descriptor, uint64_t number, Clock::time_point now);
    ~ControlConnection();
    ControlConnection(const ControlConnection &) = delete;
    ControlConnection &operator=(const ControlConnection &) = delete;

    int descriptor() const { return descriptor_; }
    uint64_t number() const { return number_; }
    State state() const { return state_; }
    const std::string &request() const { return request_; }
    Clock::time_point connected_at() const { return connected_at_; }

    /** What poll(2) is to look for. */
    short wanted() const;

    /** When timed_out() has to be called at the latest; max() = never, while a worker has the request. */
    Clock::time_point deadline() const { return deadline_; }

    /** Read the bytes that are there; the state tells the result. */
    void read(Clock::time_point now);

    /** Begin to write the reply. */
    void reply(std::string text, Clock::time_point now);
    void write(Clock::time_point now);
    void timed_out(Clock::time_point now);

private:
    void refuse(Clock::time_point now);

    const int descriptor_;
    const uint64_t number_;
    const Clock::time_point connected_at_;
    State state_ = State::kReading;
    Clock::time_point deadline_;
    std::string request_;
    std::string reply_;
    size_t sent_ = 0;
    size_t dropped_ = 0; /* bytes read while lingering */
};

} // namespace nvrec
