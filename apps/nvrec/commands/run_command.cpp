/* run_command.cpp - "nvrec run": all that one configuration file asks for. */
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "commands/reload.h"
#include "commands/run_options.h"
#include "controls/controls.h"
#include "controls/event_inputs.h"
#include "play/snapshot.h"
#include "play/zoom.h"
#include "record/listen.h"
#include "record/recorder.h"
#include "screen/overlay.h"
#include "wall/wall.h"

namespace nvrec
{
namespace
{

struct RunCommand {
    std::string path;
    double duration_s = 0;
    std::vector<std::string> pictures;
    std::string json_path;
    bool quiet = false;
};

/* The recorder, what the board tells it of, and what a changed configuration and requests do to it. */
void add_recorder(Wall &wall, std::unique_ptr<Recorder> recorder, Reload &reload, ControlHooks &hooks)
{
    Recorder &records = *recorder;
    const auto on_event = [&records](int channel, const std::string &kind, const std::string &text) {
        records.event(channel, kind, text);
    };
    auto inputs = std::make_unique<EventInputs>(watched_inputs(reload.running().cameras), on_event,
                                                [&records](int channel) { records.prolong_event(channel); });
    Reload::Takers &takers = reload.takers();
    takers.plan = [&records](int channel, const config::Plan &plan) {
        records.set_plan(channel, plan_of(plan));
    };
    takers.plans = [watched = inputs.get()](const std::vector<config::Camera> &channels) {
        watched->set(watched_inputs(channels));
    };
    takers.retention = [&records](const config::Retention &retention) {
        records.set_retention(retention_of(retention));
    };
    hooks.event = on_event;
    hooks.archive = [&reload] {
        ArchiveStatus limits;
        limits.limit_bytes = reload.running().retention.size_bytes;
        limits.limit_age_s = reload.running().retention.age_s;
        return std::optional(limits);
    };
    wall.add(std::move(recorder));
    wall.add(std::move(inputs));
}

int run(const RunCommand &command)
{
    const config::Reading reading = config::read_config(command.path);
    if (!reading.faults.empty()) return print_faults(reading);
    const config::Config &config = reading.config;

    WallOptions wall_options;
    fill(config, &wall_options);
    wall_options.duration_s = command.duration_s;
    wall_options.pictures = command.pictures;
    wall_options.json_path = command.json_path;
    wall_options.log.quiet = command.quiet;
    auto reload = std::make_unique<Reload>(config);
    Reload &reloading = *reload;
    wall_options.reload = [&reloading] { reloading.reload_and_tell(); };
    Wall wall(wall_options);
    ControlOptions controls;
    fill(config, &controls);
    controls.hooks.reload = [&reloading](bool *ok) { return reloading.reload(ok); };
    if (!config.record.directory.empty()) {
        RecorderOptions options;
        options.feed = wall_options.feed;
        fill(config, &options);
        add_recorder(wall, std::make_unique<Recorder>(std::move(options)), reloading, controls.hooks);
    }
    ListenOptions listen;
    fill(config, &listen);
    if (listen.channel >= 0) wall.add(std::make_unique<Listener>(listen));
    wall.add(std::move(reload));
    add_controls(wall, controls);
    OverlayOptions overlay;
    fill(config, &overlay);
    wall.add(std::make_unique<Overlay>(overlay));
    wall.add(std::make_unique<Snapshots>(config.screen.snapshots));
    wall.add(std::make_unique<Zoom>(ZoomOptions())); /* last: it wants the arrow keys while it zooms */
    return wall.run();
}

} // namespace

Command run_command(CLI::App &app)
{
    auto command = std::make_shared<RunCommand>();
    CLI::App *run_app = app.add_subcommand("run", "Run the recorder that a configuration file describes");
    run_app->footer(
        "The configuration is checked as \"nvrec check\" does, and nothing is started when it has a fault.\n"
        "Exit status: 0 done, 2 a fault in the configuration, 3 an input failed, 4 the library or the "
        "board,\n"
        "5 a file could not be written.");
    run_app->add_option("file", command->path, "The configuration")->required();
    run_app->add_option("-d,--duration", command->duration_s, "End after so many seconds; 0 = when told to")
        ->check(from_zero_on())
        ->capture_default_str();
    run_app
        ->add_option("-p,--picture", command->pictures,
                     "Write a PNG picture of the wall: FILE (at the end) or FILE,SECONDS; may be repeated")
        ->take_all()
        ->allow_extra_args(false)
        ->check(picture_problem);
    run_app->add_option("--json", command->json_path, "Write the closing table as JSON too");
    run_app->add_flag("-q,--quiet", command->quiet, "Print warnings and errors alone");
    return {run_app, [command] { return run(*command); }};
}

} // namespace nvrec
