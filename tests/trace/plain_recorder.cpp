/*
 * plain_recorder.cpp - the recording platform without a test framework.
 *
 * What a firmware team does that has a test runner of its own: start the library on the recording
 * platform, send it a frame, and look at the calls that reached the chip and at the texts. Exit
 * status 0 = all as expected.
 */
#include <cstdio>
#include <vector>

#include "nvrhal.h"
#include "recording_platform.h"

using recording::platform;

namespace
{

bool expect(const char *what, bool holds)
{
    if (!holds) std::fprintf(stderr, "not so: %s\n", what);
    return holds;
}

bool send_one_frame()
{
    std::vector<uint8_t> bytes = {0, 0, 0, 1, 0x65, 0x88};
    FrameInfo frame = {};
    frame.media = FRAME_MEDIA_VIDEO;
    frame.channel = 1;
    frame.length = static_cast<uint32_t>(bytes.size());
    frame.data = bytes.data();
    platform.forget();
    // Each is looked at, whatever the one before it gave.
    const bool taken = expect("a frame is taken", ext_send_stream(&frame, 1, 0, 0) == 0);
    const bool sent = expect("it reaches its decoder", platform.count("MI_VDEC_SendStream 1 {6 bytes") == 1);
    const bool same = expect("with its bytes", platform.bytes_sent("MI_VDEC_SendStream").at(0) == bytes);
    return taken && sent && same;
}

} // namespace

int main()
{
    recording::start_capture();
    DeviceParams params = {};
    params.vi_chn_num = 2;
    params.gui_width = 1280;
    params.gui_height = 1024;
    bool all = expect("the library starts", ext_device_init(&params) == 0);
    all &= expect("it says so", recording::printed("init done!").holds);
    all &= expect("a text that it did not print is missed", !recording::printed("no such text").holds);
    all &= expect("its decoders are created", platform.count("MI_VDEC_CreateChn") == 3);
    all &= send_one_frame();
    recording::stop_capture();
    return all ? 0 : 1;
}
