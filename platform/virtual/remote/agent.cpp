/*
 * agent.cpp - the board's remote face inside of the program: one end of a channel whose other end is
 * `vboard run`. Its library is preloaded; without the descriptor's number in the environment it does
 * nothing.
 *
 * Threads: a reader, which carries out requests one after the other; a writer; one that waits for the
 * watchdog; and as many as needed for requests that wait (Workers). The first request, "boot", is carried
 * out by the library's constructor, before the program begins. When the other process ends, the program
 * goes on as if nobody had ever asked.
 *
 * A child of fork() has no agent, since it has none of these threads: its copy of the channel is closed.
 * A program that is started by exec() gets neither environment nor channel.
 */
#include "agent.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include "agent_threads.h"
#include "board_functions.h"
#include "nodes/openings.h"
#include "requests.h"
#include "text_of.h"

namespace vboard_remote
{
namespace
{

using nlohmann::json;

constexpr char kDescriptorVariable[] = "VBOARD_REMOTE_FD";
constexpr char kPreloadVariable[] = "LD_PRELOAD";
constexpr char kOwnName[] = "libvboard-remote.so";

class Agent
{
public:
    explicit Agent(int descriptor) : descriptor_(descriptor), channel_(descriptor) {}

    void start();
    void program_ends();
    void leave_child();

private:
    void read_requests();
    void take(const std::string &text);
    void carry_out(const Request &request, const json &id, const json &with);
    void answer_failure(const json &id, const char *code, const std::string &message,
                        const std::string &parameter = {});
    void watch_watchdog();
    void say_hello(bool linked);
    void boot();

