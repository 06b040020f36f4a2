/*
 * run_command.cpp - `vboard run`: a program on the board, and the board's server beside it.
 *
 * Signals are passed on to the program. Those that the terminal sends have reached it already, as it is in
 * the same group of processes.
 */
#include "server/command.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <thread>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "board/board_process.h"
#include "server/http_server.h"
#include "server/requests.h"
#include "server/run_directory.h"
#include "server/run_options.h"

namespace
{

using namespace vboard_app;

constexpr int kOwnFailure = 125;
constexpr int kPassedOn[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR1, SIGUSR2};
constexpr rlim_t kOpenFiles = 8192; // of this process alone: a server's sockets

int64_t wall_clock_us()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}

BoardOptions board_options(const RunOptions &chosen, const std::string &name)
{
    BoardOptions options;
    options.program = chosen.program;
    options.name = name;
    options.folder = chosen.folder;
    options.reboots = chosen.reboots;
    if (chosen.stepped)
        options.stepped = SteppedBoot{1000000, wall_clock_us()}; // a clock at 0 looks like none
    return options;
}

void raise_open_files()
{
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, kOpenFiles));
    setrlimit(RLIMIT_NOFILE, &limit);
}

/* End as the program did, so that whoever started this sees the same. */
int end_by_signal(int number)
{
    const rlimit no_core = {0, 0}; // the program has left one, if any
    setrlimit(RLIMIT_CORE, &no_core);
    signal(number, SIG_DFL);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, number);
    raise(number);
    sigprocmask(SIG_UNBLOCK, &only, nullptr);
    return 128 + number;
}

/* Pass signals on until the board has ended. Gives the signal that ended a board without a program; or 0. */
int pass_signals_on(BoardProcess &board, int signals, int ended)
{
    for (;;) {
        pollfd watched[] = {{signals, POLLIN, 0}, {ended, POLLIN, 0}};
        if (poll(watched, 2, -1) < 0 && errno != EINTR) return 0;
        if (watched[1].revents != 0) return 0;
        signalfd_siginfo info = {};
        if (watched[0].revents == 0 || read(signals, &info, sizeof info) != sizeof info) continue;
        const int number = static_cast<int>(info.ssi_signo);
        const bool has_program = !board.request("board", nlohmann::json::object()).at("pid").is_null();
        if (has_program && info.ssi_code != SI_KERNEL) board.send_signal(number);
        if (has_program || number == SIGUSR1 || number == SIGUSR2) continue;
        board.stop();
        return number;
    }
}

int tell(const Ending &ending)
{
    if (!ending.message.empty()) fprintf(stderr, "vboard run: %s\n", ending.message.c_str());
    return ending.exit_status();
}

struct Result {
    int status = 0;
    int signal = 0; // 0: none
};

Result run(const RunOptions &chosen)
{
    if (!std::filesystem::is_directory(chosen.folder))
        throw std::runtime_error("\"" + chosen.folder + "\" is no folder");
    const bool named = !chosen.name.empty();
    RunFile file(named ? chosen.name : std::filesystem::path(chosen.program.front()).filename().string(),
                 named);
    BoardProcess board(board_options(chosen, file.name())); // remembers what the program is to inherit

    sigset_t passed_on;
    sigemptyset(&passed_on);
    for (const int number : kPassedOn)
        sigaddset(&passed_on, number);
    pthread_sigmask(SIG_BLOCK, &passed_on, nullptr);
    signal(SIGPIPE, SIG_IGN);
    raise_open_files();

    Requests requests(board, board.request("board", nlohmann::json::object()).at("folder"));
    HttpServer server(board, requests, chosen.address, chosen.port);
    file.write(server.access().url(), server.access().token());
    board.start();
    if (!chosen.quiet)
        fprintf(stderr, "vboard: the board's page is %s?token=%s\n", server.access().url().c_str(),
                server.access().token().c_str());

    const int ended = eventfd(0, EFD_CLOEXEC);
    const int signals = signalfd(-1, &passed_on, SFD_CLOEXEC);
    std::thread waiter([&] {
        board.wait_ended();
        const uint64_t one = 1;
        (void)!write(ended, &one, sizeof one);
    });
    try {
        if (!chosen.record.empty()) requests.start_recording(chosen.record);
    } catch (const RequestError &error) {
        fprintf(stderr, "vboard run: no scenario is recorded: %s\n", error.what());
        board.stop();
        waiter.join();
        return {kOwnFailure, 0};
    }
    const int by_signal = pass_signals_on(board, signals, ended);
    waiter.join();
    close(ended);
    close(signals);
    if (by_signal != 0) return {0, by_signal};
    const Ending ending = board.wait_ended().value();
    if (ending.how == Ending::How::signalled) return {0, ending.status};
    return {tell(ending), 0};
}

} // namespace

int run_command(int argc, char **argv)
{
    int status = 0;
    const std::optional<RunOptions> chosen = read_run_options(argc, argv, &status);
    if (!chosen) return status;
    try {
        const Result result = run(*chosen);
        return result.signal != 0 ? end_by_signal(result.signal) : result.status;
    } catch (const StartError &error) {
        fprintf(stderr, "vboard run: %s\n", error.what());
        return error.status;
    } catch (const std::exception &error) {
        fprintf(stderr, "vboard run: %s\n", error.what());
        return kOwnFailure;
    }
}
