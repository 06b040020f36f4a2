/*
 * board_process_self.h - what stands behind BoardProcess. board_process.cpp holds what is called from
 * outside, board_process_life.cpp the board's thread, board_process_messages.cpp the messages.
 *
 * `mutex` guards all members unless they say otherwise. `changed` tells of every change of them.
 * `listener_mutex` is held during a call of the listener, and never taken while `mutex` is held.
 */
#ifndef VBOARD_APP_BOARD_PROCESS_SELF_H
#define VBOARD_APP_BOARD_PROCESS_SELF_H

#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>

#include <nlohmann/json.hpp>

#include "board/board_process.h"
#include "board/channel.h"
#include "board/child.h"

namespace vboard_app
{

using Clock = std::chrono::steady_clock;
using nlohmann::json;

class BoardProcess::Self
{
public:
    explicit Self(BoardOptions chosen);
    ~Self();

    enum class Phase { off, starting, on, left, ended };
    enum class Wish { none, off, on, cycle, stop };

    /* A request that was sent, until its answer has come. */
    struct Pending { // NOLINT(bugprone-exception-escape): an empty JSON value allocates nothing
        bool done = false;
        std::string error_code, error_message, error_parameter; // code empty: it was carried out
        json ok;
        std::vector<uint8_t> blob;
    };

    /* --- from outside --- */
    void start();
    json call(const std::string &name, const json &with, std::chrono::milliseconds patience,
              std::vector<uint8_t> *blob);
    json power(const std::string &to);
    json told(); // the result of the request "board"
    void wish_for(Wish wish);
    Ending wait_for_end();
    void stop();

    /* --- on the board's thread --- */
    void live();
    bool switch_on();
    void run_program();
    void read_channel();
    void write_channel();
    void read_output(Descriptor *pipe, std::string *line, bool is_error);
    void finish_line(std::string *line, bool is_error);
    void begin_kill(Clock::time_point now);
    void kill_program();
    void reap();
    void decide();
    void end(Ending with);
    int poll_timeout(Clock::time_point now);
    void keep_time(Clock::time_point now);

    void take_message(const Message &message);
    void take_answer(const json &answer, const Message &message);
    void take_event(const std::string &event, const json &data);
    void take_hello(const json &data);
    void take_boot_answer(const Pending &answer);
    void send_boot();
    json boot_orders();
    void keep_outside(const json &state);
    void fail_pending(const std::string &code, const std::string &message);
    void leave_channel();
    void tell(const std::string &event, const json &data);
    void tell_board();
    uint64_t send(const std::string &name, const json &with); // mutex held; gives the id
    void wake();

    const BoardOptions options;
    const Inherited inherited;

    std::mutex mutex;
    std::condition_variable changed;
    Phase phase = Phase::off;
    Wish wish = Wish::none;
    std::optional<Ending> ending;
    std::string start_failure; // why the program could not be started at first
    int start_failure_status = 0;
    uint64_t starts = 0;
    bool watchdog_boot = false; // reason of the last boot
    pid_t pid = -1;
    json last_exit; // of the program; null, {"status"} or {"signal"}
    std::map<uint64_t, std::shared_ptr<Pending>> pending;
    uint64_t next_id = 1;
    std::string outbox; // bytes that the channel has not taken yet

    std::mutex listener_mutex;
    Listener listener; // guarded by listener_mutex

    std::mutex stop_mutex; // joining, once
    std::thread thread;
    Descriptor wakeup; // eventfd: something for the board's thread to do

    /* --- of the board's thread alone --- */
    Child child;
    MessageReader reader;
    std::string output_line, error_line;
    bool said_hello = false;
    bool expired = false;    // the watchdog
    std::string end_of_life; // why the program is killed, when there is more to say than that
    Ending::How end_how = Ending::How::failed;
    uint64_t boot_id = 0;       // of the request "boot"; 0 = not sent or answered
    uint64_t last_state_id = 0; // of the request that asks for what is kept; 0 = none
    Clock::time_point hello_deadline, kill_deadline;
    bool killing = false; // the kill is due at kill_deadline at the latest
    bool killed = false;
    /* What lies outside of the board, as it was last seen. */
    bool monitor_plugged = true;
    json analog = json::array();
    json rtc; // null, or {"seconds", "at_wall_us"}
    bool battery = true;
    int64_t wall_us = 0;                              // the board's wall clock then
    std::map<uint64_t, std::shared_ptr<Pending>> own; // answers that this thread waits for
};

} // namespace vboard_app

#endif
