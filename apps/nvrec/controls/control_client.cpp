/* control_client.cpp - see control_socket.h: the client. */
#include <cstring>
#include <string_view>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "controls/control_address.h"
#include "controls/control_socket.h"
#include "host/clock.h"

namespace nvrec
{
namespace
{

constexpr size_t kLongestReply_bytes = 1 << 20;
constexpr auto kAnswer = std::chrono::seconds(20); /* for a recorder, which may be applying a layout */

void send_all(int connection, const std::string &text)
{
    for (size_t sent = 0; sent < text.size();) {
        const ssize_t count = send(connection, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return;
        sent += static_cast<size_t>(count);
    }
}

std::string read_reply(int connection)
{
    std::string text;
    char bytes[4096];
    while (text.size() < kLongestReply_bytes && wait_readable(connection, Clock::now() + kAnswer)) {
        const ssize_t count = recv(connection, bytes, sizeof bytes, 0);
        if (count <= 0) break;
        text.append(bytes, static_cast<size_t>(count));
    }
    return text;
}

ControlReply reply_of(const std::string &text)
{
    constexpr std::string_view kError = "error: ";
    ControlReply reply;
    const size_t end = text.find('\n');
    if (end == std::string::npos) {
        reply.text = "the recorder did not answer";
    } else if (text.compare(0, end, "ok") == 0) {
        reply.ok = true;
        reply.text = text.substr(end + 1);
    } else {
        reply.text = text.substr(0, end);
        if (reply.text.starts_with(kError)) reply.text.erase(0, kError.size());
    }
    return reply;
}

} // namespace

std::optional<ControlReply> ask_recorder(const std::string &path, const std::string &request)
{
    sockaddr_un address;
    if (!make_control_address(path, &address)) return std::nullopt;
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connection < 0) return std::nullopt;
    std::optional<ControlReply> reply;
    if (connect(connection, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0) {
        send_all(connection, request + "\n");
        reply = reply_of(read_reply(connection));
    }
    close(connection);
    return reply;
}

} // namespace nvrec
