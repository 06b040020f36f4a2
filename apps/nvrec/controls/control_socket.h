/*
 * control_socket.h - the Unix socket on which a running recorder takes requests: one line of text in,
 * lines of text out, then the recorder closes.
 *
 *   request   WORD [ARGUMENT ...] \n         at most 255 bytes
 *   reply     "ok" \n, then lines of text    or    "error: REASON" \n
 *
 * Threads: the server runs one of its own, which takes one connection after the other and gives a
 * silent one two seconds. The client blocks its caller.
 */
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <thread>

namespace nvrec
{

/** Answers a request, without its line end; the server's thread. The reply, with its line ends. */
using ControlHandler = std::function<std::string(const std::string &request)>;

/**
 * Where a user's recorder listens when nothing else is said: $XDG_RUNTIME_DIR/nvrec.socket, or
 * /tmp/nvrec-UID/nvrec.socket.
 */
std::string default_control_path();

class ControlServer
{
public:
    enum class Start { kListening, kTaken, kFailed };

    ~ControlServer() { stop(); }

    /**
     * Listen. Missing directories are made, for their owner alone; so is the socket. A socket that a
     * recorder left behind is replaced; that of a running one is not.
     * @return kTaken = another recorder listens there; kFailed = see error()
     */
    Start start(const std::string &path, ControlHandler handler);

    /** End the thread and remove the socket. */
    void stop();

    const std::string &error() const { return error_; }

private:
    Start fail(Start result, const std::string &reason);
    bool lock(const std::string &path);
    void run();
    void serve(int connection);

    ControlHandler handler_;
    std::string path_;
    std::string error_;
    int lock_ = -1; /* of PATH.lock: tells a running recorder from one that died */
    int socket_ = -1;
    int end_ = -1; /* eventfd: stop() */
    std::thread thread_;
};

/** What a request to a running recorder gave. */
struct ControlReply {
    bool ok = false;
    std::string text; /* the lines behind "ok", or the reason */
};

/** Send one request. Nothing = no recorder listens there. */
std::optional<ControlReply> ask_recorder(const std::string &path, const std::string &request);

} // namespace nvrec
