/* reload.cpp - see reload.h. */
#include "commands/reload.h"

#include <algorithm>

#include "camera/camera_source.h"
#include "commands/run_options.h"
#include "config/read.h"
#include "console/terminal.h"
#include "host/service.h"
#include "wall/session.h"

namespace nvrec
{
namespace
{

/* Whether the cameras differ in plan and aspect at most: then neither has to be connected anew. */
bool is_same_connection(const config::Camera &one, const config::Camera &other)
{
    config::Camera like = other;
    like.plan = one.plan;
    like.aspect = one.aspect;
    return one.same_as(like);
}

} // namespace

Reload::Reload(config::Config running) : running_(std::move(running)), channels_(running_.cameras)
{
    channels_.resize(static_cast<size_t>(running_.channels()));
}

bool Reload::start(WallControl &wall)
{
    wall_ = &wall;
    return true;
}

void Reload::tell(const std::string &line)
{
    lines_ += line + "\n";
}

void Reload::needs_restart(const std::string &what)
{
    tell(what + ": needs a restart");
}

std::string Reload::reload(bool *ok)
{
    host::tell_service_manager("RELOADING=1");
    lines_.clear();
    const config::Reading reading = config::read_config(running_.path);
    *ok = reading.faults.empty();
    for (const config::Fault &fault : reading.faults)
        tell(fault.shown());
    if (*ok) {
        take(reading.config);
    } else {
        tell("nothing was taken up");
    }
    host::tell_service_manager("READY=1");
    return lines_.empty() ? "nothing has changed\n" : lines_;
}

void Reload::reload_and_tell()
{
    if (!wall_) return; /* it came before the wall stood, which reads the file right now */
    bool ok = true;
    std::string lines = reload(&ok);
    while (!lines.empty()) {
        const size_t end = lines.find('\n');
        const std::string line = "configuration: " + lines.substr(0, end);
        if (ok) {
            wall_->terminal().info(line);
        } else {
            wall_->terminal().error(line);
        }
        lines.erase(0, end + 1);
    }
}

void Reload::take(const config::Config &fresh)
{
    take_cameras(fresh);
    take_screen(fresh);
    if (!(fresh.log == running_.log)) {
        if (fresh.log.file != running_.log.file) needs_restart("log.file");
        wall_->terminal().set_log(log_options(fresh));
        tell("log: taken up");
    }
    if (!(fresh.retention == running_.retention)) {
        if (takers_.retention) {
            takers_.retention(fresh.retention);
            tell("retention: taken up");
        } else {
            needs_restart("retention");
        }
    }
    if (!(fresh.record == running_.record)) needs_restart("record");
    if (!(fresh.sound == running_.sound)) needs_restart("sound");
    if (!(fresh.control == running_.control)) needs_restart("control");
    if (!(fresh.status == running_.status)) needs_restart("status");
    if (fresh.channels() > static_cast<int>(channels_.size()) || !(fresh.board == running_.board))
        needs_restart("board");
    note_taken(fresh);
}

/* What needs a restart is not taken up, and is said again by the next reload. */
void Reload::note_taken(const config::Config &fresh)
{
    config::Config running = fresh;
    running.log.file = running_.log.file;
    if (!takers_.retention) running.retention = running_.retention;
    running.screen = running_.screen;
    running.screen.layout = fresh.screen.layout;
    running.record = running_.record;
    running.sound = running_.sound;
    running.control = running_.control;
    running.status = running_.status;
    running.board = running_.board;
    running_ = std::move(running);
}

void Reload::take_cameras(const config::Config &fresh)
{
    for (size_t channel = 0; channel < channels_.size(); ++channel) {
        const std::string name = channels_[channel].name;
        if (name.empty()) continue;
        const int index = fresh.channel_of(name);
        if (index >= 0) {
            change(static_cast<int>(channel), fresh.cameras[static_cast<size_t>(index)]);
            continue;
        }
        wall_->change_camera(static_cast<int>(channel), {});
        channels_[channel] = {};
        tell("camera \"" + name + "\": removed");
    }
    for (const config::Camera &camera : fresh.cameras) {
        if (std::ranges::find(channels_, camera.name, &config::Camera::name) == channels_.end()) add(camera);
    }
    if (takers_.plans) takers_.plans(channels_);
}

void Reload::change(int channel, const config::Camera &to)
{
    config::Camera &from = channels_[static_cast<size_t>(channel)];
    if (from.same_as(to)) return;
    const std::string name = "camera \"" + to.name + "\"";
    if (!is_same_connection(from, to)) {
        wall_->change_camera(channel, source_of(to));
        tell(name + ": connected anew");
    }
    if (!(from.plan == to.plan)) {
        if (takers_.plan) {
            takers_.plan(channel, to.plan);
            tell(name + ": its recording plan was taken up");
        } else {
            needs_restart(name + ", its recording plan");
        }
    }
    if (from.aspect != to.aspect) {
        wall_->set_aspect(channel, aspect_of(to));
        tell(name + ": its aspect was taken up");
    }
    const config::Plan plan = takers_.plan ? to.plan : from.plan;
    from = to;
    from.plan = plan;
}

void Reload::add(const config::Camera &camera)
{
    const auto free = std::ranges::find(channels_, std::string(), &config::Camera::name);
    const std::string name = "camera \"" + camera.name + "\"";
    if (free == channels_.end()) {
        needs_restart(name + ": there is no channel left for it (board.channels)");
        return;
    }
    const auto channel = static_cast<int>(free - channels_.begin());
    *free = camera;
    wall_->set_aspect(channel, aspect_of(camera));
    wall_->change_camera(channel, source_of(camera));
    if (takers_.plan) takers_.plan(channel, camera.plan);
    tell(name + ": added as channel " + std::to_string(channel));
}

void Reload::take_screen(const config::Config &fresh)
{
    config::Screen rest = fresh.screen;
    rest.layout = running_.screen.layout;
    if (!(rest == running_.screen)) needs_restart("screen");
    if (fresh.screen.layout == running_.screen.layout) return;
    if (const auto layout = layout_named(fresh.screen.layout)) {
        wall_->show_layout(*layout);
    } else {
        wall_->show_fitting_layout();
    }
    tell("screen.layout: taken up");
}

} // namespace nvrec
