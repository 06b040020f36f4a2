/* status_page.cpp - see status_page.h. No other source of the recorder uses the HTTP library. */
#include "controls/status_page.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/in.h>

#include "console/exit_code.h"
#include "console/terminal.h"

namespace nvrec
{
namespace
{

constexpr unsigned kMostReaders = 64;
constexpr unsigned kConnectionLimit_s = 5;
constexpr const char *kText = "text/plain; charset=utf-8";

/* Takes the same time wherever the texts differ, so that its duration tells nothing of the token. */
bool is_same_token(const std::string &one, const std::string &other)
{
    unsigned different = one.size() != other.size();
    for (size_t i = 0; i < one.size() && i < other.size(); ++i)
        different |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
    return different == 0;
}

/* A name that only begins like an address, "127.example.org", may lead anywhere. */
bool is_loopback_name(std::string_view host)
{
    const bool bracketed = host.starts_with('[');
    const size_t end = bracketed ? host.find(']') + 1 : std::min(host.find(':'), host.size());
    const std::string name(host.substr(0, end));
    if (name == "localhost" || name == "[::1]") return true;
    in_addr address = {};
    return inet_pton(AF_INET, name.c_str(), &address) == 1 && ntohl(address.s_addr) >> 24 == IN_LOOPBACKNET;
}

std::string field(MHD_Connection *connection, MHD_ValueKind kind, const char *name)
{
    const char *value = MHD_lookup_connection_value(connection, kind, name);
    return value ? value : "";
}

MHD_Result send_answer(MHD_Connection *connection, const StatusPage::Answer &answer)
{
    MHD_Response *response = MHD_create_response_from_buffer(
        answer.text.size(), const_cast<char *>(answer.text.data()), MHD_RESPMEM_MUST_COPY);
    if (!response) return MHD_NO;
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, answer.type);
    MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
    MHD_add_response_header(response, "X-Content-Type-Options", "nosniff");
    if (answer.status == MHD_HTTP_UNAUTHORIZED)
        MHD_add_response_header(response, MHD_HTTP_HEADER_WWW_AUTHENTICATE, "Bearer");
    const MHD_Result result = MHD_queue_response(connection, answer.status, response);
    MHD_destroy_response(response);
    return result;
}

MHD_Result serve(void *page, MHD_Connection *connection, const char *path, const char *method, const char *,
                 const char *, size_t *, void **)
{
    const auto *self = static_cast<const StatusPage *>(page);
    if (std::strcmp(method, "GET") != 0)
        return send_answer(connection, {MHD_HTTP_METHOD_NOT_ALLOWED, kText, "GET alone is answered\n"});
    if (!self->admits(field(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_HOST),
                      field(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_AUTHORIZATION),
                      field(connection, MHD_GET_ARGUMENT_KIND, "token")))
        return send_answer(connection,
                           {MHD_HTTP_UNAUTHORIZED, kText, "the token of the configuration is wanted\n"});
    return send_answer(connection, self->answer(path));
}

} // namespace

bool StatusPage::admits(const std::string &host, const std::string &authorization,
                        const std::string &token) const
{
    if (options_.token.empty()) return is_loopback_name(host);
    return is_same_token(authorization, "Bearer " + options_.token) || is_same_token(token, options_.token);
}

StatusPage::Answer StatusPage::answer(const std::string &path) const
{
    struct Page {
        const char *path, *request, *type;
    };
    constexpr std::array<Page, 3> kPages = {{
        {"/", "status", kText},
        {"/json", "status json", "application/json"},
        {"/metrics", "metrics", "text/plain; version=0.0.4; charset=utf-8"},
    }};
    constexpr std::string_view kOk = "ok\n";
    for (const Page &page : kPages) {
        if (path != page.path) continue;
        const std::string reply = ask_(page.request);
        if (!reply.starts_with(kOk)) return {MHD_HTTP_SERVICE_UNAVAILABLE, kText, reply};
        return {MHD_HTTP_OK, page.type, reply.substr(kOk.size())};
    }
    return {MHD_HTTP_NOT_FOUND, kText, "there are: / /json /metrics\n"};
}

/* If a page is asked for and cannot listen, the recorder ends, and its exit status tells so. */
bool StatusPage::start(WallControl &wall)
{
    if (options_.host.empty()) return true;
    sockaddr_in v4 = {};
    v4.sin_family = AF_INET;
    v4.sin_port = htons(options_.port);
    sockaddr_in6 v6 = {};
    v6.sin6_family = AF_INET6;
    v6.sin6_port = htons(options_.port);
    const bool is_number = options_.ipv6 ? inet_pton(AF_INET6, options_.host.c_str(), &v6.sin6_addr) == 1
                                         : inet_pton(AF_INET, options_.host.c_str(), &v4.sin_addr) == 1;
    unsigned flags = MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_POLL;
    if (options_.ipv6) flags |= MHD_USE_IPv6;
    const auto *address =
        options_.ipv6 ? reinterpret_cast<const sockaddr *>(&v6) : reinterpret_cast<const sockaddr *>(&v4);
    if (is_number)
        daemon_ = MHD_start_daemon(flags, options_.port, nullptr, nullptr, serve, this, MHD_OPTION_SOCK_ADDR,
                                   address, MHD_OPTION_CONNECTION_LIMIT, kMostReaders,
                                   MHD_OPTION_CONNECTION_TIMEOUT, kConnectionLimit_s, MHD_OPTION_END);
    const std::string place = options_.host + " port " + std::to_string(options_.port);
    if (daemon_) {
        wall.terminal().info("status page: it listens on " + place);
        return true;
    }
    wall.terminal().error("status page: nothing can listen on " + place + ": " + std::strerror(errno));
    wall.end(kExitBoardFailed);
    return false;
}

void StatusPage::stop()
{
    if (daemon_) MHD_stop_daemon(daemon_);
    daemon_ = nullptr;
}

} // namespace nvrec
