/*
 * http_server_self.h - what stands behind HttpServer. http_server.cpp holds the loop, http_exchange.cpp
 * requests and files, web_sockets.cpp the sockets of events and pictures, pulse.cpp what is looked after
 * at times.
 *
 * Sessions belong to the serving thread. Others leave what is for them with post().
 */
#ifndef VBOARD_APP_SERVER_HTTP_SERVER_SELF_H
#define VBOARD_APP_SERVER_HTTP_SERVER_SELF_H

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <vector>

#include <libwebsockets.h>

#include "server/http_server.h"
#include "server/live_screen.h"
#include "server/workers.h"

namespace vboard_app
{

constexpr size_t kLongestBody = 64 << 10; // bytes of a request
constexpr size_t kMostThreads = 48;       // requests at once
constexpr int kMostConnections = 400;     // that are served; more are told so
constexpr size_t kMostSockets = 64;       // of them WebSockets
constexpr size_t kMostQueued = 4 << 20;   // bytes of events that a client has not taken

/* A request as it came. */
struct Exchange {
    std::string method, path;
    std::map<std::string, std::string> query; // without the token
    std::string token, host, origin, authorization, body;
    bool has_body = false;
    bool is_chunked = false; // a body of a length that is not told
};

/* A connection: with a request at a time, or a WebSocket. */
struct Session {
    enum class Kind { http, events, live };

    uint64_t id = 0;
    lws *wsi = nullptr;
    Kind kind = Kind::http;

    // http
    Exchange exchange;
    std::optional<Reply> reply; // there is one to send
    bool refused_early = false; // `reply` waits for the end of the body
    bool closes = false;        // behind the reply
    bool headers_sent = false;
    size_t body_sent = 0;

    // WebSockets
    std::string incoming;
    std::set<std::string> subscribed;
    struct Outgoing {
        std::string event; // a newer state takes an older one's place
        std::shared_ptr<const std::string> bytes;
    };
    std::deque<Outgoing> outgoing;
    size_t queued = 0; // bytes of them
};

class HttpServer::Self
{
public:
    Self(Board &board, Requests &requests, const std::string &address, int port);
    ~Self();

    /* Run on the serving thread, soon. Any thread. */
    void post(std::function<void()> job);

    static int callback(lws *wsi, lws_callback_reasons reason, void *user, void *in, size_t size);
    int handle(lws *wsi, lws_callback_reasons reason, Session **slot, void *in, size_t size);
    Session &open_session(lws *wsi, Session **slot, Session::Kind kind);
    void close_session(Session **slot);
    Session *find(uint64_t id);
    void serve();
    void run_posted();
    void finish();     // answers that are on their way still reach their clients
    bool has_unsent(); // of the serving thread

    // http_exchange.cpp
    int begin_exchange(lws *wsi, Session **slot);
    int take_body(Session &session, const void *bytes, size_t size);
    int end_body(Session &session);
    int write_reply(Session &session);
    std::optional<Reply> refused(const Exchange &exchange) const; // before anything is looked at
    void dispatch(Session &session);
    void send_reply(Session &session, Reply reply);
    Reply page_file(const std::string &path) const;

    // web_sockets.cpp
    int confirm_upgrade(lws *wsi);
    void established(lws *wsi, Session **slot);
    int received(Session &session, const void *bytes, size_t size);
    void take_text(Session &session);
    int write_socket(Session &session);
    void enqueue(Session &session, const std::string &event, std::shared_ptr<const std::string> bytes);
    void broadcast(const std::string &event, const nlohmann::json &data); // any thread
    void count_subscriptions();

    // pulse.cpp
    void on_event(const std::string &event, const nlohmann::json &data); // on the board's thread
    void pulse();
    void pulse_once();

    Board &board;
    Requests &requests;
    std::unique_ptr<Access> access;
    lws_context *context = nullptr;

    std::mutex posted_mutex;
    std::vector<std::function<void()>> posted; // guarded by posted_mutex
    std::atomic<bool> ends{false};
    std::atomic<int> at_work{0}; // jobs of the workers whose outcome is not with the sessions yet

    // Of the serving thread.
    std::map<uint64_t, std::unique_ptr<Session>> sessions;
    uint64_t next_session = 1;
    int connections = 0;
    size_t sockets = 0;

    std::atomic<int> want_state{0}, want_calls{0}, want_refusals{0};
    std::atomic<bool> follows_refusals{false};
    uint64_t calls_told = 0; // of the pulse's thread
    bool calls_were_wanted = false;

    std::mutex pulse_mutex;
    std::condition_variable pulse_changed;

    Workers workers{kMostThreads};
    std::unique_ptr<LiveScreen> live;
    std::thread serving, pulsing;
};

/* The exchange of a connection's request, from its headers. */
Exchange read_exchange(lws *wsi);

} // namespace vboard_app

#endif
