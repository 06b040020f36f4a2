/*
 * live_screen.h - the monitor's pictures as JPEG, for those who look. One thread takes, scales and encodes
 * them, once for all viewers of a width; while nobody has asked for the next picture it does nothing.
 */
#ifndef VBOARD_APP_SERVER_LIVE_SCREEN_H
#define VBOARD_APP_SERVER_LIVE_SCREEN_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "board/board.h"

namespace vboard_app
{

class LiveScreen
{
public:
    /* A picture for a viewer, on the screen's thread. */
    using Deliver = std::function<void(uint64_t viewer, std::shared_ptr<const std::string> jpeg)>;

    LiveScreen(Board &board, Deliver deliver);
    ~LiveScreen();

    /* Any thread. Numbers are the caller's. */
    void add(uint64_t viewer, uint32_t width, uint32_t rate);
    void next(uint64_t viewer); // it wants another picture
    void remove(uint64_t viewer);

private:
    using Clock = std::chrono::steady_clock;
    struct Viewer {
        uint32_t width = 0;
        Clock::duration period = {}; // at least, from picture to picture
        bool wants = false;
        Clock::time_point last = {}; // when it was given one
        uint64_t sequence = 0;       // which; 0 = none yet
    };

    void run();
    void show();
    Clock::time_point next_look() const; // mutex_ held

    Board &board_;
    const Deliver deliver_;
    std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    std::map<uint64_t, Viewer> viewers_;
    bool ends_ = false;

    // Of the thread alone.
    Picture shown_;
    uint64_t sequence_ = 0;
    std::map<uint32_t, std::shared_ptr<const std::string>> encoded_; // of shown_, by width
    std::thread thread_;
};

} // namespace vboard_app

#endif
