/*
 * board_process.h - the board of a program that is started here, in a process of its own, with the agent
 * preloaded (platform/virtual/remote).
 *
 * Power: the program is started with the board's power and killed without it. When the watchdog expires
 * the program is killed and started again, as a reset would. What lies outside of the board is kept over
 * that: the monitor's plug, the analog cables and what moves before the cameras, the clock chip, and the
 * reason of the boot. A program that ends by itself ends the board.
 *
 *      start()             hello, boot               the program ends by itself
 *   off ───────► starting ────────────► on ─────────────────────────────────────► ended
 *    ▲  power on     ▲                  │ power off, power cycle, watchdog
 *    └───────────────┴──── killed ◄─────┘
 *
 * Threads: one thread of the board's own starts the program, reads its messages and its output, and calls
 * the listener; requests come from any thread and wait for their answers.
 */
#ifndef VBOARD_APP_BOARD_PROCESS_H
#define VBOARD_APP_BOARD_PROCESS_H

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "board/board.h"

namespace vboard_app
{

/* A fault that is set before the program begins. */
struct BootFault {
    std::string call;
    uint32_t nth = 1, count = 1; // as vboard_fault_set
    int32_t code = -1;
};

/* An analog input before the program begins. */
struct BootInput {
    uint32_t input = 0;
    bool lost = false;
    uint32_t moving = 0; // blocks
};

/* A clock that is taken before the program begins. */
struct SteppedBoot {
    int64_t board_us = 0; // where the board's clock stands
    int64_t wall_us = 0;  // and the wall clock, since 1970-01-01 00:00 UTC
};

struct BoardOptions {
    std::vector<std::string> program;     // with its arguments; searched for as a shell does
    std::vector<std::string> environment; // NAME=value, besides this process's
    std::string working_folder;           // of the program; empty: this process's
    std::string name;                     // of the board; empty: the program's base name
    std::string folder = ".";             // where requests read and write files
    std::string agent;                    // the agent's library; empty: where it was built or installed
    bool reboots = true;                  // false: watchdog and "power off" end the board
    bool line_buffered = false;           // the program's standard output, whatever it is connected to

    /* Each line of the program's standard output and error, without its end, on the board's thread, which
       it must not hold up. Empty: the program inherits this process's. */
    std::function<void(bool is_error, const std::string &line)> output;

    /* The board as it is when the power first comes on. */
    bool monitor_plugged = true;
    std::optional<SteppedBoot> stepped;
    bool step_pacing = false; // of display device 0
    std::vector<BootFault> faults;
    std::vector<BootInput> analog;
    std::optional<int64_t> rtc_seconds; // since 1970; without it the wall clock's time
    bool rtc_battery = true;
    bool follow_calls = false; // events "calls" from the program's first call on, in every boot
};

/* How it ended. */
struct Ending {
    enum class How {
        exited,     // by itself, `status` is its exit status
        signalled,  // by signal `status`
        watchdog,   // expired, and the board does not reboot
        power,      // was switched off, and the board does not reboot
        not_linked, // the program is not linked with the board
        failed,     // the board could not be started, or started again; `message` says why
        stopped,    // stop() was called
    };
    How how = How::exited;
    int status = 0;
    std::string message; // one line without an end; empty where there is nothing to say

    /* As env(1) and timeout(1) tell theirs; a signal as a shell tells it. */
    int exit_status() const;
};

/* The program was not started. */
class StartError : public std::runtime_error
{
public:
    StartError(int exit_status, const std::string &message) : std::runtime_error(message), status(exit_status)
    {
    }
    const int status; // 125, 126 or 127
};

class BoardProcess : public Board
{
public:
    /* Remembers what a program is to inherit of this process: signal mask, limits. Nothing is started. */
    explicit BoardProcess(BoardOptions options);
    ~BoardProcess() override; // as stop()

    /* Start the program, and return as soon as it runs. Once. @throws StartError */
    void start();

    /* Wait until the program has reached its main function, on a board that is set up. False: it ended
       before, or the time is over. */
    bool wait_booted(std::chrono::milliseconds timeout);

    /* Wait until the board has ended; empty: the time is over. Without a time: for ever. */
    std::optional<Ending> wait_ended(std::optional<std::chrono::milliseconds> timeout = {});

    /* Send a signal to the program; without one that runs nothing happens. */
    void send_signal(int signal);

    /* Kill the program and end the board. Returns when both is done. */
    void stop();

    /* Host requests "board", "power" and "description", and all of the board. Besides these, without
       a check: "calls.follow" and "refusals.follow" {on}. */
    nlohmann::json request(const std::string &name, const nlohmann::json &parameters) override;
    Picture picture(const int *device = nullptr, bool settled = false) override;
    void listen(Listener listener) override;

private:
    class Self;
    std::unique_ptr<Self> self_;
};

} // namespace vboard_app

#endif
