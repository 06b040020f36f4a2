/* Start-up, GUI start and quit with every platform call failing once, at every place. */
#include "core_start.h"
#include "failure_sweep.h"

using namespace core_test;
using sweep::Expectation;
using sweep::kFailureText;
using sweep::Names;
using sweep::Undisturbed;

namespace
{

bool begins(const std::string &text, const char *prefix)
{
    return text.rfind(prefix, 0) == 0;
}

/* The checking convention of display and HDMI bring-up: say so, stop. */
Expectation stopped_by_convention(const std::string &name)
{
    return {-1, {}, {"AUDIO_TEST [", name + "(", "exec function failed, result:0x" + kFailureText}, false};
}

Expectation start_up_expectation(const Undisturbed &run, size_t index)
{
    const std::string &name = run.names[index];
    Names rest = run.from(index + 1);

    if (begins(name, "MI_SYS_")) return {-1, {name}, {"[ST_Sys_Init ", " 0]exec function failed"}, false};
    if (name == "MI_HDMI_Init" || name == "MI_HDMI_Open")
        return {0, rest, {name + " fail =" + kFailureText}, false};
    if (name == "MI_HDMI_SetAvMute") return {0, rest, {}, false};
    if (begins(name, "MI_HDMI_")) { // configured a second time for the code, which is then 0
        Expectation expected = stopped_by_convention(name);
        expected.following = {"MI_HDMI_SetAvMute", "MI_HDMI_SetAttr", "MI_HDMI_Start", "MI_HDMI_SetAvMute"};
        return expected;
    }
    if (name == "MI_VDEC_CreateChn")
        return {-1, {}, {"HI_MPI_VDEC_CreateChn failed errno 0x" + kFailureText + ",chnid:"}, false};
    if (name == "MI_VDEC_StartChn")
        return {-1, {}, {"MI_VDEC_StartChn failed errno 0x" + kFailureText}, false};
    if (name == "MI_VDEC_SetOutputPortAttr")
        return {-1, {}, {"MI_VDEC_SetOutputPortAttr failed errno 0x", kFailureText}, false};
    if (name == "MI_VDEC_GetOutputPortAttr") return {0, rest, {}, false};
    if (begins(name, "MI_DISP_")) return stopped_by_convention(name);
    Expectation other; // audio and the device nodes have sweeps of their own
    other.anything = true;
    return other;
}

/* Some of its requests end the process when they fail; the framebuffer's own sweep looks at those. */
void unplug_framebuffer()
{
    recording::platform.node("/dev/fb0").fails_to_open();
}

TEST(FailureSweep, StartUp)
{
    unsigned failures = sweep::fail_every_call(
        unplug_framebuffer,
        []() -> int64_t {
            DeviceParams params = device_params(4);
            return ext_device_init(&params);
        },
        start_up_expectation);
    EXPECT_GE(failures, 5u + 2 + 5 * 3 + 6 + 4 + 4 * 7);
}

TEST(FailureSweep, StartUpOfTheMostCameras)
{
    unsigned failures = sweep::fail_every_call(
        unplug_framebuffer,
        []() -> int64_t {
            DeviceParams params = device_params(16, 800, 600);
            return ext_device_init(&params);
        },
        start_up_expectation);
    EXPECT_GE(failures, 5u + 2 + 17 * 3 + 6 + 4 + 16 * 7);
}

Expectation gui_expectation(const Undisturbed &run, size_t index)
{
    const std::string &name = run.names[index];
    Names rest = run.from(index + 1);
    if (name == "MI_DISP_DisableInputPort")
        return {0, rest, {"] Vo fault to unbind vpss errno is 0x" + kFailureText}, false};
    if (begins(name, "MI_DISP_") && name != "MI_DISP_EnableVideoLayer" && name != "MI_DISP_EnableInputPort")
        return {-1, {}, {"failed with 0x" + kFailureText}, false};
    if (begins(name, "MI_DISP_")) return {-1, {}, {}, false};
    if (begins(name, "MI_HDMI_")) return {0, rest, {name + " fail =" + kFailureText}, false};
    Expectation other;
    other.anything = true;
    return other;
}

void prepare_gui()
{
    unplug_framebuffer();
    EXPECT_EQ(start_library(3, 1440, 900), 0);
}

TEST(FailureSweep, FirstGuiStart)
{
    unsigned failures = sweep::fail_every_call(
        prepare_gui, []() -> int64_t { return ext_gui_init(); }, gui_expectation);
    EXPECT_GE(failures, 3u + 6 + 3 * 2 + 2);
}

TEST(FailureSweep, SecondGuiStart)
{
    auto prepare = [] {
        prepare_gui();
        EXPECT_EQ(ext_gui_init(), 0);
    };
    unsigned failures = sweep::fail_every_call(
        prepare, []() -> int64_t { return ext_gui_init(); }, gui_expectation);
    EXPECT_GE(failures, 3u + 3 * 2 + 2);
}

TEST(FailureSweep, Quit)
{
    unsigned failures = sweep::fail_every_call(
        [] {
            g_vi_chn_num = 4;
            recording::platform.have_decoders(5);
            recording::platform.have_bindings(4);
        },
        []() -> int64_t { return ext_device_quit(); },
        [](const Undisturbed &run, size_t index) -> Expectation {
            bool clear = run.names[index] == "MI_DISP_ClearInputPortBuffer";
            std::string text =
                clear ? "    MI_VDEC_ReleaseUserData exe error [" : "failed with 0x" + kFailureText;
            return {0, run.from(index + 1), {text}, false};
        });
    EXPECT_EQ(failures, 8u);
}

} // namespace
