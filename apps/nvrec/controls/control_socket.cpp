/* control_socket.cpp - see control_socket.h. */
#include "controls/control_socket.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "host/clock.h"

namespace nvrec
{
namespace
{

constexpr size_t kLongestRequest_bytes = 255;
constexpr size_t kLongestReply_bytes = 1 << 20;
constexpr auto kClientSilence = std::chrono::seconds(2); /* of a client */
constexpr auto kAnswer = std::chrono::seconds(20);       /* of a recorder, which may be laying panes out */
constexpr int kWaiting = 8;                              /* connections */
constexpr mode_t kOwnerOnly = 0600;

std::string error_text()
{
    return std::system_category().message(errno);
}

/* False when the path is too long for a socket. */
bool make_address(const std::string &path, sockaddr_un *address)
{
    *address = {};
    address->sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address->sun_path) return false;
    std::memcpy(address->sun_path, path.data(), path.size());
    return true;
}

/* A directory of the user's own in a place where anybody may make one. */
bool is_private_directory(const std::string &path)
{
    struct stat found;
    return lstat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode) && found.st_uid == getuid() &&
           (found.st_mode & 077) == 0;
}

/* Read until the line end; nothing when the line is too long, cut off or too slow. */
std::optional<std::string> read_request(int connection)
{
    std::string line;
    char letter;
    while (line.size() <= kLongestRequest_bytes && wait_readable(connection, Clock::now() + kClientSilence) &&
           recv(connection, &letter, 1, 0) == 1) {
        if (letter == '\n') return line;
        line += letter;
    }
    return std::nullopt;
}

bool send_all(int connection, const std::string &text)
{
    for (size_t sent = 0; sent < text.size();) {
        const ssize_t count = send(connection, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return false;
        sent += static_cast<size_t>(count);
    }
    return true;
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

} // namespace

std::string default_control_path()
{
    const char *runtime = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe): nobody writes it
    if (runtime && *runtime) return std::string(runtime) + "/nvrec.socket";
    return "/tmp/nvrec-" + std::to_string(getuid()) + "/nvrec.socket";
}

ControlServer::Start ControlServer::fail(Start result, const std::string &reason)
{
    error_ = reason;
    for (int *descriptor : {&socket_, &lock_, &end_}) {
        if (*descriptor >= 0) close(*descriptor);
        *descriptor = -1;
    }
    return result;
}

/* The system gives the lock of a recorder that died back, so whoever holds it is alive. */
bool ControlServer::lock(const std::string &path)
{
    lock_ = open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly);
    return lock_ >= 0 && flock(lock_, LOCK_EX | LOCK_NB) == 0;
}

ControlServer::Start ControlServer::start(const std::string &path, ControlHandler handler)
{
    sockaddr_un address;
    if (!make_address(path, &address))
        return fail(Start::kFailed,
                    "a socket's path has 1 to " + std::to_string(sizeof address.sun_path - 1) + " letters");
    const std::filesystem::path directory = std::filesystem::path(path).parent_path();
    if (!directory.empty()) mkdir(directory.c_str(), 0700); /* the next calls tell whether it is there */
    if (path == default_control_path() && !is_private_directory(directory))
        return fail(Start::kFailed, directory.string() + " is not a directory of this user alone");
    if (!lock(path))
        return errno == EWOULDBLOCK ? fail(Start::kTaken, "another recorder listens there")
                                    : fail(Start::kFailed, error_text());

    struct stat found;
    if (lstat(path.c_str(), &found) == 0) {
        if (!S_ISSOCK(found.st_mode)) return fail(Start::kFailed, "there is something else than a socket");
        unlink(path.c_str()); /* of a recorder that died */
    }
    socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    end_ = eventfd(0, EFD_CLOEXEC);
    const auto *name = reinterpret_cast<const sockaddr *>(&address);
    /* Its mode before anybody can connect. */
    if (socket_ < 0 || end_ < 0 || bind(socket_, name, sizeof address) != 0 ||
        chmod(path.c_str(), kOwnerOnly) != 0 || listen(socket_, kWaiting) != 0)
        return fail(Start::kFailed, error_text());

    path_ = path;
    handler_ = std::move(handler);
    thread_ = std::thread([this] { run(); });
    return Start::kListening;
}

void ControlServer::run()
{
    for (;;) {
        pollfd sources[] = {{socket_, POLLIN, 0}, {end_, POLLIN, 0}};
        if (poll(sources, 2, -1) < 0 && errno != EINTR) return;
        if (sources[1].revents != 0) return;
        if (sources[0].revents == 0) continue;
        const int connection = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) continue;
        serve(connection);
        close(connection);
    }
}

void ControlServer::serve(int connection)
{
    const timeval patience = {kClientSilence.count(), 0}; /* a client that does not read */
    setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    const std::optional<std::string> request = read_request(connection);
    send_all(connection, request ? handler_(*request)
                                 : "error: a request is one line of at most " +
                                       std::to_string(kLongestRequest_bytes) + " bytes\n");
}

void ControlServer::stop()
{
    if (!thread_.joinable()) return;
    eventfd_write(end_, 1);
    thread_.join();
    unlink(path_.c_str());
    fail(Start::kFailed, {}); /* closes; the lock goes last of all */
}

std::optional<ControlReply> ask_recorder(const std::string &path, const std::string &request)
{
    sockaddr_un address;
    if (!make_address(path, &address)) return std::nullopt;
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connection < 0) return std::nullopt;
    std::optional<ControlReply> reply;
    if (connect(connection, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0) {
        reply.emplace();
        send_all(connection, request + "\n");
        const std::string text = read_reply(connection);
        const size_t end = text.find('\n');
        constexpr std::string_view kError = "error: ";
        if (end == std::string::npos) {
            reply->text = "the recorder did not answer";
        } else if (text.compare(0, end, "ok") == 0) {
            reply->ok = true;
            reply->text = text.substr(end + 1);
        } else {
            reply->text = text.substr(0, end);
            if (reply->text.starts_with(kError)) reply->text.erase(0, kError.size());
        }
    }
    close(connection);
    return reply;
}

} // namespace nvrec
