/* run_options.cpp - see run_options.h. */
#include "commands/run_options.h"

#include <algorithm>
#include <cstdio>

#include "camera/camera_source.h"
#include "commands/overlay_options.h"
#include "config/page_address.h"
#include "console/exit_code.h"
#include "controls/controls.h"
#include "record/listen.h"
#include "record/plan.h"
#include "record/recorder.h"
#include "wall/wall.h"

namespace nvrec
{
namespace
{

const char *mode_name(config::RecordMode mode)
{
    switch (mode) {
    case config::RecordMode::kAlways: return "always";
    case config::RecordMode::kHours: return "at its hours";
    case config::RecordMode::kEvent: return "at events";
    case config::RecordMode::kNever: break;
    }
    return "never";
}

WindowMode window_of(config::Wanted wanted)
{
    return wanted == config::Wanted::kOn    ? WindowMode::kOn
           : wanted == config::Wanted::kOff ? WindowMode::kOff
                                            : WindowMode::kAuto;
}

OverlayMode overlay_of(config::Wanted wanted)
{
    return wanted == config::Wanted::kOn    ? OverlayMode::kOn
           : wanted == config::Wanted::kOff ? OverlayMode::kOff
                                            : OverlayMode::kAuto;
}

} // namespace

int print_faults(const config::Reading &reading)
{
    for (const config::Fault &fault : reading.faults)
        std::fprintf(stderr, "nvrec: %s\n", fault.shown().c_str());
    return kExitUsage;
}

CameraSource source_of(const config::Camera &camera)
{
    CameraSource source(camera.main);
    source.name = camera.name;
    source.sub_address = camera.sub;
    source.transport = camera.transport == config::Transport::kTcp   ? Transport::kTcp
                       : camera.transport == config::Transport::kUdp ? Transport::kUdp
                                                                     : Transport::kAuto;
    source.user = camera.user;
    source.password = camera.password;
    source.link_measured = camera.measured_link;
    source.link_quality = camera.link_quality;
    source.loop = camera.loop;
    source.sound = camera.sound;
    return source;
}

Aspect aspect_of(const config::Camera &camera)
{
    return camera.aspect == config::Aspect::kStretch ? Aspect::kStretch : Aspect::kFit;
}

std::string shown_camera(const config::Config &config, const config::Camera &camera)
{
    const CameraSource source = source_of(camera);
    std::string line = camera.name + ": " + shown_address(source.address_of(StreamChoice::kMain));
    if (!camera.sub.empty()) line += ", small " + shown_address(source.address_of(StreamChoice::kSub));
    return line + ", recorded " + (config.record.directory.empty() ? "never" : mode_name(camera.plan.mode));
}

LogOptions log_options(const config::Config &config)
{
    LogOptions options;
    options.level = config.log.level == config::Level::kError     ? LogLevel::kError
                    : config.log.level == config::Level::kWarning ? LogLevel::kWarning
                    : config.log.level == config::Level::kDebug   ? LogLevel::kDebug
                                                                  : LogLevel::kInfo;
    options.size_bytes = config.log.size_bytes;
    options.keep = config.log.keep;
    options.append = true;
    return options;
}

void fill(const config::Config &config, WallOptions *options)
{
    for (const config::Camera &camera : config.cameras) {
        options->aspect.given[static_cast<int>(options->inputs.size())] = aspect_of(camera);
        options->inputs.push_back(source_of(camera));
    }
    options->inputs.resize(static_cast<size_t>(config.channels())); /* room for more of them */
    options->layout = config.screen.layout;
    options->output = config.screen.output;
    options->window = window_of(config.screen.window);
    options->log_path = config.log.file;
    options->log = log_options(config);
    options->channels = config.channels();
    options->feed.sound_channels = config.record.directory.empty() ? 0 : UINT32_MAX;
    options->feed.main_channels = config.record.directory.empty() ? 0 : UINT32_MAX;
    const int heard = config.channel_of(config.sound.camera);
    if (heard >= 0) options->feed.sound_channels |= 1u << heard;
}

RecordingPlan plan_of(const config::Plan &plan)
{
    RecordingPlan recording;
    recording.mode = plan.mode == config::RecordMode::kHours   ? RecordingMode::kHours
                     : plan.mode == config::RecordMode::kEvent ? RecordingMode::kEvent
                     : plan.mode == config::RecordMode::kNever ? RecordingMode::kNever
                                                               : RecordingMode::kAlways;
    for (const config::Hours &hours : plan.hours) {
        PlanHours span;
        for (size_t day = 0; day < span.days.size(); ++day) /* Monday first here, Sunday first there */
            span.days[(day + 1) % span.days.size()] = (hours.days >> day & 1) != 0;
        span.from_min = hours.from_min;
        span.to_min = hours.to_min;
        recording.hours.push_back(span);
    }
    recording.before_s = plan.before_s;
    recording.after_s = plan.after_s;
    return recording;
}

RetentionOptions retention_of(const config::Retention &retention)
{
    return {retention.size_bytes, retention.age_s, retention.free_bytes};
}

std::vector<EventInputs::Watched> watched_inputs(const std::vector<config::Camera> &channels)
{
    std::vector<EventInputs::Watched> watched;
    for (size_t channel = 0; channel < channels.size(); ++channel) {
        const config::Plan &plan = channels[channel].plan;
        if (channels[channel].name.empty() || plan.mode != config::RecordMode::kEvent) continue;
        const auto again = std::chrono::duration<double>(std::max(plan.after_s / 2, 1.0));
        watched.push_back({static_cast<int>(channel), plan.on_alarm, plan.on_motion,
                           std::chrono::duration_cast<Clock::duration>(again)});
    }
    return watched;
}

void fill(const config::Config &config, RecorderOptions *options)
{
    options->record.directory = config.record.directory;
    options->record.container =
        config.record.format == config::Kind::kMkv ? Container::kMkv : Container::kMp4;
    options->record.segment_s = config.record.segment_s;
    options->retention = retention_of(config.retention);
    options->recycle = true;
    for (size_t i = 0; i < config.cameras.size(); ++i)
        options->plans.insert_or_assign(static_cast<int>(i), plan_of(config.cameras[i].plan));
}

void fill(const config::Config &config, OverlayOptions *options)
{
    options->mode = overlay_of(config.screen.overlay);
    options->names.language = config.screen.language.empty()   ? host_language()
                              : config.screen.language == "zh" ? Language::kChinese
                                                               : Language::kEnglish;
    if (config.screen.traditional) options->names.script = ChineseScript::kTraditional;
    options->font_path = config.screen.font;
    if (config.status.qr) {
        options->address = config::page_link(config.status.page, config.status.token);
        options->show_address = true;
    }
}

void fill(const config::Config &config, ControlOptions *options)
{
    options->socket = config.control.socket;
    options->watchdog_s = config.board.watchdog_s;
    options->hung_after_s = config.board.hung_after_s;
    if (const auto page = config::page_address(config.status.page))
        options->page = {page->host, page->port, page->ipv6, config.status.token};
}

void fill(const config::Config &config, ListenOptions *options)
{
    options->channel = config.channel_of(config.sound.camera);
    options->wav_path = config.sound.wav;
}

} // namespace nvrec
