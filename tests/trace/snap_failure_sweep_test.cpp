/* The snapshot with every platform call failing once, at every place. */
#include <cstdlib>

#include "failure_sweep.h"
#include "snap_request.h"

using sweep::Expectation;
using sweep::kFailureText;
using sweep::Names;
using sweep::Undisturbed;

namespace
{

void prepare_live()
{
    snap_test::prepare();
}

/* Lenient: a decoder that fails to stop, or to be created, would refuse what follows too. */
void prepare_playback()
{
    recording::platform.be_lenient();
    snap_test::prepare();
    playback_status = 1;
}

int64_t take_snapshot()
{
    FrameInfo frame = snap_test::request(2);
    int32_t result = ext_get_jpeg_stream(&frame);
    return result;
}

const Names kEncoderEnd = {"MI_VENC_ResetChn", "MI_VENC_StopRecvPic"};
const Names kTakeDown = {"MI_VENC_GetChnDevid", "MI_SYS_UnBindChnPort", "MI_SYS_UnBindChnPort",
                         "MI_VENC_DestroyChn",  "MI_DIVP_StopChn",      "MI_DIVP_DestroyChn"};
constexpr size_t kBuildCalls = 12;
constexpr size_t kFetchCalls = 6; // start, get, clock, release, reset, stop

Names joined(Names first, const Names &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/** What a live snapshot owes when call `index` of it fails. `fetch_failed` is the result then. */
Expectation live_expectation(const Undisturbed &run, size_t index, int64_t fetch_failed, const Names &end)
{
    const std::string &name = run.names[index];
    if (index < kBuildCalls) {
        bool late = name == "MI_DIVP_StartChn" || index == kBuildCalls - 1;
        return {-1,
                kTakeDown,
                {name + (late ? " faild with0x" + kFailureText + "!\n" : " fail=0x" + kFailureText + "\n")},
                false};
    }
    if (name == "MI_VENC_StartRecvPic")
        return {fetch_failed,
                joined(joined(kEncoderEnd, kTakeDown), end),
                {name + " faild with0x" + kFailureText + "!\n"},
                false};
    if (name == "MI_VENC_GetStream") // asked again
        return {0, joined({"board_sleep_us"}, run.from(index)), {"MI_VENC_GetStream wait\n"}, false};
    if (name == "MI_VENC_ReleaseStream")
        return {fetch_failed, run.from(index + 1), {name + " failed with 0x" + kFailureText + "!\n"}, false};
    if (name == "MI_VENC_ResetChn") return {0, run.from(index + 1), {}, false};
    if (name == "MI_VENC_StopRecvPic")
        return {0, run.from(index + 1), {name + " fail = 0x" + kFailureText + "\n"}, false};
    if (index < kBuildCalls + kFetchCalls + 3)
        return {0, run.from(index + 1), {name + " fail=0x" + kFailureText + "\n"}, false};
    return {0, run.from(index + 1), {name + " vechn[2] failed with 0x" + kFailureText + "!\n"}, false};
}

TEST(FailureSweep, LiveSnapshot)
{
    unsigned failures =
        sweep::fail_every_call(prepare_live, take_snapshot, [](const Undisturbed &run, size_t index) {
            return live_expectation(run, index, -1, {});
        });
    EXPECT_EQ(failures, kBuildCalls + kFetchCalls - 1 + kTakeDown.size());
}

TEST(FailureSweep, SnapshotDuringPlayback)
{
    constexpr size_t kRebuildCalls = 5;
    unsigned failures = sweep::fail_every_call(
        prepare_playback, take_snapshot, [](const Undisturbed &run, size_t index) -> Expectation {
            const std::string &name = run.names[index];
            if (index + 1 == run.names.size())
                return {
                    sweep::kFailure, {}, {"MI_VDEC_StartChn failed errno 0x" + kFailureText + " \n"}, false};
            if (index == 1) // the channel is created with what there is: nothing
                return {-1,
                        joined({"MI_VDEC_DestroyChn", "MI_VDEC_CreateChn", "MI_VDEC_StartChn",
                                "MI_VDEC_GetChnAttr"},
                               kTakeDown),
                        {"MI_VDEC_GetChnAttr failed errno 0x" + kFailureText + ",chnid:4 \n"},
                        false};
            if (index == 3 || index == 4)
                return {sweep::kFailure,
                        {},
                        {"MI_VDEC_CreateChn failed errno 0x" + kFailureText + ",chnid:4 \n"},
                        false};
            if (index < kRebuildCalls)
                return {0,
                        run.from(index + 1),
                        {name + " failed errno 0x" + kFailureText + ",chnid:4 \n"},
                        false};
            Undisturbed live = {{}, run.from(kRebuildCalls)};
            return live_expectation(live, index - kRebuildCalls, 0, {"MI_VDEC_StopChn"});
        });
    EXPECT_EQ(failures, kRebuildCalls + kBuildCalls + kFetchCalls - 1 + kTakeDown.size() + 1);
}

TEST(FailureSweep, SnapshotTakesPositiveCodesForFailuresToo)
{
    sweep::fail_every_call_positively(prepare_live, take_snapshot);
    sweep::fail_every_call_positively(prepare_playback, take_snapshot);
}

TEST(FailureSweep, BuildingThePipeline)
{
    auto act = []() -> int64_t {
        SnapSize size = {};
        return venc_snap_start(2, 2, &size);
    };
    auto expect = [](const Undisturbed &run, size_t index) -> Expectation {
        Expectation expected = live_expectation(run, index, -1, {});
        expected.following = {}; // the caller takes down
        return expected;
    };
    EXPECT_EQ(sweep::fail_every_call(prepare_live, act, expect), kBuildCalls);
}

TEST(FailureSweep, TakingThePipelineDown)
{
    auto prepare_pipeline = [] {
        prepare_live();
        SnapSize size = {};
        venc_snap_start(2, 2, &size);
    };
    auto expect = [](const Undisturbed &run, size_t index) -> Expectation {
        const std::string &name = run.names[index];
        const std::string text =
            index < 3 ? " fail=0x" + kFailureText + "\n" : " vechn[2] failed with 0x" + kFailureText + "!\n";
        return {0, run.from(index + 1), {name + text}, false};
    };
    EXPECT_EQ(sweep::fail_every_call(
                  prepare_pipeline, [] { return venc_snap_stop(2, 2); }, expect),
              kTakeDown.size());
}

} // namespace
