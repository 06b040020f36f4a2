/* wall_cameras.cpp - see wall.h: opening cameras, also late ones, changing and stopping them. */
#include <algorithm>
#include <utility>

#include "console/exit_code.h"
#include "host/host.h"
#include "wall/wall.h"

namespace nvrec
{
namespace
{

constexpr auto kLongWait = std::chrono::hours(1);
constexpr auto kLateCamera = std::chrono::seconds(3); /* the others wait for a camera no longer */
constexpr auto kNoCamera = std::chrono::seconds(5);   /* the screen waits for the first one no longer   */
constexpr auto kDrain = std::chrono::seconds(3);      /* for what decoders still hold at the inputs' end */

} // namespace

/*
 * Open all inputs at once. Files are waited for until they are open. Network cameras have three seconds from
 * the first that answers, or five if none does. Then the wall begins and shows which cameras are missing;
 * each of them joins when it answers. False when there is nothing to wait for.
 */
bool Wall::open_inputs()
{
    for (const auto &feeder : feeders_) {
        if (feeder->has_camera()) openings_.start(*feeder); /* or else it is room for one */
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

/* Take in the cameras that could be opened, and report those that could not. */
std::vector<Feeder *> Wall::finished_openings()
{
    std::vector<Feeder *> finished = openings_.take_finished();
    for (const Feeder *camera : finished) {
        if (camera->opened() || camera->was_asked_to_stop()) continue;
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

void Wall::make_decoder(Feeder &camera)
{
    if (camera.send_first() == 0) return;
    terminal_.error(camera.label() + ": its first frame was refused");
}

/*
 * The camera's thread may be waiting for its host's name to be resolved or for a connection; the main thread
 * does not wait for that.
 */
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
        place->hang_up();
        modules_.on_camera_changed(change->first);
        const bool another = place->source().name != change->second.name;
        auto camera = std::make_unique<Feeder>(change->first, change->second, options_.feed);
        camera->go_on_from(*place);
        retired_.push_back(std::exchange(place, std::move(camera)));
        watch_thread({"the thread of " + place->label(),
                      [camera = place.get()] { return camera->heartbeat_deadline(); }});
        if (another) {
            reporter_.begin_anew(change->first);
            modules_.on_camera_replaced(change->first);
        }
        change = changes_.erase(change);
        const bool other_layout = follow_cameras();
        if (other_layout || !place->has_camera()) lay_out(); /* also takes the last picture away */
        if (place->has_camera()) openings_.start(*place);
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

/* The last picture is to show what the inputs sent, up to the last frame when they ran to their end. */
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

} // namespace nvrec
