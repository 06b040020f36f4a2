/* play_command.cpp - "nvrec play": the command line of playback in the wall. */
#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>

#include <CLI/CLI.hpp>

#include "archive/time_of_day.h"
#include "commands/archive_options.h"
#include "commands/command.h"
#include "commands/module_options.h"
#include "commands/overlay_options.h"
#include "commands/screen_options.h"
#include "commands/source_options.h"
#include "console/terminal.h"
#include "controls/controls.h"
#include "play/play_screen.h"
#include "play/play_script.h"
#include "play/player.h"
#include "play/snapshot.h"
#include "play/zoom.h"

namespace nvrec
{
namespace
{

struct PlayCommand {
    WallOptions wall; /* its inputs are the cameras */
    PlayerOptions player;
    std::string directory, at, stream = "main"; /* of recordings, instead of files */
    std::vector<std::string> cameras;
    PlayScreenOptions screen;
    ControlOptions controls;
    ZoomOptions zoom;
    std::shared_ptr<SourceOptions> sources; /* of the cameras */
    std::string script;
    std::string snapshot_dir = "out";
};

/* Of a part of a picture, either way. */
constexpr int kFewestPixels = 2;
constexpr int kMostPixels = 65535;

/* Cameras of a directory: eight pages. */
constexpr size_t kMostCameras = 8 * static_cast<size_t>(Playback::kPlayers);

int whole(double number)
{
    return static_cast<int>(number);
}

/* The verbs of --do. */
void add_verbs(Script &script, int files, Player &player, Zoom &zoom, Snapshots &snapshots)
{
    using Arguments = Script::Arguments;
    const auto second = Script::number("a second from 0 on", 0, kLongest_s);
    const auto seconds = Script::number("seconds", -kLongest_s, kLongest_s);
    const Script::ArgumentType speed = {"1, 2 or 4", [](double times) { return Player::is_speed(times); }};
    const auto file = Script::whole_number("a file", 0, files - 1);
    const auto heard = Script::whole_number("a file", -1, files - 1);
    const auto page = Script::whole_number("a page", 1, Player::pages_of(files));
    const auto channel = Script::whole_number("a channel", 0, static_cast<int>(kMostInputs) - 1);
    const auto place = Script::whole_number("x and y", 0, kMostPixels);
    const auto size = Script::whole_number("w and h", kFewestPixels, kMostPixels);

    script.add_verb("play", {}, [&](const Arguments &) { player.play(); });
    script.add_verb("pause", {}, [&](const Arguments &) { player.pause(true); });
    script.add_verb("resume", {}, [&](const Arguments &) { player.pause(false); });
    script.add_verb("seek", {second}, [&](const Arguments &to) { player.seek(to[0]); });
    script.add_verb("skip", {seconds}, [&](const Arguments &by) { player.skip(by[0]); });
    script.add_verb("speed", {speed}, [&](const Arguments &times) { player.set_speed(times[0]); });
    script.add_verb("enlarge", {file}, [&](const Arguments &which) { player.enlarge(whole(which[0])); });
    script.add_verb("back", {}, [&](const Arguments &) { player.enlarge(-1); });
    script.add_verb("page", {page},
                    [&](const Arguments &which) { player.turn_to_page(whole(which[0]) - 1); });
    script.add_verb("hear", {heard}, [&](const Arguments &which) { player.hear(whole(which[0])); });
    script.add_verb("live", {}, [&](const Arguments &) { player.live(); });
    script.add_verb("snapshot", {channel}, [&](const Arguments &which) {
        const int code = snapshots.take(whole(which[0]));
        if (code != kExitDone) player.fail(code, {});
    });
    script.add_verb("zoom", {channel, place, place, size, size}, [&](const Arguments &part) {
        const std::string problem = zoom.begin(
            whole(part[0]), ZoomRect{whole(part[1]), whole(part[2]), whole(part[3]), whole(part[4])});
        if (!problem.empty()) player.fail(kExitUsage, "zoom: " + problem);
    });
    script.add_verb("unzoom", {}, [&](const Arguments &) { zoom.end(); });
    script.add_verb("end", {}, [&](const Arguments &) { player.end(); });
}

/* The cameras that are meant, each once, in the order in which they are named. */
int choose_cameras(const PlayCommand &command, Archive *archive, std::vector<CameraRow> *chosen)
{
    std::vector<std::string> names = command.cameras;
    if (names.empty()) names.emplace_back();
    for (const std::string &name : names) {
        std::string problem;
        const auto rows = cameras_named(archive->index, name, &problem);
        if (rows.empty()) return complain(name.empty() ? kExitInputFailed : kExitUsage, problem);
        for (const CameraRow &row : rows) {
            if (std::find(chosen->begin(), chosen->end(), row) == chosen->end()) chosen->push_back(row);
        }
    }
    return kExitDone;
}

/* When a directory is played from: what --at says, or what comes next. */
int choose_time(PlayCommand *command, Index &index, const std::vector<CameraRow> &cameras)
{
    if (command->at.empty()) return kExitDone;
    const auto at_us = time_given("--at", command->at);
    if (!at_us) return kExitUsage;
    command->player.at_us = *at_us;
    const IndexQuery query = {numbers_of(cameras), command->stream, {*at_us, *at_us + 1}};
    if (!index.segments(query, 1).empty()) return kExitDone;
    const auto next = index.segment_after(query, *at_us);
    if (!next) return complain(kExitInputFailed, "nothing is recorded at " + time_text(*at_us) + " or later");
    complain(kExitDone,
             "nothing is recorded at " + time_text(*at_us) + "; playing from " + time_text(next->from_us));
    command->player.at_us = next->from_us;
    return kExitDone;
}

/* Whether there is something of a camera at a time or later. */
bool has_recordings(Index &index, const CameraRow &camera, const std::string &stream, int64_t from_us)
{
    return !index.segments({{camera.id}, stream, {from_us, INT64_MAX}}, 1).empty();
}

/*
 * A directory of years knows cameras that have long gone, by each of their names. If they would fill more
 * than two pages, only those are played that have something at the time that is asked for, or later.
 */
int leave_out_cameras(const PlayCommand &command, Index &index, std::vector<CameraRow> *cameras)
{
    const int64_t at_us = command.player.at_us;
    if (cameras->size() > kMostInputs && at_us != 0) {
        const size_t left_out = std::erase_if(*cameras, [&](const CameraRow &camera) {
            return !has_recordings(index, camera, command.stream, at_us);
        });
        if (left_out > 0)
            complain(kExitDone, "left out: nothing is recorded of " + std::to_string(left_out) +
                                    " cameras at " + time_text(at_us) + " or later");
    }
    if (cameras->size() <= kMostCameras) return kExitDone;
    return complain(kExitUsage, command.directory + " has recordings of " + std::to_string(cameras->size()) +
                                    " cameras; at most " + std::to_string(kMostCameras) +
                                    " play at once: name those to play with --camera");
}

/* What is played of a directory, and from when on. */
int plan_directory(PlayCommand *command)
{
    Archive archive;
    const std::string problem = open_archive(command->directory, &archive);
    for (const std::string &note : archive.notes)
        complain(kExitDone, note);
    if (!problem.empty()) return complain(kExitInputFailed, problem);
    std::vector<CameraRow> cameras;
    if (const int code = choose_cameras(*command, &archive, &cameras); code != kExitDone) return code;
    std::erase_if(cameras, [&](const CameraRow &camera) {
        return !has_recordings(archive.index, camera, command->stream, INT64_MIN);
    });
    if (cameras.empty())
        return complain(kExitInputFailed, command->directory + " holds no recordings of that stream");
    if (const int code = choose_time(command, archive.index, cameras); code != kExitDone) return code;
    if (const int code = leave_out_cameras(*command, archive.index, &cameras); code != kExitDone) return code;
    command->player.plan = plan_of_archive(archive.index, cameras, command->stream);
    return kExitDone;
}

int run_play(PlayCommand command)
{
    if (command.directory.empty() == command.player.files.empty())
        return complain(kExitUsage, "play takes recordings, or --dir with recordings in it");
    if (!command.directory.empty()) {
        if (const int code = plan_directory(&command); code != kExitDone) return code;
    } else {
        command.player.plan = plan_of_files(command.player.files);
    }
    const size_t tracks = command.player.plan.tracks.size();
    if ((command.directory.empty() && !count_fits(tracks, "recordings")) ||
        !count_fits(command.wall.inputs.size(), "cameras") ||
        !apply_source_options(*command.sources, &command.wall.inputs))
        return kExitUsage;
    command.wall.channels = static_cast<int>(std::min<size_t>(tracks, Playback::kPlayers));
    if (!aspects_fit(command.wall)) return kExitUsage;
    command.wall.feed.loop = true; /* cameras that are files do not end */
    command.wall.wait_for_all = true;
    command.player.output = command.wall.output;

    auto script = std::make_unique<Script>();
    Wall wall(command.wall);
    auto player = std::make_unique<Player>(command.player);
    auto zoom = std::make_unique<Zoom>(
        command.zoom, [files = player.get()](int channel) { return files->picture_size(channel); });
    auto snapshots = std::make_unique<Snapshots>(command.snapshot_dir);
    add_verbs(*script, static_cast<int>(tracks), *player, *zoom, *snapshots);
    const std::string problem = script->parse(command.script);
    if (!problem.empty()) {
        std::fprintf(stderr, "nvrec: --do: %s\n", problem.c_str());
        return kExitUsage;
    }
    if (script->contains_verb("play")) player->wait_for_order();
    add_controls(wall, command.controls);
    wall.add(std::make_unique<PlayScreen>(command.screen, *player));
    wall.add(std::move(player));
    wall.add(std::move(snapshots));
    wall.add(std::move(zoom));
    wall.add(std::move(script));
    return wall.run();
}

} // namespace

Command play_command(CLI::App &app)
{
    auto command = std::make_shared<PlayCommand>();
    CLI::App *play = app.add_subcommand("play", "Play 1 to " + std::to_string(kMostInputs) +
                                                    " recorded files on one screen");
    play->footer(
        "Files that nvrec recorded of one camera are one picture, one behind the other. With --dir and --at\n"
        "cameras play in step from a time of day on: 14:05, \"yesterday 14:05\", 2026-11-21T14:05, -10m.\n"
        "File and channel numbers count from 0 in the order given. Eight files play at once; of more,\n"
        "each eight make a page. --do acts at given seconds, e.g. --do \"2:pause,3:resume,4:seek 10\";\n"
        "its verbs: play, pause, resume, seek S, skip S, speed N, enlarge FILE, back, page N,\n"
        "hear FILE, live, snapshot CHANNEL, zoom CHANNEL X Y W H, unzoom, end. With \"play\" among them\n"
        "playback begins then, and at once without. Exit status as of wall.");

    play->add_option("files", command->player.files, "Recordings: MP4, MKV, .h264, .h265, ...");
    play->add_option("--dir", command->directory, "Play what is recorded in this directory instead of files")
        ->check(directory_problem);
    play->add_option("--at", command->at, "Begin at this time of day, all cameras in step")->needs("--dir");
    play->add_option("--camera", command->cameras,
                     "Of the directory this camera only: its name, or its channel from 0; may be repeated")
        ->take_all()
        ->allow_extra_args(false)
        ->needs("--dir");
    play->add_option("--stream", command->stream, "Of the directory: main, or network, the smaller stream")
        ->check(CLI::IsMember(std::vector<std::string>{"main", "network"}))
        ->needs("--dir")
        ->capture_default_str();
    play->add_option("--live", command->wall.inputs,
                     "Cameras that are shown before and after; may be repeated")
        ->take_all()
        ->allow_extra_args(false);
    command->sources = add_source_options(*play, command->wall.feed);
    add_layout_option(*play, command->player.layout, "How the screen is divided; auto = the smallest grid");
    add_screen_options(*play, command->wall);
    play->add_option("--seek", command->player.seek_s, "Begin at the key frame before this second")
        ->check(from_zero_on());
    play->add_option("--speed", command->player.speed,
                     "Times the recorded rate; 2 doubles the display's rate too, 4 shows key frames only")
        ->check(CLI::IsMember(std::vector<double>{1, 2, 4}))
        ->capture_default_str();
    play->add_option("--hear", command->player.heard, "The file whose sound is heard; -1 = none")
        ->check(CLI::Range(-1, static_cast<int>(kMostCameras) - 1))
        ->capture_default_str();
    play->add_option("--wav", command->player.wav_path, "Write the sound that is heard to a WAV file");
    play->add_flag("--loop", command->player.loop, "Begin again when all files have ended");
    play->add_option("--do", command->script, "What to do when, see below");
    play->add_option("--snapshot-dir", command->snapshot_dir, "Where snapshots go")->capture_default_str();
    play->add_option("--json", command->player.json_path, "Write the files' closing table as JSON too");
    play->add_option("--overlay", command->screen.mode,
                     "Time line, names and cursor: auto (when there is a window), on, off")
        ->transform(CLI::CheckedTransformer(std::map<std::string, OverlayMode>{{"auto", OverlayMode::kAuto},
                                                                               {"on", OverlayMode::kOn},
                                                                               {"off", OverlayMode::kOff}},
                                            CLI::ignore_case))
        ->default_str("auto");
    add_language_option(*play, command->screen.language, "Language of the time line: en or zh");
    play->add_option("--font", command->screen.font_path, "Font file (default: the system's for Chinese)")
        ->check(CLI::ExistingFile);
    add_control_options(*play, command->controls);
    add_zoom_options(*play, command->zoom);

    return {play, [command] { return run_play(*command); }};
}

} // namespace nvrec
