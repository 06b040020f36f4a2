/*
 * board_rig.h - the test bench under the virtual board's own tests: bring-up, streams, looks at the
 * output, and a reference decoder that shares nothing with the board.
 */
#ifndef BOARD_RIG_H
#define BOARD_RIG_H

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mi_disp.h"
#include "mi_hdmi.h"
#include "mi_sys.h"
#include "mi_vdec.h"
#include "stamp.h"
#include "vboard.h"

namespace rig
{

constexpr int32_t kPatience_ms = 20000; // ends a hanging test
constexpr uint32_t kTiming1080p60 = 16;
constexpr uint32_t kTiming720p50 = 8;

using Bytes = std::vector<uint8_t>;

/* A stamped stream of the build, cut into its frames. */
struct Stream {
    uint32_t codec; // enum MI_VDEC_Codec
    std::vector<Bytes> frames;

    Bytes joined() const;
};
Stream load_stream(const std::string &name);

/* Bad data: random bytes, and a frame with random bits of it turned over. */
Bytes noise(size_t size, uint32_t seed);
Bytes with_flipped_bits(Bytes frame, uint32_t seed, int flips);

/* An I420 picture without padding. */
struct Picture {
    int width = 0, height = 0;
    Bytes bytes;

    const uint8_t *luma() const { return bytes.data(); }
    const uint8_t *chroma(int plane) const;
    Picture part(int x, int y, int w, int h) const; // even
    bool is_black() const;
    bool operator==(const Picture &) const = default;
};

/* What the device composes, what the monitor shows, and a stamp in a window of it. */
Picture look(int32_t device = 0);
Picture look_at_monitor(bool *blank = nullptr);
std::optional<stamp::Stamp> stamp_at(const Picture &wall, int x, int y, int w, int h);

/* Decode a whole stream with libavcodec alone, in display order. */
std::vector<Picture> reference_decode(const Stream &stream);

/* The board's published scaler on a picture. */
Picture scaled(const Picture &picture, int width, int height);

/* ---- bring-up; every step must succeed ---- */

void power_up(uint32_t timing = kTiming1080p60, int32_t device = 0);
MI_VDEC_ChnAttr channel_attr(uint32_t codec, uint32_t mode = MI_VDEC_MODE_FRAME,
                             uint32_t buffer_bytes = 0x100000);
void start_channel(uint32_t channel, uint32_t codec, uint32_t mode = MI_VDEC_MODE_FRAME,
                   uint32_t buffer_bytes = 0x100000);
void open_window(uint32_t port, int x, int y, int w, int h, int32_t device = 0);
MI_SYS_ChnPort vdec_end(uint32_t channel);
MI_SYS_ChnPort disp_end(uint32_t port, int32_t device = 0);
int32_t bind(uint32_t channel, uint32_t port, int32_t device = 0);
int32_t unbind(uint32_t channel, uint32_t port, int32_t device = 0);
int32_t send(uint32_t channel, const Bytes &bytes, int32_t timeout_ms = -1, uint64_t pts = 0);

/* Send and wait until the channel has nothing left to do. */
void send_and_settle(uint32_t channel, const Bytes &bytes);

vboard_decoder_stat counters(uint32_t channel);
vboard_port_stat port_state(uint32_t port, int32_t device = 0);
std::string last_refusal();

/* Every test begins and ends with a board without power. */
class Board : public testing::Test
{
protected:
    void SetUp() override { vboard_reset(); }
    void TearDown() override
    {
        vboard_set_loud(1);
        vboard_reset();
    }
};

constexpr int32_t code(MI_ModuleId module, MI_Reason reason)
{
    return MI_ERROR(module, reason);
}

} // namespace rig

#endif
