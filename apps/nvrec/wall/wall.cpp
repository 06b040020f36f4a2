/* wall.cpp - see wall.h: its life, and the main thread's work while the cameras run. */
#include "wall/wall.h"

#include <algorithm>
#include <utility>

#include "console/exit_code.h"
#include "host/host.h"
#include "wall/recording_status.h"

namespace nvrec
{
namespace
{

constexpr char kWindowTitle[] = "nvrec wall";
constexpr auto kWindowPeriod = std::chrono::milliseconds(16);

} // namespace

Wall::Wall(const WallOptions &options)
    : options_(options), wakeup_(options.reload ? Hangup::kReloads : Hangup::kEnds),
      openings_([this] { wakeup_.wake(); }), reporter_(feeders_)
{
    for (const CameraSource &source : options_.inputs)
        feeders_.push_back(
            std::make_unique<Feeder>(static_cast<int>(feeders_.size()), source, options_.feed));
    for (const std::string &picture : options_.pictures)
        orders_.push_back(picture_order(picture));
    session_.set_aspect(options_.aspect);
    const std::optional<Layout> wanted = layout_named(options_.layout);
    layout_fits_ = !wanted;
    layout_ = wanted.value_or(fitting_layout());
}

int Wall::run()
{
    if (!terminal_.send_log_to(options_.log_path, options_.log)) return kExitOutputFailed;
    if (!open_inputs()) {
        stop_cameras();
        return exit_code_;
    }
    if (!show()) {
        stop_cameras();
        terminal_.error("the library did not start; its log says why: " + options_.log_path);
        return kExitBoardFailed;
    }
    open_window();
    if (!end_wanted_ && modules_.start(*this)) {
        start_feeding();
        watch();
    }
    close();
    write_reports();
    return exit_code_;
}

/* Bring the board up, make every decoder for its stream's codec, and put the panes on the screen. */
bool Wall::show()
{
    const int channels = std::max(options_.channels, static_cast<int>(feeders_.size()));
    if (!session_.start(*output_mode_named(options_.output), channels)) return false;
    for (const auto &feeder : feeders_) {
        if (!openings_.contains(*feeder) && feeder->opened()) make_decoder(*feeder);
    }
    follow_cameras();
    return lay_out();
}

void Wall::set_recording(bool on)
{
    recording_ = on;
    wake(); /* whoever had its turn before */
}

bool Wall::recording(int channel) const
{
    return recorder_ && recorder_->runs(channel);
}

void Wall::set_alarm(const std::string &text)
{
    if (text == alarm_) return;
    alarm_ = text;
    wake();
}

void Wall::watch_thread(const WatchedThread &thread)
{
    const std::scoped_lock guard(watched_lock_);
    watched_.push_back(thread);
}

std::vector<WatchedThread> Wall::watched_threads() const
{
    const std::scoped_lock guard(watched_lock_);
    return watched_;
}

/* A user who wants to end a second time, while the question is on the screen, is sure: the wall ends. */
void Wall::end_by_user()
{
    if (recording_ && modules_.ask_whether_to_end()) {
        wake();
        return;
    }
    end(kExitDone);
}

void Wall::end(int exit_code)
{
    note_exit_code(exit_code);
    end_wanted_ = true;
    wakeup_.wake();
}

void Wall::open_window()
{
    if (options_.window == WindowMode::kOff) return;
    if (options_.window == WindowMode::kAuto && !host::has_desktop()) return;
    const std::string problem = host::open_window(kWindowTitle);
    window_open_ = problem.empty();
    if (window_open_) return;
    terminal_.error(problem);
    if (options_.window == WindowMode::kOn) {
        note_exit_code(kExitBoardFailed);
        end_wanted_ = true;
    }
}

/* When the user closes the window while something records, the window opens again with a question in it. */
void Wall::look_at_window()
{
    if (!window_open_ || host::refresh_window()) return;
    end_by_user();
    if (end_wanted_) return;
    host::close_window();
    window_open_ = host::open_window(kWindowTitle).empty();
    if (!window_open_) end(kExitDone);
}

/*
 * The main thread's work while the cameras run. Orders of modules and pictures are carried out in the order
 * of their times, however late the thread is: a turn goes only up to the next picture's time, and orders
 * after that time wait until the picture is taken.
 */
void Wall::watch()
{
    const auto period = std::chrono::milliseconds(terminal_.progress_period_ms());
    Clock::time_point progress_at = began_at_ + period;
    auto after = [this](double offset_s) {
        return began_at_ + std::chrono::ceil<Clock::duration>(std::chrono::duration<double>(offset_s));
    };
    constexpr Clock::duration kJustBefore = Clock::duration(1);
    take_due_pictures(0, false);
    Clock::time_point now = began_at_; /* so that seconds mean the same to all */
    while (!ended()) {
        const auto picture_s = next_picture_s(orders_);
        if (picture_s) now = std::min(now, after(*picture_s) - kJustBefore);
        Clock::time_point next = std::min(progress_at, modules_.take_turns(now));
        if (options_.duration_s > 0) next = std::min(next, after(options_.duration_s));
        if (picture_s) next = std::min(next, after(*picture_s));
        if (window_open_) next = std::min(next, Clock::now() + kWindowPeriod);
        wakeup_.wait_until(next);

        if (wakeup_.take_reload()) options_.reload();
        look_at_window();
        for (Feeder *camera : finished_openings()) {
            if (!changes_.contains(camera->channel())) add_late_camera(*camera);
        }
        make_changes();
        if (layout_stale_.exchange(false)) lay_out();
        follow_shapes(); /* also those of a stream that has taken another's place */
        if (picture_s && seconds() >= *picture_s) take_due_pictures(*picture_s, false);
        if (Clock::now() >= progress_at) {
            terminal_.progress(progress_line());
            progress_at = Clock::now() + period;
        }
        now = Clock::now();
    }
}

std::string Wall::progress_line() const
{
    std::string line = modules_.progress(seconds());
    if (!line.empty()) return line;
    return reporter_.progress_line(seconds());
}

void Wall::take_due_pictures(double now_s, bool at_end)
{
    for (PictureOrder &order : orders_) {
        if (order.done) continue;
        if (!at_end && (!order.at_s || *order.at_s > now_s)) continue;
        order.done = true;
        const std::string problem = take_picture(order.path);
        if (!problem.empty()) {
            terminal_.error(order.path + ": " + problem);
            note_exit_code(kExitOutputFailed);
        }
    }
}

void Wall::close()
{
    const bool ran_out = running_ == 0;
    const bool pictured =
        std::any_of(orders_.begin(), orders_.end(), [](const auto &order) { return !order.done; });
    lasted_s_ = seconds();
    stop_cameras();
    if (ran_out || pictured) wait_for_decoders();
    if (pictured) modules_.before_last_pictures();
    take_due_pictures(lasted_s_, true);
    modules_.stop();
    for (const auto &feeder : feeders_) {
        const CameraState state = feeder->status().state;
        const bool dead =
            feeder->input().live() && state != CameraState::kLive && state != CameraState::kEnded;
        if (dead || feeder->broken()) note_exit_code(kExitInputFailed);
    }
}

void Wall::write_reports()
{
    const std::vector<ChannelReport> channels = reporter_.collect();
    if (window_open_) host::close_window();
    session_.stop();
    if (!channels.empty()) {
        for (const std::string &line : table_of(channels))
            terminal_.print(line);
    }
    modules_.report();
    if (options_.json_path.empty()) return;
    if (write_text(options_.json_path,
                   json_of(channels, options_.layout, options_.output, lasted_s_, modules_.json())))
        return;
    terminal_.error("cannot write " + options_.json_path);
    note_exit_code(kExitOutputFailed);
}

double Wall::seconds() const
{
    return std::chrono::duration<double>(Clock::now() - began_at_).count();
}

bool Wall::ended() const
{
    if (end_wanted_ || wakeup_.end_wanted()) return true;
    if (running_ == 0 && openings_.empty() && !modules_.busy()) return true;
    return options_.duration_s > 0 && seconds() >= options_.duration_s;
}

/* The first thing that went wrong decides how the process ends. */
void Wall::note_exit_code(int exit_code)
{
    if (exit_code_ == kExitDone) exit_code_ = exit_code;
}

} // namespace nvrec
