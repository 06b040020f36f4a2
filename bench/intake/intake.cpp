/*
 * The library's own cost per ext_send_stream: the platform underneath does nothing. Beside it the
 * bare pair of platform calls that a frame must make in any case; the difference is the library.
 */
#include <benchmark/benchmark.h>

#include "mi_vdec.h"
#include "nvrhal.h"

namespace
{

constexpr uint32_t kFrameBytes = 20000;
constexpr uint32_t kH265 = 1;
constexpr int32_t kGoodLink = 70;
constexpr int32_t kLowRate = 4;

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

void send_shown_frame(benchmark::State &state)
{
    const FrameInfo frame = video_frame(3);
    for (auto _ : state)
        benchmark::DoNotOptimize(ext_send_stream(&frame, kH265, kGoodLink, kLowRate));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(send_shown_frame);

void send_hidden_frame(benchmark::State &state)
{
    cur_display_chnn = 1;
    const FrameInfo frame = video_frame(3);
    for (auto _ : state)
        benchmark::DoNotOptimize(ext_send_stream(&frame, kH265, kGoodLink, kLowRate));
    cur_display_chnn = 255;
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(send_hidden_frame);

void reference_platform_calls_alone(benchmark::State &state)
{
    MI_VDEC_Stream stream = {};
    stream.address = payload;
    stream.length_bytes = sizeof payload;
    for (auto _ : state) {
        MI_VDEC_ChnStat stat;
        benchmark::DoNotOptimize(MI_VDEC_GetChnStat(3, &stat));
        benchmark::DoNotOptimize(MI_VDEC_SendStream(3, &stream, 20));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(reference_platform_calls_alone);

} // namespace

BENCHMARK_MAIN();
