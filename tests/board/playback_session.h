/*
 * playback_session.h - a recorder's session on the virtual board for the tests of playback, zoom and
 * snapshots: the library started once, stamped H.265 cameras and recordings, one frame a send.
 *
 * Start-up creates every decoder for H.265 in whole frames, so a frame sent is a picture shown.
 */
#ifndef PLAYBACK_SESSION_H
#define PLAYBACK_SESSION_H

#include <atomic>
#include <thread>
#include <vector>

#include "board_rig.h"
#include "nvrhal.h"

namespace session
{

constexpr int32_t kCameras = 4;
constexpr uint32_t kH264 = NVRHAL_CODEC_H264, kH265 = NVRHAL_CODEC_H265;
constexpr unsigned kFirstRecording = 20; // stamp channel of the recording played on channel 0
constexpr int kWallWidth = 1920, kWallHeight = 1080;

/* Where camera `channel` lies in the layout of four panes. */
rig::Picture pane_of(const rig::Picture &wall, uint32_t channel);
std::optional<stamp::Stamp> stamp_of(const rig::Picture &wall, uint32_t channel);

rig::Stream live_stream(uint32_t channel); // stamp channel = channel
rig::Stream recording(uint32_t channel);   // stamp channel = kFirstRecording + channel

/* A frame through ext_send_stream, and through the playback buffer. */
int32_t send_live(uint32_t channel, const rig::Bytes &bytes, uint32_t codec = kH265);
int32_t play(uint32_t channel, const rig::Bytes &bytes, uint32_t display_rate = 0, uint64_t pts = 0);

/* Wait until a decoder channel has handed on everything it was sent. */
void settle(uint32_t channel);

/*
 * While it lives the board's clock is taken and runs as fast as somebody waits on it, so that the
 * library's waits take no time.
 */
class HurriedClock
{
public:
    HurriedClock();
    ~HurriedClock();

private:
    std::atomic<bool> done_{false};
    std::thread hurrier_;
};

/* The library's layouts, without their waits. */
int32_t lay_out_four();
int32_t lay_out_single(uint32_t channel);

/* The library started with four cameras on a board fresh from the shelf. */
class Session : public testing::Test
{
protected:
    void SetUp() override;

    /* Four cameras laid out, the first `frames` pictures of each shown. */
    void show_live(size_t frames);
};

} // namespace session

#endif
