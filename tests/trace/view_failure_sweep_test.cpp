/* Layout changes and frames with every platform call failing once, at every place. */
#include "failure_sweep.h"
#include "view_frame.h"

using namespace view_test;
using sweep::Expectation;
using sweep::kFailureText;
using sweep::Names;
using sweep::Undisturbed;

namespace
{

constexpr int32_t kCameras = 4;

/* Lenient: a layout unbinds what is not bound, and what one failure leads to is looked at alone. */
void prepare_layout()
{
    recording::platform.be_lenient();
    create_decoders(kCameras);
}

void prepare_frame()
{
    recording::platform.have_decoders(kCameras + 1);
}

int64_t apply_panes(int32_t count)
{
    DispAttrib panes[kCameras];
    for (uint16_t channel = 0; channel < kCameras; ++channel)
        panes[channel] = pane(channel, channel % 2 * 960, channel / 2 * 540, 960, 540);
    return globalVoDev == -1 ? ext_change_display_slave(panes, count)
                             : ext_change_display_format(panes, count);
}

enum class Then { kGoesOn, kAbandonsFlush, kStops };

struct Step {
    const char *name;
    Then then;
    const char *text; // "" = nothing is said; the code may follow it
};

constexpr Step kTakeOff[] = {
    {"MI_SYS_UnBindChnPort", Then::kGoesOn, "failed with 0xa00900ee!"},
    {"MI_DISP_ClearInputPortBuffer", Then::kGoesOn, ""},
    {"MI_DISP_DisableInputPort", Then::kGoesOn, "vo hide channel "},
};

constexpr Step kPane[] = {
    {"MI_VDEC_GetOutputPortAttr", Then::kGoesOn, "MI_VDEC_GetOutputPortAttr,"},
    {"MI_VDEC_StopChn", Then::kGoesOn, ""},
    {"MI_SYS_UnBindChnPort", Then::kGoesOn, "failed with 0xa00900ee!"},
    {"MI_VDEC_GetChnAttr", Then::kAbandonsFlush, "MI_VDEC_GetChnAttr failed errno 0xa00900ee,chnid:"},
    {"MI_VDEC_DestroyChn", Then::kAbandonsFlush, "MI_VDEC_DestroyChn failed errno 0xa00900ee,chnid:"},
    {"MI_VDEC_CreateChn", Then::kAbandonsFlush, "MI_VDEC_CreateChn failed errno 0xa00900ee,chnid:"},
    {"MI_VDEC_SetOutputPortAttr", Then::kGoesOn, "MI_VDEC_SetOutputPortAttr,"},
    {"MI_SYS_BindChnPort", Then::kGoesOn, "failed with 0xa00900ee!"},
    {"MI_VDEC_StartChn", Then::kAbandonsFlush, "MI_VDEC_StartChn failed errno 0xa00900ee "},
    // the flush ends here
    {"MI_SYS_UnBindChnPort", Then::kGoesOn, "failed with 0xa00900ee!"},
    {"MI_VDEC_GetOutputPortAttr", Then::kGoesOn, "MI_VDEC_GetOutputPortAttr,"},
    {"MI_VDEC_GetChnAttr", Then::kGoesOn, "MI_VDEC_GetChnAttr,"},
    {"MI_VDEC_SetOutputPortAttr", Then::kGoesOn, "MI_VDEC_SetOutputPortAttr,"},
    {"board_sleep_us", Then::kGoesOn, ""},
};
constexpr size_t kFlushSteps = 9;

constexpr Step kShow[] = {
    {"MI_DISP_GetInputPortAttr", Then::kStops, "attr failed with errno 0xa00900ee!"},
    {"MI_DISP_SetInputPortAttr", Then::kStops, "attr failed with errno 0xa00900ee!"},
    {"MI_DISP_EnableInputPort", Then::kStops, "failed with errno 0xa00900ee!"},
    {"MI_SYS_BindChnPort", Then::kGoesOn, "failed with 0xa00900ee!"},
};

constexpr size_t kTakeOffCalls = kCameras * std::size(kTakeOff);

Expectation expectation_of(const Step &step, const Undisturbed &run, size_t index, size_t flush_end)
{
    EXPECT_EQ(run.names[index], step.name);
    Expectation expected;
    if (*step.text != '\0') expected.pieces = {step.text};
    if (step.then == Then::kGoesOn) expected.following = run.from(index + 1);
    if (step.then == Then::kAbandonsFlush) expected.following = run.from(flush_end);
    if (step.then == Then::kStops) expected.result = -1;
    return expected;
}

Expectation layout_expectation(const Undisturbed &run, size_t index, size_t panes)
{
    if (index < kTakeOffCalls) return expectation_of(kTakeOff[index % std::size(kTakeOff)], run, index, 0);
    size_t at = index - kTakeOffCalls;
    if (at < panes * std::size(kPane)) {
        size_t step = at % std::size(kPane);
        return expectation_of(kPane[step], run, index, index - step + kFlushSteps);
    }
    at -= panes * std::size(kPane);
    return expectation_of(kShow[at % std::size(kShow)], run, index, 0);
}

TEST(FailureSweep, LayoutOfFourPanes)
{
    unsigned failures = sweep::fail_every_call(
        prepare_layout, [] { return apply_panes(4); },
        [](const Undisturbed &run, size_t index) { return layout_expectation(run, index, 4); });
    EXPECT_EQ(failures, kTakeOffCalls + 4 * (std::size(kPane) - 1) + 4 * std::size(kShow));
}

TEST(FailureSweep, LayoutOfOnePane)
{
    unsigned failures = sweep::fail_every_call(
        prepare_layout, [] { return apply_panes(1); },
        [](const Undisturbed &run, size_t index) { return layout_expectation(run, index, 1); });
    EXPECT_EQ(failures, kTakeOffCalls + (std::size(kPane) - 1) + std::size(kShow));
}

/* The second single picture flushes the first one before anything; a flush that fails ends it. */
TEST(FailureSweep, SecondLayoutOfOnePane)
{
    auto prepare = [] {
        prepare_layout();
        EXPECT_EQ(apply_panes(1), 0);
    };
    unsigned failures = sweep::fail_every_call(
        prepare, [] { return apply_panes(1); },
        [](const Undisturbed &run, size_t index) {
            if (index >= kFlushSteps) {
                Undisturbed layout = {{}, run.from(kFlushSteps)};
                return layout_expectation(layout, index - kFlushSteps, 1);
            }
            Expectation expected = expectation_of(kPane[index], run, index, run.names.size());
            if (kPane[index].then == Then::kAbandonsFlush) expected.result = sweep::kFailure;
            return expected;
        });
    EXPECT_EQ(failures, kFlushSteps + kTakeOffCalls + (std::size(kPane) - 1) + std::size(kShow));
}

TEST(FailureSweep, SecondaryLayout)
{
    auto prepare = [] {
        g_vi_chn_num = kCameras;
        globalVoDev = -1;
    };
    unsigned failures = sweep::fail_every_call(
        prepare, [] { return apply_panes(4); },
        [](const Undisturbed &, size_t) -> Expectation {
            return {-1, {}, {"channel ", "failed with errno 0x" + kFailureText + "!"}, false};
        });
    EXPECT_EQ(failures, static_cast<unsigned>(kCameras + 4 * 3));
}

const Names kReset = {"MI_VDEC_StopChn", "MI_VDEC_StartChn"};

Expectation frame_expectation(const Undisturbed &run, size_t index)
{
    const std::string &name = run.names[index];
    if (name == "MI_VDEC_SendStream")
        return {-1, kReset, {"Chnn = 2 MI_VDEC_SendStream failed errno 0x" + kFailureText}, false};
    if (name == "MI_VDEC_GetChnStat") // no statistics, no reset
        return {0, {"MI_VDEC_SendStream"}, {"Chnn = 2 MI_VDEC_GetChnStat failed errno 0x"}, false};
    return {0, run.from(index + 1), {"failed errno 0x" + kFailureText}, false};
}

TEST(FailureSweep, Frame)
{
    EXPECT_EQ(sweep::fail_every_call(
                  prepare_frame, [] { return int64_t{send_video(2)}; }, frame_expectation),
              2u);
}

TEST(FailureSweep, FrameBehindABacklog)
{
    auto prepare = [] {
        recording::platform.be_lenient(); // a decoder that did not start again would refuse the frame
        recording::platform.script("MI_VDEC_GetChnStat").fills([](recording::Args &args) {
            args.record<MI_VDEC_ChnStat>(1).left_stream_bytes = 1 << 20;
        });
    };
    EXPECT_EQ(sweep::fail_every_call(
                  prepare, [] { return int64_t{send_video(2, 50)}; }, frame_expectation),
              4u);
}

TEST(FailureSweep, FrameOfANewCodec)
{
    auto act = []() -> int64_t {
        std::vector<uint8_t> bytes(64);
        FrameInfo frame = frame_of(FRAME_MEDIA_VIDEO, 2, bytes);
        return ext_send_stream(&frame, 0, 0, 0);
    };
    auto expect = [](const Undisturbed &run, size_t index) -> Expectation {
        constexpr size_t kRecreateCalls = 4; // stop, destroy, create, start: the first failure ends them
        if (index >= kRecreateCalls) return frame_expectation(run, index);
        constexpr const char *kTexts[kRecreateCalls] = {
            "stopRecvStream VDEC fail for 0xa00900ee!", " VDEC DestroyChn fail for 0xa00900ee!",
            "HI_MPI_VDEC_CreateChn failed errno 0xa00900ee,chnid:2 ",
            "MI_VDEC_StartChn failed errno 0xa00900ee "};
        return {0, run.from(kRecreateCalls), {kTexts[index]}, false};
    };
    // Lenient: a decoder that could not be created again would refuse the frame too.
    EXPECT_EQ(sweep::fail_every_call([] { recording::platform.be_lenient(); }, act, expect), 6u);
}

TEST(FailureSweep, AudioBlock)
{
    auto act = []() -> int64_t {
        std::vector<uint8_t> bytes(4 + 5 * 320);
        FrameInfo frame = frame_of(FRAME_MEDIA_AUDIO, 0, bytes);
        return ext_send_stream(&frame, 0, 0, 0);
    };
    auto expect = [](const Undisturbed &run, size_t index) -> Expectation {
        return {0, run.from(index + 1), {"MI_AO_SendFrame fail=0x" + kFailureText}, false};
    };
    EXPECT_EQ(sweep::fail_every_call([] {}, act, expect), 5u);
}

} // namespace
