/*
 * control_socket.h - the Unix socket on which a running recorder takes requests: one line of text in,
 * lines of text out, then the recorder closes.
 *
 *   request   WORD [ARGUMENT ...] \n         at most 255 bytes, whole within two seconds
 *   reply     "ok" \n, then lines of text    or    "error: REASON" \n
 *
 *   connected --line--> asked --a worker--> answered --written--> lingering --closed by the client-->
 *       |                                      ^                     until what it still sends is read,
 *       +--two seconds, too long, cut off------+                     so that it gets its reply
 *
 * Threads: the server has one that speaks with all clients at once and waits for none of them, and workers
 * that answer requests, so that a slow request delays no other. The client blocks its caller.
 */
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace nvrec
{

/** Answers a request, without its line end; a worker's thread. The reply, with its line ends. */
using ControlHandler = std::function<std::string(const std::string &request)>;

/** The longest request, without its line end. */
constexpr size_t kLongestRequest_bytes = 255;

/**
 * Where a user's recorder listens by default: $XDG_RUNTIME_DIR/nvrec.socket, or /tmp/nvrec-UID/nvrec.socket.
 */
std::string default_control_path();

class ControlServer
{
public:
    enum class Start { kListening, kTaken, kFailed };

    ControlServer();
    ~ControlServer();

    /**
     * Listen. Missing directories are made, for their owner alone; so is the socket. A socket that a
     * recorder left behind is replaced; that of a running one is not. A directory that others can write to is
     * refused, with the sticky bit or without, since another user could create the lock file first.
     * @return kTaken = another recorder listens there; kFailed = see error()
     */
    Start start(const std::string &path, ControlHandler handler);

    /**
     * End the threads and remove the socket. Clients that have not asked yet are dropped. This waits for
     * replies that are under way, so the handler has to return soon.
     */
    void stop();

    const std::string &error() const { return error_; }

private:
    struct Listening;

    std::string error_;
    std::unique_ptr<Listening> listening_; /* null = it does not run */
};

/** The result of a request to a running recorder. */
struct ControlReply {
    bool ok = false;
    std::string text; /* the lines behind "ok", or the reason */
};

/** Send one request. Nothing = no recorder listens there. */
std::optional<ControlReply> ask_recorder(const std::string &path, const std::string &request);

} // namespace nvrec
