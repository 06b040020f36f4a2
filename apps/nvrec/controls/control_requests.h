/*
 * control_requests.h - what a running recorder answers on its control socket.
 *
 *   key NAME [remote|panel]   press a button of the board; "ok" once the recorder has acted on it
 *   board                     the table of "nvrec board"
 *
 * Threads: requests come on the socket's thread; what asks the wall is done in a turn of the main
 * thread, which is woken for it.
 */
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "controls/control_socket.h"
#include "host/clock.h"
#include "wall/module.h"

namespace nvrec
{

class Keys;

class ControlRequests final : public Module
{
public:
    /**
     * @param path  of the socket; empty = the user's default, which another recorder may have
     * @param keys  where buttons are pressed; outlives this
     */
    ControlRequests(std::string path, Keys &keys) : path_(std::move(path)), keys_(keys) {}
    ~ControlRequests() override { server_.stop(); }

    bool start(WallControl &wall) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    void stop() override;

private:
    /* A question to the main thread, and its answer once it has one. */
    struct Job {
        std::function<std::string()> work;
        std::optional<std::string> answer;
    };

    std::string answer(const std::string &request);
    std::string press(const std::vector<std::string> &words);
    std::string on_main_thread(std::function<std::string()> work);
    void do_work();

    const std::string path_;
    Keys &keys_;
    WallControl *wall_ = nullptr;
    ControlServer server_;

    std::mutex lock_; /* guards what follows */
    Condition done_;
    std::vector<std::shared_ptr<Job>> jobs_;
    bool stopped_ = false;
};

} // namespace nvrec