    std::atomic<int> descriptor_; // -1 in a child, and once the channel has ended
    Channel channel_;
    Outbox outbox_;
    Workers workers_;
    Context context_{outbox_};
    bool is_booted_ = false; // by the constructor, and then by the reader
    std::atomic<bool> program_has_ended_{false};
};

// Both are set by the constructor, before any other thread of the program.
Agent *agent = nullptr;
pid_t own_process = 0;

void Agent::say_hello(bool linked)
{
    const std::string text =
        text_of({{"event", "hello"},
                 {"data", {{"linked", linked}, {"version", VBOARD_REMOTE_VERSION}, {"pid", getpid()}}}});
    channel_.write(text, {});
}

void Agent::answer_failure(const json &id, const char *code, const std::string &message,
                           const std::string &parameter)
{
    json error = {{"code", code}, {"message", message}};
    if (!parameter.empty()) error["parameter"] = parameter;
    outbox_.send(text_of({{"id", id}, {"error", std::move(error)}}));
}

void Agent::carry_out(const Request &request, const json &id, const json &with)
{
    is_in_request() = true;
    try {
        Answer answer = request.carry_out(Parameters(with), context_);
        outbox_.send(text_of({{"id", id}, {"ok", std::move(answer.result)}}), std::move(answer.blob));
    } catch (const RequestFailure &failure) {
        answer_failure(id, failure.code, failure.what(), failure.parameter);
    } catch (const std::exception &exception) {
        answer_failure(id, "refused", exception.what());
    }
    is_in_request() = false;
}

// How deep lists and objects lie in one another: copies of them are made level by level, on the stack.
bool is_nested_too_deep(const std::string &text)
{
    constexpr int kDeepest = 32; // requests need three
    int depth = 0;
    bool in_string = false;
    for (size_t at = 0; at < text.size(); ++at) {
        const char letter = text[at];
        if (in_string && letter == '\\')
            ++at;
        else if (letter == '"')
            in_string = !in_string;
        else if (!in_string && (letter == '[' || letter == '{') && ++depth > kDeepest)
            return true;
        else if (!in_string && (letter == ']' || letter == '}'))
            --depth;
    }
    return false;
}

void Agent::take(const std::string &text)
{
    if (is_nested_too_deep(text)) return answer_failure(nullptr, "bad_json", "it is nested too deep");
    const json message = json::parse(text, nullptr, false);
    if (!message.is_object()) return answer_failure(nullptr, "bad_json", "this is no JSON object");
    const auto number = message.find("id");
    const json id = number != message.end() && number->is_number_integer() ? *number : json();
    const auto name = message.find("do");
    if (name == message.end() || !name->is_string())
        return answer_failure(id, "bad_json", "\"do\" names no request");
    const auto given = message.find("with");
    const json with = given != message.end() && !given->is_null() ? *given : json::object();
    if (!with.is_object()) return answer_failure(id, "bad_parameter", "\"with\" is no object");

    const Request *request = find_request(name->get_ref<const std::string &>());
    if (request == nullptr) return answer_failure(id, "not_found", "there is no such request");
    const bool is_boot = strcmp(request->name, "boot") == 0;
    if (is_boot == is_booted_)
        return answer_failure(id, "refused", is_boot ? "the program runs already" : "\"boot\" comes first");
    if (program_has_ended_) return answer_failure(id, "power_off", "the program ends");
    if (!request->waits) {
        if (is_boot) is_booted_ = true; // whatever comes of it, it is not to be tried again
        return carry_out(*request, id, with);
    }
    if (!workers_.run([this, request, id, with] { carry_out(*request, id, with); }))
        answer_failure(id, "busy", "too many requests wait already");
}

void Agent::read_requests()
{
    std::string text;
    try {
        while (channel_.read(text))
            take(text);
    } catch (const std::exception &) {
        // No memory for a message: the channel cannot go on.
    }
    outbox_.end();
    end_following();
    const int descriptor = descriptor_.exchange(-1);
    if (descriptor >= 0) shutdown(descriptor, SHUT_RDWR); // the writer may still be at it: it stays open
}

void Agent::watch_watchdog()
{
    if (vboard_watchdog_wait_expired(-1) != 0) return;
    vboard_watchdog_stat stat = {};
    vboard_watchdog_get_stat(&stat);
    outbox_.send(text_of({{"event", "watchdog"}, {"data", {{"expired_at_us", stat.expired_at_us}}}}));
}

// Before the program begins: nobody but this thread uses the channel.
void Agent::boot()
{
    std::string text;
    while (!is_booted_ && channel_.read(text))
        take(text);
}

void Agent::start()
{
    if (!board_is_linked()) {
        say_hello(false);
        std::string ignored; // until the other process has ended this one, or itself
        while (channel_.read(ignored)) {
        }
        close(descriptor_.exchange(-1));
        return;
    }
    say_hello(true);
    follow_refusals(outbox_);
    if (!start_agent_thread([this] { outbox_.write_all(channel_); })) {
        shutdown(descriptor_,
                 SHUT_RDWR); // a process without threads cannot be led, and the other end sees it
        return;
    }
    boot();
    start_agent_thread([this] { watch_watchdog(); });
    start_agent_thread([this] { read_requests(); });
}

void Agent::program_ends()
{
    program_has_ended_ = true;
    if (descriptor_ >= 0) outbox_.flush();
}

void Agent::leave_child()
{
    const int descriptor = descriptor_.exchange(-1);
    if (descriptor >= 0) close(descriptor);
}

// Whether a socket of this kind was handed over under that number.
bool is_channel(int descriptor)
{
    int domain = 0, type = 0;
    socklen_t size = sizeof(int);
    if (getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &domain, &size) != 0 || domain != AF_UNIX) return false;
    size = sizeof(int);
    return getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_STREAM;
}

// Leave this library out of what children of the program are to preload.
void restore_preload()
{
    const char *value = getenv(kPreloadVariable);
    if (value == nullptr) return;
    const std::string before = value;
    std::string others;
    for (size_t at = 0; at < before.size();) {
        const size_t end = std::min(before.find_first_of(": ", at), before.size());
        const std::string library = before.substr(at, end - at);
        const bool is_this = library.substr(library.rfind('/') + 1) == kOwnName;
        if (!library.empty() && !is_this) others += (others.empty() ? "" : ":") + library;
        at = end + 1;
    }
    if (others.empty())
        unsetenv(kPreloadVariable);
    else
        setenv(kPreloadVariable, others.c_str(), 1);
}

// The descriptor that the environment names, taken out of it; -1 when nobody asked for an agent.
int take_descriptor()
{
    const char *value = getenv(kDescriptorVariable);
    if (value == nullptr) return -1;
    char *end = nullptr;
    errno = 0;
    const long number = strtol(value, &end, 10);
    const bool is_number = *value != '\0' && *end == '\0' && errno == 0 && number >= 0 && number < 1 << 20;
    unsetenv(kDescriptorVariable);
    restore_preload();
    if (!is_number || !is_channel(static_cast<int>(number))) {
        fprintf(stderr, "vboard: %s names no channel\n", kDescriptorVariable);
        return -1;
    }
    fcntl(static_cast<int>(number), F_SETFD, FD_CLOEXEC);
    return static_cast<int>(number);
}

} // namespace

bool has_agent()
{
    return agent != nullptr;
}

pid_t agent_process()
{
    return own_process;
}

[[gnu::constructor]] static void start_agent()
{
    const int caller_errno = errno;
    const int descriptor = take_descriptor();
    if (descriptor >= 0) {
        agent = new Agent(descriptor);
        own_process = getpid();
        pthread_atfork(lock_openings, unlock_openings, [] {
            unlock_openings_of_child();
            agent->leave_child();
        });
        agent->start();
    }
    errno = caller_errno;
}

[[gnu::destructor]] static void end_agent()
{
    if (agent != nullptr) agent->program_ends();
}

} // namespace vboard_remote
