/* control_connection.cpp - see control_connection.h. */
#include "controls/control_connection.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace nvrec
{
namespace
{

constexpr auto kRequestLimit = std::chrono::seconds(2); /* from connecting to the end of the line */
constexpr auto kReplyLimit = std::chrono::seconds(2);   /* of a client that does not read         */
constexpr auto kLingerLimit = std::chrono::seconds(1);
constexpr size_t kMostDropped = 16 << 20;

bool may_come_later()
{
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

} // namespace

ControlConnection::ControlConnection(int descriptor, uint64_t number, Clock::time_point now)
    : descriptor_(descriptor), number_(number), connected_at_(now), deadline_(now + kRequestLimit)
{
}

ControlConnection::~ControlConnection()
{
    close(descriptor_);
}

/*
 * Poll nothing while a worker has the request: POLLHUP comes even when it is not asked for, and a client that
 * hung up would wake the server again and again.
 */
short ControlConnection::wanted() const
{
    if (state_ == State::kAsked) return 0;
    return state_ == State::kWriting ? POLLOUT : POLLIN;
}

void ControlConnection::read(Clock::time_point now)
{
    char bytes[4096];
    const ssize_t count = recv(descriptor_, bytes, sizeof bytes, MSG_DONTWAIT);
    if (count < 0 && may_come_later()) return;
    if (state_ == State::kLingering) {
        dropped_ += count > 0 ? static_cast<size_t>(count) : 0;
        if (count <= 0 || dropped_ > kMostDropped) state_ = State::kOver;
        return;
    }
    if (count <= 0) return refuse(now); /* the client may still read */
    const char *end = std::find(bytes, bytes + count, '\n');
    request_.append(bytes, static_cast<size_t>(end - bytes));
    if (request_.size() > kLongestRequest_bytes) return refuse(now);
    if (end == bytes + count) return;
    state_ = State::kAsked;
    deadline_ = Clock::time_point::max();
}

void ControlConnection::refuse(Clock::time_point now)
{
    reply("error: a request is one line of at most " + std::to_string(kLongestRequest_bytes) + " bytes\n",
          now);
}

void ControlConnection::reply(std::string text, Clock::time_point now)
{
    reply_ = std::move(text);
    state_ = State::kWriting;
    deadline_ = now + kReplyLimit;
    write(now);
}

void ControlConnection::write(Clock::time_point now)
{
    while (sent_ < reply_.size()) {
        const ssize_t count =
            send(descriptor_, reply_.data() + sent_, reply_.size() - sent_, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && may_come_later()) return;
        if (count <= 0) {
            state_ = State::kOver;
            return;
        }
        sent_ += static_cast<size_t>(count);
    }
    /* Do not close at once: if the client has sent more than was read, closing would throw the reply away. */
    shutdown(descriptor_, SHUT_WR);
    state_ = State::kLingering;
    deadline_ = now + kLingerLimit;
}

void ControlConnection::timed_out(Clock::time_point now)
{
    if (state_ == State::kReading) return refuse(now);
    state_ = State::kOver;
}

} // namespace nvrec
