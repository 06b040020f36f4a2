/*
 * Fetching the snapshot: wait for one encoded picture and copy it out of the encoder.
 *
 * The encoder's bytes stay valid until the stream is released, so they are copied first; the
 * encoder is reset and stopped in every case. Caller's thread; waits up to 2.5 s.
 */
#include <cstdlib>
#include <cstring>

#include "board_io.h"
#include "core/checked_call.h"
#include "core/log.h"
#include "mi_venc.h"
#include "nvrhal.h"
#include "snap/snap_pipeline.h"

using namespace nvrhal;

namespace
{

constexpr uint32_t kPackRoom = 1;
constexpr int32_t kGetTimeoutMs = 40;
constexpr uint32_t kRetryPauseUs = 10000;
constexpr int kAttempts = 50;

/** Ask the encoder until it has a picture. 0, or the last failure. */
int32_t wait_for_picture(uint32_t channel, MI_VENC_Stream &stream)
{
    int32_t got = 0;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        got = MI_VENC_GetStream(channel, &stream, kGetTimeoutMs);
        if (got == 0) return 0;
        stream.pack_count = kPackRoom;
        board_sleep_us(kRetryPauseUs);
        log_line("MI_VENC_GetStream wait");
    }
    log_failure(got, log_code(kSnapSource, "MI_VENC_GetStream failed with %#x!\n"));
    return got;
}

/** Copy the packs, which lie at their addresses whole, into a buffer of the caller's. 0 or -1. */
int32_t copy_picture(const MI_VENC_Stream &stream, int32_t got, FrameInfo &frame)
{
    uint32_t size = 0;
    for (uint32_t i = 0; i < stream.pack_count; ++i) {
        size += stream.packs[i].length_bytes;
        log_text("jpeg_size=%d\n", static_cast<int>(size));
    }
    if (size == 0) {
        log_error(kSnapSource, "MI_VENC_GetStream size is 0 %#x!\n", static_cast<unsigned>(got));
        return -1;
    }

    frame.media = FRAME_MEDIA_JPEG;
    frame.local_time = static_cast<uint64_t>(local_get_snapCurtime());
    uint8_t *bytes = static_cast<uint8_t *>(std::malloc(size));
    if (bytes == nullptr) {
        log_error_line(kSnapSource, "jpeg proc malloc fail!");
        return -1;
    }
    frame.length = size;
    frame.data = bytes;
    for (uint32_t i = 0; i < stream.pack_count; ++i) {
        const MI_VENC_Pack &pack = stream.packs[i];
        if (pack.length_bytes == 0) continue;
        std::memcpy(bytes, pack.address, pack.length_bytes); // offset_bytes is not applied, on purpose
        bytes += pack.length_bytes;
    }
    return 0;
}

/** From the running encoder to the caller's buffer. 0 or -1. */
int32_t fetch(uint32_t channel, FrameInfo &frame)
{
    MI_VENC_Pack packs[kPackRoom] = {};
    MI_VENC_Stream stream = {};
    stream.packs = packs;
    stream.pack_count = kPackRoom;
    const int32_t got = wait_for_picture(channel, stream);
    if (got != 0) return -1;
    if (stream.pack_count > kPackRoom) stream.pack_count = kPackRoom;

    if (copy_picture(stream, got, frame) != 0) return -1; // the reset that follows drops the stream
    if (failed_call(MI_VENC_ReleaseStream(channel, &stream),
                    log_code(kSnapSource, "MI_VENC_ReleaseStream failed with %#x!\n"))) {
        std::free(frame.data); // frame.data keeps the address, on purpose
        frame.length = 0;      // what tells the caller that there is no picture
        return -1;
    }
    return 0;
}

} // namespace

int64_t nvrhal::local_get_snapCurtime()
{
    return board_time_us();
}

int32_t venc_snap_process(uint32_t encoder_channel, FrameInfo *frame)
{
    log_entry(kSnapSource);
    if (frame == nullptr) return -1;

    const bool receiving = !failed_call(MI_VENC_StartRecvPic(encoder_channel),
                                        log_code(kSnapSource, "MI_VENC_StartRecvPic faild with%#x!\n"));
    const int32_t result = receiving ? fetch(encoder_channel, *frame) : -1;
    MI_VENC_ResetChn(encoder_channel);
    log_failure(MI_VENC_StopRecvPic(encoder_channel),
                log_code(kSnapSource, "MI_VENC_StopRecvPic fail = 0x%x\n"));
    return result;
}
