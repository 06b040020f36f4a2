/* control_socket.cpp - see control_socket.h: the server. */
#include "controls/control_socket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "controls/control_address.h"
#include "controls/control_connection.h"
#include "host/clock.h"

namespace nvrec
{
namespace
{

constexpr int kWaiting = 64; /* connections that are not accepted yet */
constexpr size_t kMostConnections = 64;
constexpr size_t kWorkers = 4;
constexpr auto kAcceptAgain = std::chrono::seconds(1); /* after the system refused */
constexpr auto kLastReplies = std::chrono::milliseconds(200);
constexpr mode_t kOwnerOnly = 0600;

std::string error_text()
{
    return std::system_category().message(errno);
}

int open_spare()
{
    return open("/dev/null", O_RDONLY | O_CLOEXEC);
}

} // namespace

/* What a server has while it listens. */
struct ControlServer::Listening {
    ~Listening();

    std::string open(const std::string &path);
    bool lock();
    void start();
    void speak();
    void accept_all(Clock::time_point now);
    bool accept_one(Clock::time_point now);
    void turn_away();
    void make_room();
    void serve(const std::vector<pollfd> &sources, Clock::time_point now);
    void ask(ControlConnection &connection);
    void take_replies(Clock::time_point now);
    void write_last_replies();
    void work();

    std::string path;
    ControlHandler handler;
    bool taken = false; /* open() failed because another recorder listens there */
    bool bound = false;
    int lock_file = -1; /* of PATH.lock: tells a running recorder from one that died          */
    int socket = -1;
    int wake = -1;  /* eventfd: a reply, or the end                                             */
    int spare = -1; /* given up to accept and turn a client away when the process has no other */

    /* The speaking thread's. */
    std::vector<std::unique_ptr<ControlConnection>> connections;
    uint64_t next_number = 1;
    Clock::time_point accept_at; /* not before */
    DescriptorWait waiting;

    std::mutex mutex; /* guards what follows */
    Condition changed;
    std::deque<std::pair<uint64_t, std::string>> requests, replies; /* by the connection's number */
    bool ending = false;

    std::thread speaker;
    std::array<std::thread, kWorkers> workers;
};

ControlServer::Listening::~Listening()
{
    if (speaker.joinable()) {
        {
            const std::scoped_lock guard(mutex);
            ending = true;
            changed.notify();
        }
        for (std::thread &worker : workers)
            worker.join(); /* before the speaking thread, which writes their replies */
        eventfd_write(wake, 1);
        speaker.join();
    }
    connections.clear();
    if (bound) unlink(path.c_str());
    for (const int descriptor : {socket, wake, spare, lock_file}) { /* the lock goes last of all */
        if (descriptor >= 0) close(descriptor);
    }
}

/* The system releases the lock of a recorder that died, so a recorder that holds it is alive. */
bool ControlServer::Listening::lock()
{
    lock_file = ::open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly);
    return lock_file >= 0 && flock(lock_file, LOCK_EX | LOCK_NB) == 0;
}

/* Empty, or why not. */
std::string ControlServer::Listening::open(const std::string &wanted)
{
    path = wanted;
    sockaddr_un address;
    if (!make_control_address(path, &address))
        return "a socket's path has 1 to " + std::to_string(kLongestControlPath) + " letters";
    if (std::string problem = control_directory_problem(path); !problem.empty()) return problem;
    if (!lock()) {
        taken = errno == EWOULDBLOCK;
        return taken ? "another recorder listens there" : error_text();
    }
    struct stat found;
    if (lstat(path.c_str(), &found) == 0) {
        if (!S_ISSOCK(found.st_mode)) return "there is something else than a socket";
        unlink(path.c_str()); /* of a recorder that died */
    }
    socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    spare = open_spare();
    if (socket < 0 || wake < 0 || spare < 0) return error_text();
    if (bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) return error_text();
    bound = true;
    /* Set the mode before anybody can connect. */
    if (chmod(path.c_str(), kOwnerOnly) != 0 || listen(socket, kWaiting) != 0) return error_text();
    return {};
}

void ControlServer::Listening::start()
{
    speaker = std::thread([this] { speak(); });
    for (std::thread &worker : workers)
        worker = std::thread([this] { work(); });
}

/* Answer one request after the other. At the end, requests that still wait are not begun. */
void ControlServer::Listening::work()
{
    std::unique_lock guard(mutex);
    for (;;) {
        changed.wait(guard, [this] { return ending || !requests.empty(); });
        if (ending) return;
        const auto [number, request] = std::move(requests.front());
        requests.pop_front();
        guard.unlock();
        std::string reply = handler(request);
        guard.lock();
        replies.emplace_back(number, std::move(reply));
        eventfd_write(wake, 1);
    }
}

