/* Playback with every platform call failing once, at every place. */
#include "failure_sweep.h"
#include "view_frame.h"

using namespace view_test;
using sweep::Expectation;
using sweep::kFailureText;
using sweep::Undisturbed;

namespace
{

constexpr int32_t kCameras = 3;

/* Lenient: a decoder that fails to stop, or to be created again, would refuse what follows too. */
void prepare_decoders()
{
    recording::platform.be_lenient();
    g_vi_chn_num = kCameras;
    vdec_create(1, kCameras + 1);
}

/** What a failing call of a kind says, when the sequence goes on behind it. */
Expectation goes_on(const Undisturbed &run, size_t index)
{
    const std::string &name = run.names[index];
    Expectation expected = {0, run.from(index + 1), {}, false};
    if (name == "MI_VDEC_StopChn" || name == "MI_VDEC_StartChn")
        expected.pieces = {"failed errno 0xa00900ee"};
    if (name == "MI_SYS_BindChnPort" || name == "MI_SYS_UnBindChnPort")
        expected.pieces = {"failed with 0x" + kFailureText + "!\n"};
    return expected;
}

TEST(FailureSweep, PlaybackStart)
{
    constexpr size_t kCallsPerPort = 5; // unbind, bind, clear, unbind, bind
    unsigned failures = sweep::fail_every_call(
        prepare_decoders, [] { return ext_playback_start(0, 0); },
        [](const Undisturbed &run, size_t index) -> Expectation {
            bool first_bind = index < kCameras * kCallsPerPort && index % kCallsPerPort == 1;
            if (first_bind) return {-1, {}, {"Vo fault to bind vpss errno is 0xffffffff\n"}, false};
            return goes_on(run, index);
        });
    EXPECT_EQ(failures, kCameras * (kCallsPerPort + 2));
}

TEST(FailureSweep, PlaybackExit)
{
    EXPECT_EQ(sweep::fail_every_call(
                  prepare_decoders, [] { return ext_playback_exit(); }, goes_on),
              kCameras * 3u);
}

TEST(FailureSweep, SwitchToASinglePicture)
{
    auto expect = [](const Undisturbed &run, size_t index) -> Expectation {
        const std::string &name = run.names[index];
        Expectation expected = {0, run.from(index + 1), {}, false};
        if (name == "MI_VDEC_GetChnStat") { // the attempt is used up, and the next one finds it empty
            expected.pieces = {"MI_VDEC_GetChnStat errno is 0xa00900ee\n"};
            expected.following = run.from(0);
        }
        if (name == "MI_VDEC_GetChnAttr" || name == "MI_VDEC_DestroyChn" || name == "MI_VDEC_CreateChn") {
            expected.pieces = {name + " failed errno 0xa00900ee,chnid:1 \n"};
            expected.following = {};
        }
        return expected;
    };
    EXPECT_EQ(sweep::fail_every_call(
                  prepare_decoders, [] { return ext_signal_spilt_start(1); }, expect),
              12u);
}

TEST(FailureSweep, DoubleRateVideoBuffer)
{
    auto act = []() -> int64_t {
        std::vector<uint8_t> bytes(100);
        FrameInfo rec = frame_of(FRAME_MEDIA_VIDEO, 2, bytes);
        rec.display_rate = 2;
        return ext_playback_set_buf(&rec);
    };
    auto expect = [](const Undisturbed &run, size_t index) -> Expectation {
        const std::string &name = run.names[index];
        if (name == "MI_VDEC_SendStream")
            return {-1,
                    {"MI_VDEC_StopChn", "MI_VDEC_StartChn"},
                    {"MI_VDEC_SendStream failed errno 0xa00900ee"},
                    false};
        if (name == "MI_VDEC_GetChnStat") return {0, {}, {}, false};
        return {
            0, run.from(index + 1), {name + " exe error [" + std::to_string(sweep::kFailure) + "]\n"}, false};
    };
    EXPECT_EQ(sweep::fail_every_call(prepare_decoders, act, expect), 4u);
}

TEST(FailureSweep, PlaybackTakesPositiveCodesForFailuresToo)
{
    sweep::fail_every_call_positively(prepare_decoders, [] { return ext_playback_start(0, 0); });
    sweep::fail_every_call_positively(prepare_decoders, [] { return ext_playback_exit(); });
    sweep::fail_every_call_positively(prepare_decoders, [] { return ext_signal_spilt_exit(1); });
}

} // namespace
