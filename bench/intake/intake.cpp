/*
 * The library's own cost per ext_send_stream: the platform underneath does nothing. Beside it the
 * bare pair of platform calls that a frame must make in any case; the difference is the library.
 * Contestants take turns on the thread's own processor time, and the best turn of each counts.
 */
#include <algorithm>
#include <cstdio>
#include <ctime>

#include "build_kind.h"
#include "mi_vdec.h"
#include "nvrhal.h"

namespace
{

constexpr uint32_t kFrameBytes = 20000;
constexpr uint32_t kH265 = 1;
constexpr int32_t kGoodLink = 70;
constexpr int32_t kLowRate = 4;
constexpr int kTurns = 15;
constexpr int kFramesPerTurn = 1000000;

uint8_t payload[kFrameBytes];

FrameInfo video_frame(uint32_t channel)
{
    FrameInfo frame = {};
    frame.media = FRAME_MEDIA_VIDEO;
    frame.length = sizeof payload;
    frame.width = 1920;
    frame.height = 1080;
    frame.data = payload;
    frame.channel = channel;
    return frame;
}

double thread_cpu_ns()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

/* Frames of a channel that is on the screen. */
int32_t send_shown_frames()
{
    const FrameInfo frame = video_frame(3);
    int32_t result = 0;
    for (int i = 0; i < kFramesPerTurn; ++i)
        result |= ext_send_stream(&frame, kH265, kGoodLink, kLowRate);
    return result;
}

/* Frames of a channel while another one has the screen to itself. */
int32_t send_hidden_frames()
{
    cur_display_chnn = 1;
    const int32_t result = send_shown_frames();
    cur_display_chnn = 255;
    return result;
}

/* What a shown frame needs of the platform in any case. */
int32_t make_the_platform_calls_alone()
{
    MI_VDEC_Stream stream = {};
    stream.address = payload;
    stream.length_bytes = sizeof payload;
    int32_t result = 0;
    for (int i = 0; i < kFramesPerTurn; ++i) {
        MI_VDEC_ChnStat stat;
        result |= MI_VDEC_GetChnStat(3, &stat);
        result |= MI_VDEC_SendStream(3, &stream, 20);
    }
    return result;
}

struct Contestant {
    const char *name;
    int32_t (*run)(); // a turn; 0 when every call succeeded
    double best_ns;   // a frame
};

} // namespace

int main()
{
    require_optimised_build();
    Contestant contestants[] = {
        {"shown frame", send_shown_frames, 1e300},
        {"hidden frame", send_hidden_frames, 1e300},
        {"the platform calls alone", make_the_platform_calls_alone, 1e300},
    };
    for (int turn = 0; turn < kTurns; ++turn) {
        for (Contestant &contestant : contestants) {
            const double begin_ns = thread_cpu_ns();
            if (contestant.run() != 0) {
                std::fprintf(stderr, "bench_intake: %s: a call failed\n", contestant.name);
                return 1;
            }
            contestant.best_ns = std::min(contestant.best_ns, (thread_cpu_ns() - begin_ns) / kFramesPerTurn);
        }
    }
    const double reference_ns = contestants[2].best_ns;
    for (const Contestant &contestant : contestants)
        std::printf("  %-26s %7.1f ns a frame %6.1f million frames a second  x%.2f\n", contestant.name,
                    contestant.best_ns, 1e3 / contestant.best_ns, contestant.best_ns / reference_ns);
    return 0;
}
