/* web_sockets.cpp - see http_server.h: the sockets of events and pictures. */
#include <algorithm>
#include <cstdlib>

#include "api/check.h"
#include "api/description.h"
#include "api/nearest.h"
#include "server/http_server_self.h"

namespace vboard_app
{
namespace
{

using nlohmann::json;

constexpr const char *kEvents = "/api/1/events";
constexpr const char *kLive = "/api/1/live";
constexpr size_t kLongestMessage = 16 << 10; // bytes, of a client

std::shared_ptr<const std::string> message(const std::string &event, const json &data)
{
    return std::make_shared<const std::string>(
        json{{"event", event}, {"data", data}}.dump(-1, ' ', false, json::error_handler_t::replace));
}

/* A number of /live's parameters; nothing: it is out of its range. */
std::optional<uint32_t> live_parameter(const Exchange &exchange, const char *name)
{
    for (const json &socket : api::description().at("sockets")) {
        if (socket.at("path") != "/live") continue;
        const json &known = socket.at("parameters").at(name);
        const auto given = exchange.query.find(name);
        if (given == exchange.query.end()) return known.at("default");
        char *rest = nullptr;
        const long value = std::strtol(given->second.c_str(), &rest, 10);
        if (*rest != '\0' || given->second.empty() || value < known.at("minimum") ||
            value > known.at("maximum"))
            return {};
        return static_cast<uint32_t>(value);
    }
    return {};
}

/* A refusal as HTTP, in the place of the upgrade. */
int answer_refusal(lws *wsi, const Reply &reply)
{
    unsigned char room[LWS_PRE + 2048];
    unsigned char *const first = room + LWS_PRE, *const end = room + sizeof room;
    unsigned char *at = first;
    if (lws_add_http_common_headers(wsi, static_cast<unsigned>(reply.status), reply.type.c_str(),
                                    reply.body.size(), &at, end) != 0 ||
        lws_finalize_write_http_header(wsi, first, &at, end) != 0)
        return -1;
    std::vector<unsigned char> body(LWS_PRE + reply.body.size());
    std::copy(reply.body.begin(), reply.body.end(), body.begin() + LWS_PRE);
    if (lws_write(wsi, body.data() + LWS_PRE, reply.body.size(), LWS_WRITE_HTTP_FINAL) < 0) return -1;
    return 1;
}

} // namespace

int HttpServer::Self::confirm_upgrade(lws *wsi)
{
    const Exchange exchange = read_exchange(wsi);
    std::optional<Reply> reply = refused(exchange);
    if (!reply && exchange.path != kEvents && exchange.path != kLive)
        reply = error_reply("not_found", "there is no WebSocket \"" + exchange.path + "\"");
    if (!reply && sockets >= kMostSockets) reply = error_reply("busy", "more WebSockets than can be served");
    if (!reply && exchange.path == kLive)
        for (const char *name : {"width", "rate"})
            if (!live_parameter(exchange, name))
                reply = error_reply("bad_parameter", std::string("\"") + name + "\" is out of range", name);
    return reply ? answer_refusal(wsi, *reply) : 0;
}

void HttpServer::Self::established(lws *wsi, Session **slot)
{
    const Exchange exchange = read_exchange(wsi);
    const bool is_live = exchange.path == kLive;
    Session &session = open_session(wsi, slot, is_live ? Session::Kind::live : Session::Kind::events);
    if (is_live)
        live->add(session.id, live_parameter(exchange, "width").value_or(960),
                  live_parameter(exchange, "rate").value_or(12));
}

int HttpServer::Self::received(Session &session, const void *bytes, size_t size)
{
    if (session.incoming.size() + size > kLongestMessage) return -1;
    session.incoming.append(static_cast<const char *>(bytes), size);
    if (lws_remaining_packet_payload(session.wsi) > 0 || !lws_is_final_fragment(session.wsi)) return 0;
    take_text(session);
    session.incoming.clear();
    return 0;
}

/* A whole message of a client. */
void HttpServer::Self::take_text(Session &session)
{
    if (session.kind == Session::Kind::live) {
        if (session.incoming == "next") live->next(session.id);
        return;
    }
    const auto refuse = [&](const char *code, const std::string &why) {
        enqueue(session, "error", message("error", {{"code", code}, {"message", why}}));
    };
    json content;
    try {
        content = api::object_from_text(session.incoming, "the message");
    } catch (const RequestError &error) {
        return refuse(error.code.c_str(), error.what());
    }
    const auto names = content.find("subscribe");
    if (names == content.end() || !names->is_array() || content.size() != 1)
        return refuse("bad_parameter", "the message is not {\"subscribe\": [names]}");
    const std::vector<std::string> known = api::event_names();
    std::set<std::string> wanted;
    for (const json &name : *names) {
        if (!name.is_string()) return refuse("bad_parameter", "a name of an event is a text");
        if (std::find(known.begin(), known.end(), name.get<std::string>()) == known.end())
            return refuse("bad_parameter", "there is no event \"" + name.get<std::string>() + "\"" +
                                               did_you_mean(name.get<std::string>(), known));
        wanted.insert(name);
    }
    session.subscribed = std::move(wanted);
    count_subscriptions();
    std::lock_guard lock(pulse_mutex);
    pulse_changed.notify_all(); // the first state comes at once
}

void HttpServer::Self::count_subscriptions()
{
    int state = 0, calls = 0, refusals = 0;
    for (const auto &[id, session] : sessions) {
        state += static_cast<int>(session->subscribed.count("state"));
        calls += static_cast<int>(session->subscribed.count("calls"));
        refusals += static_cast<int>(session->subscribed.count("refusal"));
    }
    want_state = state;
    want_calls = calls;
    want_refusals = refusals;
}

void HttpServer::Self::broadcast(const std::string &event, const json &data)
{
    post([this, event, bytes = message(event, data)] {
        for (const auto &[id, session] : sessions)
            if (session->subscribed.count(event) > 0) enqueue(*session, event, bytes);
    });
}

void HttpServer::Self::enqueue(Session &session, const std::string &event,
                               std::shared_ptr<const std::string> bytes)
{
    if (event == "state") {
        for (Session::Outgoing &waiting : session.outgoing) {
            if (waiting.event != event) continue;
            session.queued += bytes->size() - waiting.bytes->size();
            waiting.bytes = std::move(bytes);
            return;
        }
    }
    session.queued += bytes->size();
    session.outgoing.push_back({event, std::move(bytes)});
    if (session.queued > kMostQueued) {
        // It reads nothing: it can come again when it does.
        lws_set_timeout(session.wsi, PENDING_TIMEOUT_CLOSE_SEND, LWS_TO_KILL_ASYNC);
        return;
    }
    lws_callback_on_writable(session.wsi);
}

int HttpServer::Self::write_socket(Session &session)
{
    if (session.outgoing.empty()) return 0;
    const Session::Outgoing next = std::move(session.outgoing.front());
    session.outgoing.pop_front();
    session.queued -= next.bytes->size();
    std::vector<unsigned char> bytes(LWS_PRE + next.bytes->size());
    std::copy(next.bytes->begin(), next.bytes->end(), bytes.begin() + LWS_PRE);
    const auto kind = session.kind == Session::Kind::live ? LWS_WRITE_BINARY : LWS_WRITE_TEXT;
    if (lws_write(session.wsi, bytes.data() + LWS_PRE, next.bytes->size(), kind) < 0) return -1;
    if (!session.outgoing.empty()) lws_callback_on_writable(session.wsi);
    return 0;
}

} // namespace vboard_app
