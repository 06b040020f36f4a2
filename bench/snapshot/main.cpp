/*
 * bench_snapshot: a JPEG of a running channel.
 *
 *   call        time from ext_get_jpeg_stream to its return on cameras that send 25 frames a second,
 *               at phases spread over the frame interval; most of it is the wait for the next frame
 *   CPU         of one snapshot: frames decoded as fast as they go, with a snapshot of each against
 *               without
 *   in a row    16 channels one after another, and the wall frames lost meanwhile
 *   beside it   the ffmpeg tool taking one frame of the same stream at the same size
 *
 * Each part runs as a process of its own. Nothing is asserted.
 */
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <CLI/CLI.hpp>

#include "build_kind.h"
#include "cameras.h"
#include "contestant.h"
#include "vboard.h"

namespace snapbench
{

namespace
{

constexpr double kAimBeyondInterval_ms = 3;
constexpr int kRowCameras = 16;
constexpr int kFrameInterval = 40, kPhaseStep = 17; // ms; without a common divisor

FILE *report; // the real standard output; the library's texts go to /dev/null

double now_ms()
{
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::milli>(since).count();
}

double cpu_ms()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval &time) {
        return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3;
    };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

double quantile(std::vector<double> values, double part)
{
    std::sort(values.begin(), values.end());
    const size_t last = values.size() - 1;
    return values[std::min(last, static_cast<size_t>(part * static_cast<double>(values.size())))];
}

void redirect_library_texts()
{
    report = fdopen(dup(STDOUT_FILENO), "w");
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::exit(1);
}

int time_calls(const wallbench::Clip &clip, int count)
{
    if (!start_wall(clip, 1)) return 1;
    const RunningCameras cameras(clip, 1);
    std::vector<double> times_ms;
    for (int i = 0; i < count; ++i) {
        // The last call ended with a frame: wait so that every phase of the interval has its turn.
        std::this_thread::sleep_for(
            std::chrono::milliseconds(kFrameInterval + i * kPhaseStep % kFrameInterval));
        const double begin_ms = now_ms();
        if (take_snapshot(0) == 0) return 1;
        times_ms.push_back(now_ms() - begin_ms);
    }
    std::fprintf(
        report,
        "  call      median %.1f ms, 95%% %.1f ms, longest %.1f ms (%d snapshots; aim: median at most "
        "%.0f ms)\n",
        quantile(times_ms, 0.5), quantile(times_ms, 0.95), quantile(times_ms, 1), count,
        kFrameInterval_ms + kAimBeyondInterval_ms);
    return 0;
}

/** CPU of sending and decoding `count` frames one by one, with a snapshot of each or without. */
double cpu_of_frames(const wallbench::Clip &clip, int count, bool snap, std::vector<double> *times_ms)
{
    const double before_ms = cpu_ms();
    for (int i = 0; i < count; ++i) {
        if (!snap) {
            send_frame(clip, 0, static_cast<size_t>(i));
            vboard_decoder_wait_idle(0, -1);
            continue;
        }
        // As soon as the snapshot waits on the clock that stands still, its frame is sent.
        std::thread sender([&] {
            vboard_clock_wait_sleepers(1, -1);
            send_frame(clip, 0, static_cast<size_t>(i));
        });
        const double begin_ms = now_ms();
        if (take_snapshot(0) == 0) std::fprintf(stderr, "bench_snapshot: a snapshot failed\n");
        times_ms->push_back(now_ms() - begin_ms);
        sender.join();
        vboard_decoder_wait_idle(0, -1);
    }
    return cpu_ms() - before_ms;
}

int measure_cpu(const wallbench::Clip &clip, int count)
{
    if (!start_wall(clip, 1)) return 1;
    vboard_clock_take();
    send_frame(clip, 0, 0); // a byte-stream decoder gives a picture when the next frame begins
    std::vector<double> times_ms;
    const double with_ms = cpu_of_frames(clip, count, true, &times_ms);
    const double without_ms = cpu_of_frames(clip, count, false, nullptr);
    vboard_clock_release();
    std::fprintf(
        report,
        "  CPU       %.2f ms a snapshot beside decoding; %.1f ms from frame to JPEG, decoding included\n",
        (with_ms - without_ms) / count, quantile(times_ms, 0.5));
    std::fprintf(report, "cpu_ms %.3f\n", (with_ms - without_ms) / count);
    return 0;
}

int snap_in_a_row(const wallbench::Clip &clip)
{
    if (!start_wall(clip, kRowCameras)) return 1;
    vboard_display_follow(
        0, [](const vboard_picture *, void *) {}, nullptr);
    const RunningCameras cameras(clip, kRowCameras);
    std::this_thread::sleep_for(std::chrono::seconds(2));
    const WallCount start = count_wall(kRowCameras);
    const double quiet_begin_ms = now_ms();
    std::this_thread::sleep_for(std::chrono::seconds(2));
    const WallCount quiet = count_wall(kRowCameras);
    const double begin_ms = now_ms();
    int taken = 0;
    for (uint32_t channel = 0; channel < kRowCameras; ++channel)
        taken += take_snapshot(channel) != 0 ? 1 : 0;
    const double end_ms = now_ms();
    const WallCount end = count_wall(kRowCameras);
    vboard_display_follow(0, nullptr, nullptr);
    std::fprintf(
        report,
        "  in a row  %d of %d channels in %.0f ms; %llu of %llu wall pictures lost meanwhile, %llu of "
        "%llu in %.0f ms without snapshots; %llu frames refused\n",
        taken, kRowCameras, end_ms - begin_ms, static_cast<unsigned long long>(end.dropped - quiet.dropped),
        static_cast<unsigned long long>(end.taken - quiet.taken),
        static_cast<unsigned long long>(quiet.dropped - start.dropped),
        static_cast<unsigned long long>(quiet.taken - start.taken), begin_ms - quiet_begin_ms,
        static_cast<unsigned long long>(cameras.refused()));
    return 0;
}

/** Run this program for one part and pass its lines on; the CPU line is kept back. */
double run_part(const std::string &command)
{
    std::fflush(stdout);
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return 0;
    char line[512];
    double value = 0;
    while (std::fgets(line, sizeof line, pipe) != nullptr)
        if (std::sscanf(line, "cpu_ms %lf", &value) != 1) std::fputs(line, stdout);
    if (pclose(pipe) != 0) std::printf("  (this part failed)\n");
    return value;
}

int compare(const std::string &self, const std::string &clips, int count, int runs)
{
    for (const char *codec : {"h264", "h265"}) {
        const std::string name = std::string(codec) + "-1920x1080";
        const std::string options = " --clips '" + clips + "' --count " + std::to_string(count) + " --clip ";
        std::printf("%s at 25 frames a second\n", name.c_str());
        run_part(self + options + name + " --part call");
        const double library_ms = run_part(self + options + name + " --part cpu");
        std::vector<wallbench::Figures> tool;
        for (int run = 0; run < runs; ++run)
            tool.push_back(wallbench::run_command({"ffmpeg", "-nostdin", "-v", "error", "-y", "-i",
                                                   clips + "/" + name + ".mkv", "-frames:v", "1", "-s",
                                                   "352x288", clips + "/one.jpg"}));
        const wallbench::Figures median = wallbench::median(tool);
        if (median.ok)
            std::printf("  ffmpeg    %.1f ms, %.1f ms CPU (median of %d); a snapshot takes %.3f of its CPU "
                        "(aim: 0.1)\n",
                        median.wall_s * 1e3, median.cpu_s * 1e3, runs, library_ms / (median.cpu_s * 1e3));
        else
            std::printf("  ffmpeg    did not run\n");
        run_part(self + options + codec + "-640x360 --part row");
    }
    return 0;
}

} // namespace

} // namespace snapbench

