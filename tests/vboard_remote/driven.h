/*
 * driven.h - a program with the agent in it, and the other end of its channel. For tests.
 */
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

#include <nlohmann/json.hpp>

using nlohmann::json;

struct Message {
    json content;
    std::vector<uint8_t> blob;
};

class Driven
{
public:
    struct How {
        std::vector<std::string> command = {DRIVEN_PROGRAM};
        bool remote = true;                   // preload the agent, and give it a channel
        std::string preload_more;             // behind the agent, with a colon
        std::string descriptor;               // what VBOARD_REMOTE_FD says, when not the channel
        std::vector<std::string> environment; // further variables, NAME=VALUE
        bool boot = true;                     // send an empty "boot", and wait until the program is ready
    };

    Driven() : Driven(How()) {}
    explicit Driven(const How &how);
    ~Driven();
    Driven(const Driven &) = delete;
    Driven &operator=(const Driven &) = delete;

    /* A request and its answer: {"ok": ...} or {"error": ...}. Null: the channel has ended. */
    json ask(const std::string &name, const json &with = json::object());
    uint64_t send(const std::string &name, const json &with = json::object());
    json answer(uint64_t id);

    /* The next event of that name within ten seconds; null: none came. */
    json event(const std::string &name, int timeout_ms = 10000);

    /* Any next message; null content: the channel has ended, or nothing came in time. */
    Message read_message(int timeout_ms = 10000);
    void write_bytes(const std::string &bytes);
    void write_text(const std::string &text); // with its lengths in front
    void close_channel();

    /* A command, and the line that the program answers with. */
    std::string tell(const std::string &command);
    void say(const std::string &command);
    std::string read_line();

    /* Wait for the end: exit status, or 128 + signal. */
    int wait();
    pid_t pid() const { return pid_; }

    json hello;
    std::vector<uint8_t> blob; // of the newest answer

private:
    pid_t pid_ = -1;
    int channel_ = -1, in_ = -1, out_ = -1;
    uint64_t next_id_ = 1;
    std::string pending_; // of standard output
    std::deque<json> events_;
    std::map<uint64_t, json> answers_; // to other requests than the one that was waited for
};

/* Descriptors and threads of a process, as /proc lists them. */
std::vector<std::string> descriptors_of(pid_t process);
std::vector<std::string> threads_of(pid_t process);
