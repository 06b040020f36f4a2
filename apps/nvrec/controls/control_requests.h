/*
 * control_requests.h - what a running recorder answers on its control socket; "help" lists it.
 *
 *   key NAME [remote|panel]   press a button of the board; "ok" once the recorder has acted on it
 *   board                     the table of "nvrec board"
 *   status [json]             the state of cameras, recordings and disk
 *   metrics                   the same for Prometheus
 *   event CAMERA [TEXT]       something happened at a camera
 *   reload                    take up a changed configuration
 *
 * A request is UTF-8. A word with blanks stands in double quotes, in which \" and \\ are themselves.
 *
 * Threads: requests come on the socket's threads; those that need the wall are carried out in a turn of the
 * main thread, which is woken for it.
 */
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "controls/control_hooks.h"
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
     * @param path  of the socket; empty = the user's default, which another recorder may hold already
     * @param keys   where buttons are pressed; outlives this
     * @param hooks  functions of other parts of the recorder
     */
    ControlRequests(std::string path, Keys &keys, ControlHooks hooks = {})
        : path_(std::move(path)), keys_(keys), hooks_(std::move(hooks))
    {
    }
    ~ControlRequests() override { server_.stop(); }

    bool start(WallControl &wall) override;
    Clock::time_point take_turn(Clock::time_point now) override;
    void stop() override;

    /**
     * Answer a request; before start() and after stop() the answer is an error. Any thread except the main
     * one.
     */
    std::string answer(const std::string &request);

private:
    /* A question to the main thread, and its answer when there is one. */
    struct Job {
        std::function<std::string()> work;
        std::optional<std::string> answer;
    };
    struct Request;
    using Words = std::vector<std::string>;

    static const std::vector<Request> &requests();
    std::string press(const Words &words);
    std::string tell_board(const Words &words);
    std::string tell_status(const Words &words);
    std::string tell_metrics(const Words &words);
    std::string note_event(const Words &words);
    std::string reload(const Words &words);
    std::string help(const Words &words);
    std::string on_main_thread(std::function<std::string()> work);
    void do_work();

    const std::string path_;
    Keys &keys_;
    const ControlHooks hooks_;
    WallControl *wall_ = nullptr;
    Clock::time_point started_;
    ControlServer server_;

    std::mutex lock_; /* guards what follows */
    Condition done_;
    std::vector<std::shared_ptr<Job>> jobs_;
    bool stopped_ = true;
};

/** A word as a request takes it, in quotes where it needs them. */
std::string request_word(const std::string &word);

/** The words of a request. @return nothing when a quote is not closed */
std::optional<std::vector<std::string>> request_words(const std::string &request);

} // namespace nvrec
