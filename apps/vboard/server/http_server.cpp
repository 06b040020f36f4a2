/* http_server.cpp - see http_server.h: the sockets' loop. */
#include "server/http_server.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <future>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "server/http_server_self.h"

namespace vboard_app
{
namespace
{

constexpr unsigned kSilence = 10; // seconds until a connection that says nothing is closed
constexpr int kKeepAlive = 15;    // and one between two requests

constexpr auto kLastWords = std::chrono::milliseconds(500); // for clients to take what they were not sent yet
constexpr auto kGlance = std::chrono::milliseconds(5);

constexpr size_t kPerConnection_bytes = sizeof(void *); // its Session

const lws_protocols kProtocols[] = {
    {"vboard", HttpServer::Self::callback, kPerConnection_bytes, kLongestBody, 0, nullptr, 0},
    {nullptr, nullptr, 0, 0, 0, nullptr, 0},
};

const lws_retry_bo_t kIdle = {nullptr, 0, 0, 20, 35, 0}; // seconds until a ping, and until the end

std::string told(const std::string &address, int port)
{
    return (address.find(':') == std::string::npos ? address : "[" + address + "]") + ":" +
           std::to_string(port);
}

/* Whether the port can be had: the library that serves it does not tell why it could not. */
void try_port(const std::string &address, int port)
{
    sockaddr_storage where = {};
    auto *v4 = reinterpret_cast<sockaddr_in *>(&where);
    auto *v6 = reinterpret_cast<sockaddr_in6 *>(&where);
    socklen_t size = 0;
    if (inet_pton(AF_INET, address.c_str(), &v4->sin_addr) == 1) {
        v4->sin_family = AF_INET;
        v4->sin_port = htons(static_cast<uint16_t>(port));
        size = sizeof *v4;
    } else if (inet_pton(AF_INET6, address.c_str(), &v6->sin6_addr) == 1) {
        v6->sin6_family = AF_INET6;
        v6->sin6_port = htons(static_cast<uint16_t>(port));
        size = sizeof *v6;
    } else {
        throw std::runtime_error("\"" + address + "\" is no numeric address");
    }
    const int attempt = socket(where.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    if (attempt >= 0) setsockopt(attempt, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const bool free = attempt >= 0 && bind(attempt, reinterpret_cast<sockaddr *>(&where), size) == 0 &&
                      listen(attempt, 1) == 0;
    const std::string why = std::strerror(errno);
    if (attempt >= 0) close(attempt);
    if (!free) throw std::runtime_error(told(address, port) + " cannot be listened on: " + why);
}

} // namespace

HttpServer::HttpServer(Board &board, Requests &requests, const std::string &address, int port)
    : self_(std::make_unique<Self>(board, requests, address, port))
{
}

HttpServer::~HttpServer() = default;

const Access &HttpServer::access() const
{
    return *self_->access;
}

HttpServer::Self::Self(Board &the_board, Requests &the_requests, const std::string &address, int port)
    : board(the_board), requests(the_requests)
{
    try_port(address, port);
    lws_set_log_level(0, nullptr);
    lws_context_creation_info info = {};
    info.port = port;
    info.iface = address.c_str();
    info.protocols = kProtocols;
    info.user = this;
    info.gid = static_cast<gid_t>(-1);
    info.uid = static_cast<uid_t>(-1);
    info.timeout_secs = kSilence;
    info.keepalive_timeout = kKeepAlive;
    info.max_http_header_pool = 1024;
    info.retry_and_idle_policy = &kIdle;
    info.options = LWS_SERVER_OPTION_FAIL_UPON_UNABLE_TO_BIND;
    if (address.find(':') == std::string::npos) info.options |= LWS_SERVER_OPTION_DISABLE_IPV6;
    context = lws_create_context(&info);
    if (context == nullptr) throw std::runtime_error(told(address, port) + " cannot be listened on");
    lws_vhost *host = lws_get_vhost_by_name(context, "default");
    access = std::make_unique<Access>(address, lws_get_vhost_listen_port(host), make_token());

    live =
        std::make_unique<LiveScreen>(board, [this](uint64_t viewer, std::shared_ptr<const std::string> jpeg) {
            post([this, viewer, jpeg = std::move(jpeg)] {
                if (Session *session = find(viewer)) enqueue(*session, "", jpeg);
            });
        });
    requests.on_recorded = [this](const std::string &line) { broadcast("recorded", {{"line", line}}); };
    board.listen([this](const std::string &event, const nlohmann::json &data) { on_event(event, data); });
    serving = std::thread([this] { serve(); });
    pulsing = std::thread([this] { pulse(); });
}

HttpServer::Self::~Self()
{
    board.listen({});
    finish();
    {
        std::lock_guard lock(pulse_mutex);
        ends = true;
    }
    pulse_changed.notify_all();
    pulsing.join();
    workers.stop();
    live.reset();
    lws_cancel_service(context);
    serving.join();
    lws_context_destroy(context);
    requests.on_recorded = nullptr;
}

void HttpServer::Self::serve()
{
    while (!ends)
        if (lws_service(context, 0) < 0) break;
}

void HttpServer::Self::post(std::function<void()> job)
{
    {
        std::lock_guard lock(posted_mutex);
        posted.push_back(std::move(job));
    }
    lws_cancel_service(context);
}

/* A program that has ended is told to those who look, and so is the answer to who has ended it. */
void HttpServer::Self::finish()
{
    const auto latest = std::chrono::steady_clock::now() + kLastWords;
    while (std::chrono::steady_clock::now() < latest) {
        const bool is_idle = at_work == 0; // first: from then on no session gets anything to send
        std::promise<bool> unsent;
        post([&] { unsent.set_value(has_unsent()); });
        if (!unsent.get_future().get() && is_idle) return;
        std::this_thread::sleep_for(kGlance);
    }
}

bool HttpServer::Self::has_unsent()
{
    return std::any_of(sessions.begin(), sessions.end(), [](const auto &entry) {
        return (entry.second->reply && !entry.second->refused_early) || !entry.second->outgoing.empty();
    });
}

void HttpServer::Self::run_posted()
{
    std::vector<std::function<void()>> jobs;
    {
        std::lock_guard lock(posted_mutex);
        jobs.swap(posted);
    }
    for (const auto &job : jobs)
        job();
}

int HttpServer::Self::callback(lws *wsi, lws_callback_reasons reason, void *user, void *in, size_t size)
{
    lws_context *context = wsi == nullptr ? nullptr : lws_get_context(wsi);
    auto *self = context == nullptr ? nullptr : static_cast<Self *>(lws_context_user(context));
    if (self == nullptr || self->context == nullptr) return 0; // it is being made
    try {
        return self->handle(wsi, reason, static_cast<Session **>(user), in, size);
    } catch (const std::exception &) {
        return -1; // no memory: this connection ends, the others stay
    }
}

int HttpServer::Self::handle(lws *wsi, lws_callback_reasons reason, Session **slot, void *in, size_t size)
{
    switch (reason) {
    case LWS_CALLBACK_EVENT_WAIT_CANCELLED: run_posted(); return 0;
    case LWS_CALLBACK_SERVER_NEW_CLIENT_INSTANTIATED: ++connections; return 0;
    case LWS_CALLBACK_WSI_DESTROY: connections = std::max(0, connections - 1); return 0;

    case LWS_CALLBACK_HTTP: return begin_exchange(wsi, slot);
    case LWS_CALLBACK_HTTP_BODY: return *slot ? take_body(**slot, in, size) : -1;
    case LWS_CALLBACK_HTTP_BODY_COMPLETION: return *slot ? end_body(**slot) : -1;
    case LWS_CALLBACK_HTTP_WRITEABLE: return *slot ? write_reply(**slot) : 0;
    case LWS_CALLBACK_HTTP_CONFIRM_UPGRADE: return confirm_upgrade(wsi);

    case LWS_CALLBACK_ESTABLISHED: established(wsi, slot); return 0;
    case LWS_CALLBACK_RECEIVE: return *slot ? received(**slot, in, size) : -1;
    case LWS_CALLBACK_SERVER_WRITEABLE: return *slot ? write_socket(**slot) : -1;

    case LWS_CALLBACK_HTTP_DROP_PROTOCOL:
    case LWS_CALLBACK_CLOSED_HTTP:
    case LWS_CALLBACK_CLOSED:
        if (slot != nullptr) close_session(slot);
        return 0;
    default: return 0;
    }
}

Session &HttpServer::Self::open_session(lws *wsi, Session **slot, Session::Kind kind)
{
    close_session(slot);
    auto session = std::make_unique<Session>();
    session->id = next_session++;
    session->wsi = wsi;
    session->kind = kind;
    *slot = session.get();
    sessions[session->id] = std::move(session);
    if (kind != Session::Kind::http) ++sockets;
    return **slot;
}

void HttpServer::Self::close_session(Session **slot)
{
    Session *session = *slot;
    if (session == nullptr) return;
    *slot = nullptr;
    if (session->kind == Session::Kind::live && live) live->remove(session->id);
    const bool was_events = session->kind == Session::Kind::events;
    if (session->kind != Session::Kind::http) --sockets;
    sessions.erase(session->id);
    if (was_events) count_subscriptions();
}

Session *HttpServer::Self::find(uint64_t id)
{
    const auto found = sessions.find(id);
    return found == sessions.end() ? nullptr : found->second.get();
}

} // namespace vboard_app
