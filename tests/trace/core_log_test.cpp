/* The log of whole operations through a function: the bytes that standard output gets otherwise. */
#include <cerrno>
#include <cstdio>

#include "core_start.h"
#include "fresh_process.h"

using namespace core_test;
using recording::in_fresh_process;
using recording::Outcome;
using recording::platform;

namespace
{

void append(const char *text, size_t length, void *user)
{
    static_cast<std::string *>(user)->append(text, length);
}

/** What a recorder's day prints: a start, layouts, calls that fail, texts of every form. */
int64_t print_much()
{
    platform.be_lenient();
    platform.script("MI_DISP_SetInputPortAttr").nth(5).returns(-9);
    platform.script("MI_VDEC_SendStream").returns(-1);
    DeviceParams params = device_params(8);
    int64_t results = ext_device_init(&params);
    results = results * 2 + ext_gui_init();

    DispAttrib panes[2] = {};
    panes[0] = {1, 0, 0, 0, 960, 540, {}};
    panes[1] = {1, 1, 960, 0, 960, 540, {}};
    results = results * 2 + ext_change_display_format(panes, 2);
    unsigned char bytes[64] = {};
    FrameInfo frame = {};
    frame.frame_type = 1;
    frame.media = FRAME_MEDIA_VIDEO;
    frame.data = bytes;
    frame.length = sizeof bytes;
    results = results * 2 + ext_send_stream(&frame, 1, 0, 0);
    results = results * 2 + ext_set_audio_output_volume(3);

    const std::string long_text(5000, 'x');
    uint8_t unit[2] = {};
    FromGb2312ToUnicode(reinterpret_cast<const uint8_t *>(long_text.c_str()), 5000, unit, sizeof unit);
    return results * 2 + static_cast<int64_t>(ext_device_quit());
}

TEST(LogOfOperations, IsTheSameThroughAFunctionByteForByte)
{
    const Outcome plain = in_fresh_process(print_much);
    ASSERT_TRUE(plain.finished) << plain.death;
    ASSERT_GT(plain.printed.size(), 200u);

    const Outcome through = in_fresh_process([] {
        std::string log;
        nvrhal_set_log(append, &log);
        const int64_t results = print_much();
        nvrhal_set_log(nullptr, nullptr);
        const std::string printed = recording::printed_text();
        std::fwrite(log.data(), 1, log.size(), stdout); // into what the parent compares
        return printed.empty() ? results : -1;
    });
    ASSERT_TRUE(through.finished) << through.death;
    EXPECT_EQ(through.result, plain.result) << "or something was printed past the function";
    EXPECT_EQ(through.printed, plain.printed);
    EXPECT_EQ(through.calls, plain.calls);
}

struct UnderLock {
    unsigned texts = 0;
    unsigned held = 0;
};

TEST(LogOfOperations, ReachesTheFunctionWithTheLayoutLockHeldToo)
{
    ASSERT_EQ(start_library(2), 0);
    UnderLock seen;
    nvrhal_set_log(
        [](const char *, size_t, void *user) {
            auto *lock = static_cast<UnderLock *>(user);
            ++lock->texts;
            if (pthread_mutex_trylock(&global_bindargLock) == EBUSY)
                ++lock->held;
            else
                pthread_mutex_unlock(&global_bindargLock);
        },
        &seen);
    platform.script("MI_DISP_SetInputPortAttr").returns(-9);
    DispAttrib pane = {1, 0, 0, 0, 1920, 1080, {}};
    ext_change_display_format(&pane, 1);
    nvrhal_set_log(nullptr, nullptr);
    EXPECT_GT(seen.held, 0u);
    EXPECT_GT(seen.texts, seen.held);
}

} // namespace
