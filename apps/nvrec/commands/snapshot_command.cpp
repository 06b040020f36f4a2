/* snapshot_command.cpp - "nvrec snapshot": one JPEG of one camera, then the end. */
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "commands/screen_options.h"
#include "commands/source_options.h"
#include "console/text.h"
#include "play/player.h"
#include "play/snapshot.h"
#include "wall/pictures.h"

namespace nvrec
{
namespace
{

const std::map<std::string, SnapshotSize> kSnapshotSizes = {
    {"board", SnapshotSize::kLibrary},
    {"camera", SnapshotSize::kCamera},
};

struct SnapshotCommand {
    WallOptions wall;
    int channel = 0;
    std::string path;
    double patience_s = 10;
    bool during_playback = false;
    SnapshotSize size = SnapshotSize::kLibrary;
    std::vector<std::string> played;
    std::shared_ptr<SourceOptions> sources;
};

/* Takes the picture at the first turn, when the cameras run, and ends the wall. */
class SnapshotOnce final : public Module
{
public:
    SnapshotOnce(const SnapshotCommand &command, Snapshots &snapshots)
        : command_(command), snapshots_(snapshots)
    {
    }

    bool start(WallControl &wall) override
    {
        wall_ = &wall;
        return true;
    }

    Clock::time_point take_turn(Clock::time_point /*now*/) override
    {
        if (std::exchange(taken_, true)) return Clock::time_point::max();
        const auto patience = std::chrono::duration<double>(command_.patience_s);
        wall_->end(snapshots_.take(command_.channel, command_.path,
                                   std::chrono::duration_cast<std::chrono::milliseconds>(patience),
                                   command_.size));
        return Clock::time_point::max();
    }

    bool busy() const override { return !taken_; }

private:
    const SnapshotCommand &command_;
    Snapshots &snapshots_;
    WallControl *wall_ = nullptr;
    bool taken_ = false;
};

/* The recordings that play meanwhile: those named, or else the inputs that are files. */
std::vector<std::string> recordings_of(const SnapshotCommand &command)
{
    if (!command.played.empty()) return command.played;
    std::vector<std::string> files;
    for (const CameraSource &camera : command.wall.inputs) {
        const std::string &input = camera.address;
        if (!Input(input).live()) files.push_back(input);
    }
    return files;
}

/* Viewers go by the name: a JPEG that is called a PNG is taken for a broken file. */
std::string jpeg_name_problem(const std::string &path)
{
    constexpr std::string_view kOtherPictures[] = {".png", ".bmp", ".gif", ".webp", ".tif", ".tiff"};
    const std::string ending = small_letters(std::filesystem::path(path).extension().string());
    if (std::ranges::find(kOtherPictures, ending) == std::end(kOtherPictures)) return {};
    return "a snapshot is a JPEG picture, name it .jpg: " + path;
}

int run_snapshot(SnapshotCommand command)
{
    if (!count_fits(command.wall.inputs.size(), "inputs") ||
        !apply_source_options(*command.sources, &command.wall.inputs))
        return kExitUsage;
    if (command.channel >= static_cast<int>(command.wall.inputs.size())) {
        std::fprintf(stderr, "nvrec: channel %d of %zu inputs, which count from 0\n", command.channel,
                     command.wall.inputs.size());
        return kExitUsage;
    }
    PlayerOptions playback;
    if (command.during_playback) playback.files = recordings_of(command);
    if (command.during_playback && playback.files.empty()) {
        std::fprintf(stderr, "nvrec: nothing to play: name a recording with --play\n");
        return kExitUsage;
    }
    playback.loop = true;
    playback.heard = -1;
    playback.output = command.wall.output;
    command.wall.feed.loop = true; /* cameras that are files go on until the picture is taken */
    command.wall.wait_for_all = true;
    command.wall.channels = static_cast<int>(std::min<size_t>(playback.files.size(), Playback::kPlayers));
    if (!aspects_fit(command.wall)) return kExitUsage;

    Wall wall(command.wall);
    if (command.during_playback) wall.add(std::make_unique<Player>(playback)); /* begins first */
    auto snapshots = std::make_unique<Snapshots>(".");
    Snapshots &taker = *snapshots;
    wall.add(std::move(snapshots));
    wall.add(std::make_unique<SnapshotOnce>(command, taker));
    return wall.run();
}

} // namespace

Command snapshot_command(CLI::App &app)
{
    auto command = std::make_shared<SnapshotCommand>();
    command->wall.window = WindowMode::kOff;
    CLI::App *snapshot = app.add_subcommand("snapshot", "Write a JPEG picture of one camera");
    snapshot->footer(
        "The channel need not be shown: --layout 1 --channel 3 takes a hidden one. Exit status: 0 written,\n"
        "2 command line, 3 an input failed, 4 the library or the board gave no picture, 5 it could not be\n"
        "written.");

    snapshot->add_option("inputs", command->wall.inputs, "Cameras, one channel each, as of wall")->required();
    snapshot->add_option("-c,--channel", command->channel, "The camera, from 0")
        ->check(from_zero_on())
        ->capture_default_str();
    snapshot->add_option("-f,--output", command->path, "The file to write")
        ->required()
        ->check(jpeg_name_problem);
    snapshot
        ->add_option(
            "--size", command->size,
            "board: 352 x 288, the camera's next picture; camera: its last key frame in its own size")
        ->transform(CLI::CheckedTransformer(kSnapshotSizes, CLI::ignore_case))
        ->default_str("board");
    command->sources = add_source_options(*snapshot, command->wall.feed);
    add_layout_option(*snapshot, command->wall.layout, "What the wall shows meanwhile");
    auto *during = snapshot->add_flag("--during-playback", command->during_playback,
                                      "Take it while recordings play: the inputs that are files, or --play");
    snapshot->add_option("--play", command->played, "A recording to play meanwhile; may be repeated")
        ->take_all()
        ->allow_extra_args(false)
        ->needs(during);
    snapshot->add_option("--patience", command->patience_s, "Seconds to wait for the camera's next key frame")
        ->check(CLI::Range(0.0, 3600.0))
        ->capture_default_str();
    snapshot->add_option("-p,--picture", command->wall.pictures, "Write a PNG picture of the wall too: FILE")
        ->take_all()
        ->allow_extra_args(false)
        ->check(picture_problem);
    add_log_options(*snapshot, command->wall);

    return {snapshot, [command] { return run_snapshot(*command); }};
}

} // namespace nvrec
