/*
 * wall.h - live cameras on one screen, from opened inputs to the closing table.
 *
 *   open all inputs -> start the library -> one frame a channel -> layout -> feed
 *     -> (pictures, progress, window, layout again where a camera came back with another codec)
 *     -> end of inputs, time or Ctrl-C -> last pictures -> table
 *
 * Threads: everything here runs on the main thread; the feeders have one each and ring it.
 */
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "feeder.h"
#include "pictures.h"
#include "report.h"
#include "session.h"
#include "terminal.h"
#include "wakeup.h"

namespace nvrec
{

enum class WindowWish { kAuto, kOn, kOff };

struct WallOptions {
    std::vector<std::string> inputs;
    std::string layout = "auto";
    std::string output = "1920x1080";
    std::vector<std::string> pictures;
    double duration_s = 0; /* 0 = until every input has ended */
    WindowWish window = WindowWish::kAuto;
    std::string log_path = "out/nvrec.log";
    std::string json_path;
    FeedOptions feed;
};

class Wall
{
public:
    explicit Wall(const WallOptions &options);

    /** The whole life of the wall. @return an ExitCode. */
    int run();

private:
    using Clock = std::chrono::steady_clock;

    bool open_inputs();
    bool show();
    void open_window();
    void start_feeding();
    void watch();
    void take_due_pictures(double now_s, bool at_end);
    void wait_for_decoders();
    void close();
    void write_reports();
    double seconds() const;
    bool ended() const;
    void worse(int exit_code);

    const WallOptions options_;
    Wakeup wakeup_; /* first of all: it blocks the signals that the threads inherit */
    Terminal terminal_;
    Session session_;
    Layout layout_ = Layout::kSingle;
    std::vector<std::unique_ptr<Feeder>> feeders_;
    Reporter reporter_;
    std::vector<PictureOrder> orders_;
    bool window_open_ = false;
    bool end_wanted_ = false;
    Clock::time_point began_at_;
    double lasted_s_ = 0;
    int exit_code_ = 0;

    std::atomic<int> running_ = 0;           /* feeders not at their end       */
    std::atomic<bool> layout_stale_ = false; /* a decoder was made anew        */
};

} // namespace nvrec
