/* board_process_life.cpp - see board_process.h: the board's thread, from power-on to the end. */
#include <cerrno>
#include <csignal>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "board/board_process_self.h"

namespace vboard_app
{
namespace
{

using namespace std::chrono_literals;

constexpr auto kHelloTime = 15s;    // from the start to the agent's first word
constexpr auto kLastStateTime = 1s; // for the board to tell what is kept over a reboot
constexpr size_t kLongestLine = 64 << 10;

std::string why_not_started(const std::string &program, int error)
{
    if (error == ENOENT) return "\"" + program + "\" is not found";
    return "\"" + program + "\" cannot be executed: " + std::strerror(error);
}

/* As env(1) tells it. */
int status_of_start(int error)
{
    return error == ENOENT ? 127 : 126;
}

bool is_for_executing(int error)
{
    return error == ENOENT || error == EACCES || error == ENOEXEC || error == ENOTDIR || error == ELOOP ||
           error == EISDIR || error == ENAMETOOLONG || error == E2BIG || error == ETXTBSY || error == EPERM ||
           error == ELIBBAD || error == EINVAL;
}

} // namespace

void BoardProcess::Self::live()
{
    bool wanted = true;
    for (;;) {
        if (wanted) {
            if (!switch_on()) return;
            run_program();
            decide();
        }
        std::unique_lock lock(mutex);
        if (ending) return;
        changed.wait(lock, [&] { return wish != Wish::none || phase != Phase::off; });
        if (wish == Wish::stop) {
            lock.unlock();
            return end({Ending::How::stopped, 0, ""});
        }
        wanted = wish == Wish::on || wish == Wish::cycle || phase != Phase::off;
        wish = Wish::none;
    }
}

/* Start the program. False: it cannot be started, and the board has ended. */
bool BoardProcess::Self::switch_on()
{
    reader = {};
    said_hello = expired = killing = killed = false;
    end_of_life.clear();
    boot_id = last_state_id = 0;
    {
        std::lock_guard lock(mutex);
        phase = Phase::starting;
        outbox.clear();
    }
    ChildOrders orders;
    orders.program = options.program;
    orders.environment = options.environment;
    orders.working_folder = options.working_folder;
    orders.agent = options.agent;
    orders.captures_output = static_cast<bool>(options.output);
    orders.inherited = inherited;
    int error = 0;
    child = start_child(orders, &error);
    if (error != 0) {
        const bool executing = is_for_executing(error);
        const std::string why = executing ? why_not_started(options.program.front(), error)
                                          : std::string("no process can be started: ") + std::strerror(error);
        {
            std::lock_guard lock(mutex);
            start_failure = why;
            start_failure_status = executing ? status_of_start(error) : 125;
        }
        end({Ending::How::failed, 0, why});
        return false;
    }
    hello_deadline = Clock::now() + kHelloTime;
    {
        std::lock_guard lock(mutex);
        pid = child.pid;
        ++starts;
    }
    changed.notify_all();
    return true;
}

/* Until the program has ended. */
void BoardProcess::Self::run_program()
{
    for (;;) {
        const auto now = Clock::now();
        keep_time(now);
        bool has_outgoing = false;
        {
            std::lock_guard lock(mutex);
            has_outgoing = !outbox.empty();
            if (wish == Wish::stop && !killed) {
                kill(child.pid, SIGKILL);
                killed = true;
            }
            if (wish == Wish::on) wish = Wish::none; // it is on
        }
        const short outgoing = static_cast<short>(has_outgoing ? POLLIN | POLLOUT : POLLIN);
        pollfd watched[] = {{wakeup.get(), POLLIN, 0},
                            {child.process.get(), POLLIN, 0},
                            {child.channel.get(), outgoing, 0},
                            {child.output.get(), POLLIN, 0},
                            {child.errors.get(), POLLIN, 0}};
        if (poll(watched, 5, poll_timeout(now)) < 0 && errno != EINTR) break;
        if (watched[0].revents != 0) {
            uint64_t count;
            (void)!read(wakeup.get(), &count, sizeof count);
            std::unique_lock lock(mutex);
            const bool goes_off = wish == Wish::off || wish == Wish::cycle;
            lock.unlock();
            if (goes_off) begin_kill(Clock::now());
        }
        if (watched[3].revents != 0) read_output(&child.output, &output_line, false);
        if (watched[4].revents != 0) read_output(&child.errors, &error_line, true);
        if (watched[2].revents & (POLLIN | POLLHUP | POLLERR)) read_channel();
        if (child.channel && has_outgoing) write_channel();
        if (watched[1].revents != 0) break;
    }
    reap();
}

int BoardProcess::Self::poll_timeout(Clock::time_point now)
{
    std::optional<Clock::time_point> next;
    if (!said_hello && !killed && child.channel) next = hello_deadline;
    if (killing && !killed && (!next || kill_deadline < *next)) next = kill_deadline;
    if (!next) return -1;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(*next - now).count();
    return left < 0 ? 0 : static_cast<int>(left) + 1;
}

/* Whatever is due now. */
void BoardProcess::Self::keep_time(Clock::time_point now)
{
    if (killed) return;
    if (killing && now >= kill_deadline) return kill_program();
    if (said_hello || now < hello_deadline || !child.channel) return;
    end_how = Ending::How::not_linked;
    end_of_life = "\"" + options.program.front() +
                  "\" does not answer: is it linked with libvboard.so, and not statically?";
    kill_program();
}

void BoardProcess::Self::read_channel()
{
    for (;;) {
        size_t size = 0;
        uint8_t *room = reader.room(&size);
        const ssize_t got = recv(child.channel.get(), room, size, MSG_DONTWAIT);
        if (got < 0 && (errno == EAGAIN || errno == EINTR)) return;
        if (got <= 0) return leave_channel();
        reader.filled(static_cast<size_t>(got));
        // What the program wrote before an answer was given is there before the answer.
        if (child.output) read_output(&child.output, &output_line, false);
        if (child.errors) read_output(&child.errors, &error_line, true);
        Message message;
        while (reader.next(&message)) {
            try {
                take_message(message);
            } catch (const json::exception &) {
                // No message of an agent; the next one is understood again.
            }
        }
        if (reader.broken()) return leave_channel();
    }
}

void BoardProcess::Self::write_channel()
{
    std::lock_guard lock(mutex);
    while (!outbox.empty()) {
        const ssize_t sent =
            ::send(child.channel.get(), outbox.data(), outbox.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent <= 0) return; // full; or gone, which the next read tells
        outbox.erase(0, static_cast<size_t>(sent));
    }
}

/* The program has ended, or has become another one by exec. */
void BoardProcess::Self::leave_channel()
{
    child.channel.close();
    {
        std::lock_guard lock(mutex);
        phase = Phase::left;
    }
    fail_pending("power_off", "the program has ended");
    if (killing) kill_deadline = Clock::now();
}

void BoardProcess::Self::read_output(Descriptor *pipe, std::string *line, bool is_error)
{
    char bytes[16 << 10];
    for (;;) {
        const ssize_t got = read(pipe->get(), bytes, sizeof bytes);
        if (got < 0 && (errno == EAGAIN || errno == EINTR)) return;
        if (got <= 0) {
            pipe->close();
            return;
        }
        for (ssize_t i = 0; i < got; ++i) {
            if (bytes[i] == '\n' || line->size() >= kLongestLine) finish_line(line, is_error);
            if (bytes[i] != '\n') line->push_back(bytes[i]);
        }
    }
}

void BoardProcess::Self::finish_line(std::string *line, bool is_error)
{
    options.output(is_error, *line);
    line->clear();
}

/* The power goes: first the board tells what lies outside of it, which it is not given long for. */
void BoardProcess::Self::begin_kill(Clock::time_point now)
{
    if (killing || killed) return;
    killing = true;
    kill_deadline = now;
    std::lock_guard lock(mutex);
    if (phase != Phase::on) return;
    kill_deadline = now + kLastStateTime;
    last_state_id = send("state", json::object());
}

void BoardProcess::Self::kill_program()
{
    if (killed) return;
    killed = true;
    kill(child.pid, SIGKILL);
}

/* The program has ended: take its last words and its status. */
void BoardProcess::Self::reap()
{
    if (child.channel) read_channel();
    if (child.output) read_output(&child.output, &output_line, false);
    if (child.errors) read_output(&child.errors, &error_line, true);
    if (!output_line.empty()) finish_line(&output_line, false);
    if (!error_line.empty()) finish_line(&error_line, true);
    int status = 0;
    {
        // From here on its number may be another process's.
        std::lock_guard lock(mutex);
        waitpid(child.pid, &status, 0);
        pid = -1;
        last_exit =
            WIFSIGNALED(status) ? json{{"signal", WTERMSIG(status)}} : json{{"status", WEXITSTATUS(status)}};
        if (phase != Phase::starting) phase = Phase::left;
    }
    child = {};
    fail_pending("power_off", "the program has ended");
}

/* What follows the program's end: another start, no power, or the board's end. */
void BoardProcess::Self::decide()
{
    std::unique_lock lock(mutex);
    const Wish wished = wish;
    const bool by_itself = !killed;
    const json exit = last_exit;
    wish = wished == Wish::stop ? wished : Wish::none;
    lock.unlock();

    if (wished == Wish::stop) return end({Ending::How::stopped, 0, ""});
    if (!end_of_life.empty()) return end({end_how, 0, end_of_life});
    if (by_itself) {
        if (exit.contains("signal")) return end({Ending::How::signalled, exit["signal"], ""});
        if (said_hello || exit["status"] != 0) return end({Ending::How::exited, exit["status"], ""});
        return end({Ending::How::not_linked, 0,
                    "\"" + options.program.front() + "\" is not linked with libvboard.so"});
    }
    if (!options.reboots) {
        if (expired) return end({Ending::How::watchdog, 0, "the watchdog has expired"});
        return end({Ending::How::power, 0, "the power was switched off"});
    }
    lock.lock();
    // Somebody who asks meanwhile waits for the next start, unless there is none.
    phase = wished == Wish::off ? Phase::off : Phase::starting;
    watchdog_boot = expired && wished != Wish::off && wished != Wish::cycle;
    lock.unlock();
    changed.notify_all();
    tell_board();
}

void BoardProcess::Self::end(Ending with)
{
    {
        std::lock_guard lock(mutex);
        phase = Phase::ended;
        ending = std::move(with);
    }
    changed.notify_all();
    tell_board();
}

} // namespace vboard_app
