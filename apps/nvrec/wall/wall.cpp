/* wall.cpp - see wall.h. */
#include "wall/wall.h"

#include <algorithm>
#include <utility>

#include "host/host.h"
#include "record/recording_status.h"
#include "wall/exit_code.h"

namespace nvrec
{
namespace
{

constexpr char kWindowTitle[] = "nvrec wall";
constexpr auto kLongWait = std::chrono::hours(1);
constexpr auto kWindowPeriod = std::chrono::milliseconds(16);
constexpr auto kLateCamera = std::chrono::seconds(3); /* the others wait for a camera no longer */
constexpr auto kNoCamera = std::chrono::seconds(5);   /* the screen waits for the first one no longer   */
constexpr auto kDrain = std::chrono::seconds(3);      /* for what decoders still hold at the inputs' end */

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
    const int channels = feeders_.empty() ? options_.channels : static_cast<int>(feeders_.size());
    session_.set_aspect(options_.aspect);
    layout_ = layout_named(options_.layout).value_or(layout_for(channels));
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

/*
 * All at once, files to the end. Network cameras have three seconds from the first that answers, or five
 * when none does; then the wall stands, shows who is missing, and every camera joins when it comes.
 * False when there is nothing to wait for.
 */
bool Wall::open_inputs()
{
    for (const auto &feeder : feeders_) {
        if (!feeder->source().address.empty()) openings_.start(*feeder); /* or else it is room for one */
    }
    size_t opened = 0;
    bool counts_down = false;
    Clock::time_point begin_at = Clock::now() + kLongWait;
    while (!openings_.empty() && !wakeup_.end_wanted() && Clock::now() < begin_at) {
        if (!options_.wait_for_all && openings_.only_live()) {
            const Clock::duration wait = opened > 0 ? kLateCamera : kNoCamera;
            begin_at = counts_down && opened == 0 ? begin_at : std::min(begin_at, Clock::now() + wait);
            counts_down = true;
        }
        wakeup_.wait_until(begin_at);
        for (const Feeder *camera : finished_openings())
            opened += camera->opened();
    }
    if (wakeup_.end_wanted()) return false;
    const bool some_may_come =
        std::ranges::any_of(feeders_, [](const auto &feeder) { return feeder->input().live(); });
    if (opened > 0 || some_may_come || feeders_.empty()) return true; /* modules have pictures of their own */
    terminal_.error("no input could be opened");
    return false;
}

/* Those that could be opened, and those that could not, which is said. */
std::vector<Feeder *> Wall::finished_openings()
{
    std::vector<Feeder *> finished = openings_.take_finished();
    for (const Feeder *camera : finished) {
        if (camera->opened()) continue;
        terminal_.error(camera->label() + ": " + camera->shown_address() + ": " + camera->trouble() +
                        (camera->input().live() ? "; trying again" : ""));
        if (!camera->input().live()) note_exit_code(kExitInputFailed);
    }
    return finished;
}

/* A camera that comes while the others run. */
void Wall::add_late_camera(Feeder &camera)
{
    if (camera.opened()) {
        const auto before = host::decoder_counters(camera.channel());
        make_decoder(camera);
        lay_out();
        const auto after = host::decoder_counters(camera.channel());
        if (before && after) reporter_.leave_out(camera.channel(), *after - *before);
    }
    start_feeding(camera);
}

/* The board up, every decoder of its stream's codec, and the panes on the screen. */
bool Wall::show()
{
    const int channels = std::max(options_.channels, static_cast<int>(feeders_.size()));
    if (!session_.start(*output_mode_named(options_.output), channels)) return false;
    for (const auto &feeder : feeders_) {
        if (!openings_.contains(*feeder) && feeder->opened()) make_decoder(*feeder);
    }
    return lay_out();
}

void Wall::make_decoder(Feeder &camera)
{
    if (camera.send_first() == 0) return;
    terminal_.error(camera.label() + ": its first frame was refused");
}

/* Bring the panes on the screen as they are wanted now. */
bool Wall::lay_out()
{
    take_shapes();
    modules_.before_layout();
    for (const auto &feeder : feeders_)
        feeder->expect_key();
    const bool done = enlarged_ >= 0 ? session_.apply_single(enlarged_) : session_.apply(layout_);
    choose_streams();
    for (const auto &feeder : feeders_)
        feeder->layout_done();
    modules_.on_layout();
    return done;
}

/* Its thread may be waiting for a name or a line: the main one does not wait for that. */
void Wall::change_camera(int channel, const CameraSource &source)
{
    const auto index = static_cast<size_t>(channel);
    if (index >= feeders_.size()) return;
    feeders_[index]->ask_to_stop();
    changes_.insert_or_assign(channel, source);
    wake();
}

void Wall::make_changes()
{
    for (auto change = changes_.begin(); change != changes_.end();) {
        std::unique_ptr<Feeder> &place = feeders_[static_cast<size_t>(change->first)];
        const bool ended = place->heartbeat_deadline() == Clock::time_point::max();
        if (openings_.contains(*place) || !ended) {
            ++change;
            continue;
        }
        place->join();
        retired_.push_back(std::move(place));
        place = std::make_unique<Feeder>(change->first, change->second, options_.feed);
        watch_thread({"the thread of channel " + std::to_string(change->first),
                      [camera = place.get()] { return camera->heartbeat_deadline(); }});
        change = changes_.erase(change);
        if (place->source().address.empty()) {
            lay_out(); /* takes the last picture away */
        } else {
            openings_.start(*place);
        }
    }
}

/* Cameras in small panes, and those without one, are fed from their smaller stream. */
void Wall::choose_streams()
{
    for (const auto &feeder : feeders_) {
        const auto &panes = session_.panes();
        const auto pane = std::ranges::find(panes, feeder->channel(), &DispAttrib::channel);
        const bool large = pane != panes.end() && pane->w * 2 > session_.mode().width_px;
        feeder->want_stream(large ? StreamChoice::kMain : StreamChoice::kSub);
    }
}

/* What the pictures look like that the channels show now: a module's own, or the camera's. */
bool Wall::take_shapes()
{
    bool differ = false;
    for (int channel = 0; channel < session_.channels(); ++channel) {
        auto [width, height] = modules_.picture_size(channel);
        const auto index = static_cast<size_t>(channel);
        if (width == 0 && index < feeders_.size() && feeders_[index]->opened()) {
            const StreamFacts facts = feeders_[index]->facts();
            width = facts.width_px;
            height = facts.height_px;
        }
        differ |= session_.set_shape(channel, {width, height});
    }
    return differ;
}

/* The panes stay; only pictures move in them, and what modules draw about them. */
void Wall::follow_shapes()
{
    if (!take_shapes()) return;
    session_.refit();
    modules_.on_layout();
}

/* The camera's thread. */
void Wall::note_shape(int channel, const StreamFacts &facts)
{
    const uint64_t shape = static_cast<uint64_t>(facts.width_px) << 32 | facts.height_px;
    const auto index = static_cast<size_t>(channel);
    if (index >= noted_shapes_.size() || noted_shapes_[index].exchange(shape) == shape) return;
    wakeup_.wake();
}

void Wall::show_layout(Layout layout)
{
    layout_ = layout;
    enlarged_ = -1;
    lay_out();
}

void Wall::enlarge(int channel)
{
    if (channel >= session_.channels() || channel == enlarged_) return;
    enlarged_ = channel;
    if (channel >= 0) selected_ = channel;
    lay_out();
}

void Wall::select(int channel)
{
    if (channel < 0 || channel >= session_.channels() || channel == selected_) return;
    selected_ = channel;
    modules_.on_layout();
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

void Wall::watch_thread(WatchedThread thread)
{
    const std::scoped_lock guard(watched_lock_);
    watched_.push_back(std::move(thread));
}

std::vector<WatchedThread> Wall::watched_threads() const
{
    const std::scoped_lock guard(watched_lock_);
    return watched_;
}

/* Whoever wants it again while he is asked knows what he does. */
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

void Wall::start_feeding()
{
    reporter_.mark();
    began_at_ = Clock::now();
    for (const auto &feeder : feeders_) {
        if (!openings_.contains(*feeder)) start_feeding(*feeder);
    }
}

void Wall::start_feeding(Feeder &camera)
{
    if (!camera.opened() && !camera.input().live()) return;
    ++running_;
    Feeder::Events events;
    events.trouble = [this, label = camera.label()](int, const std::string &line) {
        terminal_.error(label + ": " + line);
    };
    events.decoder_changed = [this](int) {
        layout_stale_ = true;
        wakeup_.wake();
    };
    events.ended = [this](int) {
        --running_;
        wakeup_.wake();
    };
    events.unit = [this](int channel, const AccessUnit &unit, const StreamFacts &facts) {
        if (unit.key) note_shape(channel, facts);
        modules_.on_unit(channel, unit, facts);
    };
    events.sound = [this](int channel, const SoundBlock &block) { modules_.on_audio(channel, block); };
    events.sound_packet = [this](int channel, const SoundPacket &packet) {
        modules_.on_sound_packet(channel, packet);
    };
    camera.start(std::move(events));
}

/* A window that its user closes while something records comes back with a question in it. */
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
 * The main thread's work while the cameras run. What modules and pictures were ordered for is done in
 * the order of its times, however late the thread is: a turn ends before the next picture's time, and
 * what comes behind that has its turn when the picture is taken.
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

/* What the inputs sent is to be seen on the last picture, to the last frame when they ran to their end. */
void Wall::wait_for_decoders()
{
    for (const auto &feeder : feeders_) {
        if (feeder->opened()) host::wait_for_decoder(feeder->channel(), kDrain);
    }
}

void Wall::stop_cameras()
{
    for (const auto &feeder : feeders_)
        feeder->ask_to_stop();
    if (openings_.wait_for_all() > 0) note_exit_code(kExitInputFailed); /* some never answered */
    for (const auto &feeder : feeders_)
        feeder->join();
}

void Wall::close()
{
    const bool ran_out = running_ == 0;
    const bool pictured =
        std::any_of(orders_.begin(), orders_.end(), [](const auto &order) { return !order.done; });
    lasted_s_ = seconds();
    stop_cameras();
    if (ran_out || pictured) wait_for_decoders();
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