void ControlServer::Listening::speak()
{
    std::vector<pollfd> sources;
    for (;;) {
        Clock::time_point now = Clock::now();
        Clock::time_point next = accept_at > now ? accept_at : Clock::time_point::max();
        sources.assign({{wake, POLLIN, 0}, {accept_at > now ? -1 : socket, POLLIN, 0}});
        for (const auto &connection : connections) {
            /* poll(2) leaves negative descriptors out; else it would report a hang-up again and again. */
            const bool asked = connection->state() == ControlConnection::State::kAsked;
            sources.push_back({asked ? -1 : connection->descriptor(), connection->wanted(), 0});
            next = std::min(next, connection->deadline());
        }
        waiting.wait(sources.data(), sources.size(), next);
        now = Clock::now();
        eventfd_t wakes;
        eventfd_read(wake, &wakes);
        take_replies(now);
        {
            const std::scoped_lock guard(mutex);
            if (ending) break;
        }
        serve(sources, now);
        if (sources[1].revents != 0) accept_all(now);
    }
    write_last_replies();
}

void ControlServer::Listening::serve(const std::vector<pollfd> &sources, Clock::time_point now)
{
    for (size_t i = 0; i + 2 < sources.size(); ++i) {
        ControlConnection &connection = *connections[i];
        if (connection.state() == ControlConnection::State::kWriting && sources[i + 2].revents != 0) {
            connection.write(now);
        } else if (sources[i + 2].revents != 0) {
            connection.read(now);
            if (connection.state() == ControlConnection::State::kAsked) ask(connection);
        }
        if (connection.deadline() <= now) connection.timed_out(now);
    }
    std::erase_if(connections, [](const auto &connection) {
        return connection->state() == ControlConnection::State::kOver;
    });
}

void ControlServer::Listening::ask(ControlConnection &connection)
{
    const std::scoped_lock guard(mutex);
    requests.emplace_back(connection.number(), connection.request());
    changed.notify();
}

void ControlServer::Listening::take_replies(Clock::time_point now)
{
    std::deque<std::pair<uint64_t, std::string>> ready;
    {
        const std::scoped_lock guard(mutex);
        ready.swap(replies);
    }
    for (auto &[number, text] : ready) {
        const auto found = std::ranges::find(connections, number, &ControlConnection::number);
        if (found != connections.end()) (*found)->reply(std::move(text), now);
    }
}

void ControlServer::Listening::accept_all(Clock::time_point now)
{
    while (accept_one(now)) {
    }
}

bool ControlServer::Listening::accept_one(Clock::time_point now)
{
    const int connection = accept4(socket, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (connection >= 0) {
        make_room();
        connections.push_back(std::make_unique<ControlConnection>(connection, next_number++, now));
        return true;
    }
    if (errno == EINTR || errno == ECONNABORTED) return true;
    if (errno == EAGAIN || errno == EWOULDBLOCK) return false;
    if (errno == EMFILE || errno == ENFILE) turn_away();
    accept_at = now + kAcceptAgain; /* the connection still waits, and would wake this thread at once */
    return false;
}

/* Out of descriptors: the spare descriptor is used to accept a client and tell it so. */
void ControlServer::Listening::turn_away()
{
    close(spare);
    spare = -1;
    for (int connection = 0; connection >= 0;) {
        connection = accept4(socket, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (connection < 0) break;
        constexpr std::string_view kReason = "error: the recorder is out of descriptors\n";
        send(connection, kReason.data(), kReason.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        close(connection);
    }
    spare = open_spare();
}

/* Drop the client that has sent no request for the longest time, to make room for another. */
void ControlServer::Listening::make_room()
{
    if (connections.size() < kMostConnections) return;
    const auto oldest = std::ranges::min_element(connections, {}, [](const auto &connection) {
        const bool busy = connection->state() == ControlConnection::State::kAsked;
        return std::pair(busy, connection->connected_at());
    });
    connections.erase(oldest);
}

/* The workers have ended. Send their replies to the clients that read them. */
void ControlServer::Listening::write_last_replies()
{
    const Clock::time_point end = Clock::now() + kLastReplies;
    take_replies(Clock::now());
    for (;;) {
        std::vector<pollfd> sources;
        for (const auto &connection : connections) {
            if (connection->state() == ControlConnection::State::kWriting)
                sources.push_back({connection->descriptor(), POLLOUT, 0});
        }
        if (sources.empty() || Clock::now() >= end) return;
        waiting.wait(sources.data(), sources.size(), end);
        for (const auto &connection : connections) {
            if (connection->state() == ControlConnection::State::kWriting) connection->write(Clock::now());
        }
    }
}

ControlServer::ControlServer() = default;

ControlServer::~ControlServer() = default;

ControlServer::Start ControlServer::start(const std::string &path, ControlHandler handler)
{
    auto fresh = std::make_unique<Listening>();
    error_ = fresh->open(path);
    if (!error_.empty()) return fresh->taken ? Start::kTaken : Start::kFailed;
    fresh->handler = std::move(handler);
    fresh->start();
    listening_ = std::move(fresh);
    return Start::kListening;
}

void ControlServer::stop()
{
    listening_.reset();
}

} // namespace nvrec
