/* http_exchange.cpp - see http_server.h: a request, its answer, and the files of the page. */
#include <algorithm>

#include "api/check.h"
#include "api/description.h"
#include "embedded.h"
#include "server/http_server_self.h"

namespace vboard_app
{
namespace
{

using nlohmann::json;

constexpr size_t kDrained =
    8 << 20; // bytes of a body that is too long, still read for the sake of the answer
constexpr size_t kWrittenAtOnce = 32 << 10; // bytes that are written at a time
constexpr int kReplyTime = 30;              // seconds for the client to take the next of them
constexpr std::string_view kApi = "/api/";

struct Method {
    lws_token_indexes token;
    const char *name;
};
constexpr Method kMethods[] = {
    {WSI_TOKEN_GET_URI, "GET"},         {WSI_TOKEN_POST_URI, "POST"}, {WSI_TOKEN_DELETE_URI, "DELETE"},
    {WSI_TOKEN_HEAD_URI, "HEAD"},       {WSI_TOKEN_PUT_URI, "PUT"},   {WSI_TOKEN_PATCH_URI, "PATCH"},
    {WSI_TOKEN_OPTIONS_URI, "OPTIONS"},
};

struct ContentType {
    const char *ending, *type;
};
constexpr ContentType kContentTypes[] = {
    {".html", "text/html; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".svg", "image/svg+xml"},
    {".png", "image/png"},
    {".json", "application/json"},
    {".woff2", "font/woff2"},
};

std::string header(lws *wsi, lws_token_indexes token)
{
    const int length = lws_hdr_total_length(wsi, token);
    if (length <= 0) return {};
    std::string text(static_cast<size_t>(length) + 1, '\0');
    const int copied = lws_hdr_copy(wsi, text.data(), length + 1, token);
    text.resize(copied < 0 ? 0 : static_cast<size_t>(copied));
    return text;
}

/* NAME=VALUE of the address, already decoded. */
void read_query(lws *wsi, Exchange *exchange)
{
    char fragment[8192];
    for (int number = 0; number < 64; ++number) {
        const int length =
            lws_hdr_copy_fragment(wsi, fragment, sizeof fragment, WSI_TOKEN_HTTP_URI_ARGS, number);
        if (length < 0) return;
        const std::string text(fragment, static_cast<size_t>(length));
        const size_t equals = text.find('=');
        const std::string name = text.substr(0, equals);
        const std::string value = equals == std::string::npos ? "" : text.substr(equals + 1);
        if (name == "token")
            exchange->token = value;
        else if (!name.empty())
            exchange->query[name] = value;
    }
}

/* The request that a path below /api/1 and a method stand for; the names of all methods of the path. */
const json *find_by_path(const std::string &path, const std::string &method, std::string *allowed)
{
    for (const json &request : api::description().at("requests")) {
        if (request.at("path") != path) continue;
        if (request.at("method") == method) return &request;
        *allowed += (allowed->empty() ? "" : ", ") + request.at("method").get<std::string>();
    }
    return nullptr;
}

/* From the address and from the body; @throws RequestError */
json parameters_of(const std::string &name, const Exchange &exchange)
{
    json parameters = json::object();
    if (!exchange.body.empty()) parameters = api::object_from_text(exchange.body, "the body");
    const json &known = api::parameters_of(*api::find_request(name));
    for (const auto &[key, text] : exchange.query) {
        if (parameters.contains(key))
            throw RequestError("bad_parameter", "\"" + key + "\" is in the address and in the body", key);
        // One that is not known is refused with the others, by its name.
        parameters[key] = known.contains(key) ? api::value_from_text(key, known.at(key), text) : json(text);
    }
    return parameters;
}

} // namespace

Exchange read_exchange(lws *wsi)
{
    Exchange exchange;
    for (const Method &method : kMethods) {
        if (lws_hdr_total_length(wsi, method.token) <= 0) continue;
        exchange.method = method.name;
        exchange.path = header(wsi, method.token);
        break;
    }
    read_query(wsi, &exchange);
    exchange.host = header(wsi, WSI_TOKEN_HOST);
    exchange.origin = header(wsi, WSI_TOKEN_ORIGIN);
    exchange.authorization = header(wsi, WSI_TOKEN_HTTP_AUTHORIZATION);
    exchange.is_chunked = lws_hdr_total_length(wsi, WSI_TOKEN_HTTP_TRANSFER_ENCODING) > 0;
    const std::string length = header(wsi, WSI_TOKEN_HTTP_CONTENT_LENGTH);
    exchange.has_body = !exchange.is_chunked && length.find_first_of("123456789") != std::string::npos;
    return exchange;
}

std::optional<Reply> HttpServer::Self::refused(const Exchange &exchange) const
{
    if (connections > kMostConnections) return error_reply("busy", "more connections than can be served");
    if (!access->is_own_host(exchange.host)) return error_reply("forbidden", "\"Host\" is not this board's");
    if (!access->is_own_origin(exchange.origin, exchange.host))
        return error_reply("forbidden", "\"Origin\" is not this board's");
    if (exchange.path.compare(0, kApi.size(), kApi) != 0) return {};
    if (!access->knows_token(exchange.authorization, exchange.token))
        return error_reply("unauthorized", "the board's token is missing or wrong");
    const std::string version =
        exchange.path.substr(kApi.size(), exchange.path.find('/', kApi.size()) - kApi.size());
    if (version != "1")
        return error_reply("unknown_version", "this board knows version 1 of its requests only");
    return {};
}

int HttpServer::Self::begin_exchange(lws *wsi, Session **slot)
{
    Session &session = open_session(wsi, slot, Session::Kind::http);
    session.exchange = read_exchange(wsi);
    const Exchange &exchange = session.exchange;
    session.reply = refused(exchange);
    if (!session.reply && exchange.is_chunked)
        session.reply = error_reply("bad_json", "a body needs its Content-Length");
    session.closes = exchange.is_chunked || connections > kMostConnections;
    if (exchange.has_body) {
        session.refused_early = session.reply.has_value();
        return 0; // it comes first
    }
    if (!session.reply)
        dispatch(session);
    else
        lws_callback_on_writable(wsi);
    return 0;
}

int HttpServer::Self::take_body(Session &session, const void *bytes, size_t size)
{
    std::string &body = session.exchange.body;
    if (!session.refused_early && body.size() + size > kLongestBody) {
        session.reply = error_reply("too_large", "the body is longer than 64 KiB");
        session.refused_early = true;
        body.clear();
    }
    if (!session.refused_early) {
        body.append(static_cast<const char *>(bytes), size);
        return 0;
    }
    session.body_sent += size; // counts what was thrown away, until the reply begins
    return session.body_sent > kDrained ? -1 : 0;
}

/* Told for an empty body as well, whose request is under way since its head. */
int HttpServer::Self::end_body(Session &session)
{
    if (!session.exchange.has_body) return 0;
    session.body_sent = 0;
    if (!session.refused_early) {
        dispatch(session);
        return 0;
    }
    session.refused_early = false;
    lws_callback_on_writable(session.wsi);
    return 0;
}

void HttpServer::Self::dispatch(Session &session)
{
    const Exchange &exchange = session.exchange;
    if (exchange.path.compare(0, kApi.size(), kApi) != 0) {
        if (exchange.method == "GET" || exchange.method == "HEAD")
            return send_reply(session, page_file(exchange.path));
        Reply reply = error_reply("wrong_method", "\"" + exchange.path + "\" wants GET");
        reply.headers = "Allow: GET, HEAD\n";
        return send_reply(session, std::move(reply));
    }
    const size_t slash = exchange.path.find('/', kApi.size());
    const std::string path = slash == std::string::npos ? "/" : exchange.path.substr(slash);
    for (const json &socket : api::description().at("sockets"))
        if (socket.at("path") == path)
            return send_reply(session, error_reply("wrong_method", "\"" + path + "\" is a WebSocket"));
    std::string allowed;
    const json *request = find_by_path(path, exchange.method, &allowed);
    if (request == nullptr && allowed.empty())
        return send_reply(session, error_reply("not_found", "there is no request \"" + path + "\""));
    if (request == nullptr) {
        Reply reply = error_reply("wrong_method", "\"" + path + "\" wants " + allowed);
        reply.headers = "Allow: " + allowed + "\n";
        return send_reply(session, std::move(reply));
    }

    const std::string name = request->at("name");
    json parameters;
    try {
        parameters = parameters_of(name, exchange);
    } catch (const RequestError &error) {
        return send_reply(session, error_reply(error.code, error.what(), error.parameter));
    }
    lws_set_timeout(session.wsi, NO_PENDING_TIMEOUT, 0); // the board decides how long it takes
    const uint64_t id = session.id;
    ++at_work;
    const bool begun = workers.run([this, id, name, parameters] {
        Reply reply = requests.carry_out(name, parameters);
        post([this, id, reply = std::move(reply)]() mutable {
            if (Session *asked = find(id)) send_reply(*asked, std::move(reply));
            --at_work;
        });
    });
    if (!begun) --at_work;
    if (!begun) send_reply(session, error_reply("busy", "more requests than can be carried out at once"));
}

void HttpServer::Self::send_reply(Session &session, Reply reply)
{
    session.reply = std::move(reply);
    lws_callback_on_writable(session.wsi);
}

Reply HttpServer::Self::page_file(const std::string &path) const
{
    const std::string name = path == "/" ? "index.html" : path.substr(1);
    for (const EmbeddedFile *file = page_files(); file->name != nullptr; ++file) {
        if (name != file->name) continue;
        Reply reply;
        reply.type = "application/octet-stream";
        for (const ContentType &known : kContentTypes)
            if (name.ends_with(known.ending)) reply.type = known.type;
        reply.headers =
            "Content-Security-Policy: default-src 'self'; img-src 'self' blob: data:; frame-ancestors "
            "'none'; base-uri 'none'; form-action 'none'\n"
            "X-Frame-Options: DENY\n";
        reply.body.assign(reinterpret_cast<const char *>(file->bytes), file->size);
        return reply;
    }
    return error_reply("not_found", "there is no \"" + path + "\"");
}

/* As much of the reply as the connection takes now. */
int HttpServer::Self::write_reply(Session &session)
{
    if (!session.reply || session.refused_early) return 0;
    lws *wsi = session.wsi;
    const Reply &reply = *session.reply;
    const bool head_only = session.exchange.method == "HEAD";
    if (!session.headers_sent) {
        unsigned char room[LWS_PRE + 4096];
        unsigned char *const first = room + LWS_PRE, *const end = room + sizeof room;
        unsigned char *at = first;
        if (lws_add_http_common_headers(wsi, static_cast<unsigned>(reply.status), reply.type.c_str(),
                                        reply.body.size(), &at, end) != 0)
            return -1;
        std::string further = reply.headers + "Cache-Control: no-store\nX-Content-Type-Options: nosniff\n"
                                              "Referrer-Policy: no-referrer\n";
        for (size_t begin = 0, stop; (stop = further.find('\n', begin)) != std::string::npos;
             begin = stop + 1) {
            const size_t colon = further.find(':', begin);
            const std::string name = further.substr(begin, colon + 1 - begin);
            const std::string value = further.substr(colon + 2, stop - colon - 2);
            if (lws_add_http_header_by_name(wsi, reinterpret_cast<const unsigned char *>(name.c_str()),
                                            reinterpret_cast<const unsigned char *>(value.data()),
                                            static_cast<int>(value.size()), &at, end) != 0)
                return -1;
        }
        if (lws_finalize_write_http_header(wsi, first, &at, end) != 0) return -1;
        session.headers_sent = true;
        session.body_sent = head_only ? reply.body.size() : 0;
    } else {
        const size_t part = std::min(kWrittenAtOnce, reply.body.size() - session.body_sent);
        std::vector<unsigned char> bytes(LWS_PRE + part);
        std::copy_n(reply.body.data() + session.body_sent, part, bytes.data() + LWS_PRE);
        session.body_sent += part;
        const bool is_last = session.body_sent == reply.body.size();
        if (lws_write(wsi, bytes.data() + LWS_PRE, part, is_last ? LWS_WRITE_HTTP_FINAL : LWS_WRITE_HTTP) < 0)
            return -1;
    }
    if (session.body_sent < reply.body.size()) {
        lws_set_timeout(wsi, PENDING_TIMEOUT_HTTP_CONTENT, kReplyTime);
        lws_callback_on_writable(wsi);
        return 0;
    }
    const bool closes = session.closes;
    session.reply.reset();
    session.headers_sent = false;
    if (closes) return -1;
    return lws_http_transaction_completed(wsi) != 0 ? -1 : 0;
}

} // namespace vboard_app