int main(int argc, char **argv)
{
    using namespace snapbench;
    require_optimised_build();
    CLI::App app{"A JPEG of a running channel, beside the ffmpeg tool"};
    std::string clips = "bench-clips", part, clip;
    int count = 100, runs = 11;
    app.add_option("--clips", clips, "directory of the clips; made when missing");
    app.add_option("--count", count, "snapshots of each measurement")->check(CLI::Range(1, 10000));
    app.add_option("--runs", runs, "runs of the ffmpeg tool")->check(CLI::Range(1, 1000));
    app.add_option("--part", part, "be one part: call, cpu or row")
        ->check(CLI::IsMember({"call", "cpu", "row"}));
    app.add_option("--clip", clip, "clip of the part");
    CLI11_PARSE(app, argc, argv);

    if (part.empty()) {
        if (std::system((std::string(BENCH_SNAPSHOT_MAKE_CLIPS) + " '" + clips + "'").c_str()) != 0) return 1;
        return compare(argv[0], clips, count, runs);
    }
    redirect_library_texts();
    const wallbench::Clip loaded = wallbench::load_clip(clips + "/" + clip + ".mkv");
    const int result = part == "call"  ? time_calls(loaded, count)
                       : part == "cpu" ? measure_cpu(loaded, count)
                                       : snap_in_a_row(loaded);
    std::fclose(report);
    return result;
}
