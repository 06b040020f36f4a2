/* The audio operations with every platform call failing once, at every place. */
#include "audio_words.h"
#include "failure_sweep.h"
#include "mi_ao.h"

using sweep::Expectation;
using sweep::kFailureText;
using sweep::Undisturbed;

namespace
{

void prepare_nothing() {}

/* The start-up sequence ends at the failing call, and names it. */
Expectation stops_with_text(const Undisturbed &run, size_t index)
{
    return {-1, {}, {run.names[index] + " faile =0x" + kFailureText}, false};
}

TEST(FailureSweep, AudioStart)
{
    EXPECT_EQ(sweep::fail_every_call(
                  prepare_nothing, [] { return int64_t{audio_init()}; }, stops_with_text),
              6u);
}

TEST(FailureSweep, AudioDeviceStart)
{
    const auto start = [] {
        const MI_AO_PubAttr attr = {};
        return int64_t{audio_start_ao(5, 0, &attr)};
    };
    const auto stops = [](const Undisturbed &, size_t) { return Expectation{-1, {}, {}, false}; };
    EXPECT_EQ(sweep::fail_every_call(prepare_nothing, start, stops), 2u);
}

TEST(FailureSweep, AudioDecoder)
{
    const auto create = [] { return int64_t{audio_create_adec_chn(3, 0, 0, 0)}; };
    const auto passes_on = [](const Undisturbed &, size_t) {
        return Expectation{sweep::kFailure, {}, {}, false};
    };
    EXPECT_EQ(sweep::fail_every_call(prepare_nothing, create, passes_on), 2u);
}

TEST(FailureSweep, LiveAudio)
{
    const auto open = [] { return int64_t{ext_set_audio_live_channel(1, 0)}; };
    const auto goes_on = [](const Undisturbed &, size_t) { return Expectation{}; };
    EXPECT_EQ(sweep::fail_every_call(prepare_nothing, open, goes_on), 1u);
}

TEST(FailureSweep, AudioVolume)
{
    const auto set = [] { return int64_t{ext_set_audio_output_volume(100)}; };
    const auto fails = [](const Undisturbed &, size_t) {
        return Expectation{-1, {}, {"MI_AO_SetVolume] err 0x" + kFailureText}, false};
    };
    EXPECT_EQ(sweep::fail_every_call(prepare_nothing, set, fails), 1u);
}

} // namespace
