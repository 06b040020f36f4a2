/*
 * bench_wall: a wall of camera streams composed into 1920x1080 as fast as it goes.
 *
 * For each mix the contestants run in turn, each as a process of its own: the bare loop (the
 * limit), the library with the whole board in between, the ffmpeg tool's xstack and GStreamer's
 * compositor. Printed are the medians of wall frames a second, CPU time per input frame and peak
 * memory, and the ratios. Nothing is asserted.
 */
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

#include <CLI/CLI.hpp>

#include "build_kind.h"
#include "contestant.h"
#include "walls.h"

namespace wallbench
{

LoadedClips::LoadedClips(const Mix &mix)
{
    std::map<std::string, size_t> known;
    for (const std::string &path : mix.clips) {
        const auto [entry, is_new] = known.emplace(path, clips_.size());
        if (is_new) clips_.push_back(load_clip(path));
        index_.push_back(entry->second);
    }
}

namespace
{

/** Every wall of the benchmark. A mixed one alternates codecs and sizes. */
std::vector<Mix> all_mixes(const std::string &directory)
{
    struct Row {
        const char *name;
        int side;
        std::vector<const char *> clips; // taken in turn
    };
    const Row rows[] = {
        {"4x1080p-h264", 2, {"h264-1920x1080"}},
        {"4x1080p-h265", 2, {"h265-1920x1080"}},
        {"9x720p-h264", 3, {"h264-1280x720"}},
        {"9x720p-h265", 3, {"h265-1280x720"}},
        {"16x360p-h264", 4, {"h264-640x360"}},
        {"16x360p-h265", 4, {"h265-640x360"}},
        {"16xD1-h264", 4, {"h264-704x576"}},
        {"16xD1-h265", 4, {"h265-704x576"}},
        {"9-mixed", 3, {"h264-1920x1080", "h265-1280x720", "h264-704x576", "h265-640x360"}},
    };
    std::vector<Mix> mixes;
    for (const Row &row : rows) {
        Mix mix;
        mix.name = row.name;
        mix.side = row.side;
        for (int pane = 0; pane < mix.panes(); ++pane)
            mix.clips.push_back(directory + "/" + row.clips[static_cast<size_t>(pane) % row.clips.size()] +
                                ".mkv");
        mixes.push_back(mix);
    }
    return mixes;
}

void print_row(const char *contestant, const Figures &figures, const Figures &library, double frames,
               double inputs)
{
    if (!figures.ok) {
        std::printf("  %-22s did not run\n", contestant);
        return;
    }
    std::printf("  %-22s %8.1f wall fps  %7.3f ms CPU a frame  %7.1f MiB", contestant,
                frames / figures.wall_s, figures.cpu_s * 1000 / inputs, figures.peak_mib);
    if (library.ok)
        std::printf("   library is %5.2fx its fps, %5.2fx its CPU, %5.2fx its memory",
                    figures.wall_s / library.wall_s, library.cpu_s / figures.cpu_s,
                    library.peak_mib / figures.peak_mib);
    std::printf("\n");
    std::fflush(stdout);
}

void compare(const Mix &mix, const std::string &self, const std::string &clips, int runs)
{
    const std::vector<std::pair<const char *, std::vector<std::string>>> contestants = {
        {"library and board", {self, "--clips", clips, "--mix", mix.name, "--as", "library"}},
        {"bare loop", {self, "--clips", clips, "--mix", mix.name, "--as", "bare"}},
        {"ffmpeg xstack", xstack_command(mix)},
        {"GStreamer compositor", compositor_command(mix)},
    };
    std::map<std::string, std::vector<Figures>> figures;
    for (int run = 0; run < runs; ++run)
        for (const auto &[name, command] : contestants)
            figures[name].push_back(run_command(command));
    const double frames = static_cast<double>(load_clip(mix.clips.front()).frames.size());
    const Figures library = median(figures[contestants.front().first]);
    std::printf("%s (%d panes of %dx%d, %.0f frames each, median of %d)\n", mix.name.c_str(), mix.panes(),
                mix.pane_width(), mix.pane_height(), frames, runs);
    for (const auto &[name, command] : contestants)
        print_row(name, median(figures[name]), library, frames, frames * mix.panes());
}

} // namespace

} // namespace wallbench

int main(int argc, char **argv)
{
    using namespace wallbench;
    require_optimised_build();
    CLI::App app{
        "A wall of camera streams as fast as it goes, beside a bare loop, xstack and GStreamer's compositor"};
    std::string clips = "bench-clips", only, as, footage;
    int runs = 3;
    app.add_option("--clips", clips, "directory of the clips; made when missing");
    app.add_option("--footage", footage, "video file to encode the clips from (default: generated pictures)");
    app.add_option("--mix", only, "run the mixes whose name contains this");
    app.add_option("--runs", runs, "runs of each contestant")->check(CLI::Range(1, 100));
    app.add_option("--as", as, "be one contestant: library or bare")
        ->check(CLI::IsMember({"library", "bare"}));
    CLI11_PARSE(app, argc, argv);

    if (as.empty() &&
        std::system((std::string(BENCH_WALL_MAKE_CLIPS) + " '" + clips + "' " + footage).c_str()) != 0)
        return 1;
    for (const Mix &mix : all_mixes(clips)) {
        if (mix.name.find(only) == std::string::npos) continue;
        if (as == "library") return run_library_wall(mix);
        if (as == "bare") return run_bare_loop(mix);
        compare(mix, argv[0], clips, runs);
    }
    return 0;
}
