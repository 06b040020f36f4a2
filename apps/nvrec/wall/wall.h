/*
 * wall.h - live cameras on one screen, from opened inputs to the closing table.
 *
 *   open the inputs -> start the library -> one frame a channel -> layout -> feed
 *     -> (late cameras, pictures, progress, window, layout again where a camera came back with
 *        another codec)
 *     -> end of inputs, time or Ctrl-C -> last pictures -> table
 *
 * All else that the recorder does while the wall runs is done by modules.
 *
 * Threads: everything here runs on the main thread; the feeders have one each and wake it.
 */
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "camera/feeder.h"
#include "console/terminal.h"
#include "wall/module_list.h"
#include "wall/openings.h"
#include "wall/pictures.h"
#include "wall/report.h"
#include "wall/session.h"
#include "wall/wakeup.h"

namespace nvrec
{

enum class WindowMode { kAuto, kOn, kOff };

struct WallOptions {
    std::vector<CameraSource> inputs;
    std::string layout = "auto";
    std::string output = "1920x1080";
    std::vector<std::string> pictures;
    double duration_s = 0; /* 0 = until every input has ended */
    WindowMode window = WindowMode::kAuto;
    std::string log_path = "out/nvrec.log";
    LogOptions log;
    std::function<void()> reload; /* on SIGHUP, by the main thread; none = SIGHUP ends the wall */
    std::string json_path;
    FeedOptions feed;
    bool wait_for_all = false; /* do not begin without the cameras that answer late */
    AspectOptions aspect;      /* how pictures are placed in their panes           */
    int channels = 0;          /* at least so many, for modules that show pictures of their own */
};

class Wall final : private WallControl
{
public:
    explicit Wall(const WallOptions &options);

    /** Before run(). */
    void add(std::unique_ptr<Module> module) { modules_.add(std::move(module)); }

    /** The whole life of the wall. @return an ExitCode. */
    int run();

private:
    Session &session() override { return session_; }
    Terminal &terminal() override { return terminal_; }
    Reporter &reporter() override { return reporter_; }
    const std::vector<std::unique_ptr<Feeder>> &cameras() const override { return feeders_; }
    void change_camera(int channel, const CameraSource &source) override;
    void set_aspect(int channel, Aspect aspect) override;
    void show_layout(Layout layout) override;
    void show_fitting_layout() override;
    Layout layout() const override { return layout_; }
    void enlarge(int channel) override;
    int enlarged() const override { return enlarged_; }
    void select(int channel) override;
    int selected() const override { return selected_; }
    bool window_is_open() const override { return window_open_; }
    void key(Key key) override { modules_.key(key); }
    void pointer(const PointerEvent &event) override { modules_.pointer(event); }
    void wake() override { wakeup_.wake(); }
    void set_recording(bool on) override;
    bool recording() const override { return recording_; }
    void set_recorder(const RecordingView *recorder) override { recorder_ = recorder; }
    const RecordingView *recorder() const override { return recorder_; }
    bool recording(int channel) const override;
    void set_alarm(const std::string &text) override;
    std::string alarm() const override { return alarm_; }
    void watch_thread(const WatchedThread &thread) override;
    std::vector<WatchedThread> watched_threads() const override;
    void end(int exit_code) override;
    void end_by_user() override;

    bool open_inputs();
    std::vector<Feeder *> finished_openings();
    void add_late_camera(Feeder &camera);
    void make_changes();
    void make_decoder(Feeder &camera);
    void start_feeding(Feeder &camera);
    bool show();
    void open_window();
    void note_shape(int channel, const StreamFacts &facts);
    bool take_shapes();
    void follow_shapes();
    void look_at_window();
    void start_feeding();
    void watch();
    bool lay_out();
    bool follow_cameras();
    Layout fitting_layout() const;
    void choose_streams();
    std::string progress_line() const;
    void take_due_pictures(double now_s, bool at_end);
    void wait_for_decoders();
    void stop_cameras();
    void close();
    void write_reports();
    double seconds() const;
    bool ended() const;
    void note_exit_code(int exit_code);

    const WallOptions options_;
    Wakeup wakeup_; /* first of all: it blocks the signals that the threads inherit */
    Terminal terminal_;
    Session session_;
    Layout layout_ = Layout::kSingle;
    bool layout_fits_ = false; /* it is the smallest grid for the cameras, whoever comes or goes */
    int enlarged_ = -1;        /* the channel that has the screen to itself, or -1 */
    int selected_ = 0;
    std::vector<std::unique_ptr<Feeder>> feeders_;
    std::map<int, CameraSource> changes_;          /* by channel: what comes when its thread has ended */
    std::vector<std::unique_ptr<Feeder>> retired_; /* whoever watches threads may hold them still */
    Openings openings_;
    Reporter reporter_;
    std::vector<PictureOrder> orders_;
    ModuleList modules_;
    bool window_open_ = false;
    bool recording_ = false; /* as a module says */
    const RecordingView *recorder_ = nullptr;
    std::string alarm_;
    mutable std::mutex watched_lock_; /* guards the list */
    std::vector<WatchedThread> watched_;
    bool end_wanted_ = false;
    Clock::time_point began_at_;
    double lasted_s_ = 0;
    int exit_code_ = 0;

    std::atomic<int> running_ = 0;           /* feeders not at their end       */
    std::atomic<bool> layout_stale_ = false; /* a decoder was made anew        */
    std::array<std::atomic<uint64_t>, NVRHAL_MAX_CAMERAS> noted_shapes_ = {}; /* width << 32 | height */
};

} // namespace nvrec
