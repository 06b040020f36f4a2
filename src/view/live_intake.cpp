/*
 * Live intake: the one entry through which live frames reach the decoders and live audio the
 * loudspeaker.
 *
 * A video frame: gate (zoom, length) -> codec change -> size noted -> backlog check -> shown or
 * snapped? -> decoder. The backlog is checked before the filter, so a hidden channel's decoder is
 * kept in step too.
 *
 * Thread: one per channel. The selection state is read word by word without a lock; a frame that
 * races with a layout may reach, or miss, a decoder that is being bound anew, and the decoder
 * accepts that. vdec_chan_type: one word a channel, used by that channel's thread only.
 */
#include "audio/audio.h"
#include "core/checked_call.h"
#include "core/device_state.h"
#include "core/log.h"
#include "core/selection_state.h"
#include "mi_vdec.h"

using namespace nvrhal;

namespace
{

constexpr char kSource[] = "vdec_venc.c";

constexpr uint32_t kMostBytes = NVRHAL_MAX_SEND_BYTES; // of one send, any kind
constexpr uint32_t kDecoderChannels = NVRHAL_MAX_DECODERS;

// Codec (enum FrameCodec) with which each channel's decoder was created last; every decoder starts as H.265.
constexpr uint32_t kH265 = NVRHAL_CODEC_H265;
uint32_t vdec_chan_type[] = {kH265, kH265, kH265, kH265, kH265, kH265, kH265, kH265, kH265,
                             kH265, kH265, kH265, kH265, kH265, kH265, kH265, kH265};
static_assert(sizeof vdec_chan_type / sizeof vdec_chan_type[0] == kDecoderChannels);

/** How many undecoded bytes a link of at least `link_quality` may pile up. */
struct BacklogBand {
    int32_t link_quality;     // lowest quality of the band
    uint32_t low_rate_bytes;  // limit for a rate class below kHighRateClass
    uint32_t high_rate_bytes; // limit for the others
};

constexpr int32_t kHighRateClass = 5;
constexpr uint32_t kWholeBufferBytes = 0x200000;
constexpr BacklogBand kBacklogBands[] = {
    {85, kWholeBufferBytes, kWholeBufferBytes},
    {60, 0x28000, 0x20000},
    {1, 0x18000, 0xC000},
};

uint32_t backlog_limit(int32_t link_quality, int32_t rate_class)
{
    for (const BacklogBand &band : kBacklogBands)
        if (link_quality >= band.link_quality)
            return rate_class < kHighRateClass ? band.low_rate_bytes : band.high_rate_bytes;
    return kWholeBufferBytes; // not measured
}

/** Note the picture size in one of the channel's attribute records. */
template <uint32_t channels> void note_picture_size(StreamAttr (&attrs)[channels], const FrameInfo &frame)
{
    if (frame.channel >= channels) return;
    store_word(attrs[frame.channel].width, frame.width);
    store_word(attrs[frame.channel].height, frame.height);
}

/** Reset the decoder when it has fallen further behind than its link allows. */
void check_backlog(uint32_t channel, int32_t link_quality, int32_t rate_class, int32_t recreate_result)
{
    MI_VDEC_ChnStat stat = {};
    // The code printed is the recreation's: it tells why there is no channel to ask.
    if (failed_call(MI_VDEC_GetChnStat(channel, &stat),
                    log_text("Chnn = %d MI_VDEC_GetChnStat failed errno 0x%x  %s %d\n",
                             static_cast<int>(channel), static_cast<unsigned>(recreate_result), kSource,
                             __LINE__)))
        return;
    const uint32_t limit = backlog_limit(link_quality, rate_class);
    if (link_quality == 0 || stat.left_stream_bytes <= limit) return;
    log_text("11111Chnn = %d,u32LeftStreamBytes[%d],LeftStreamBytes[%d],wifi_strengh[%d]\n",
             static_cast<int>(channel), static_cast<int>(stat.left_stream_bytes), static_cast<int>(limit),
             link_quality);
    vdec_resetchn(channel);
}

bool is_shown(uint32_t channel)
{
    const uint8_t mask = load_word(cur_display_chnn);
    if (mask == kAllChannelsShown) return true;
    return channel < kMaskChannels && (mask >> channel & 1) != 0;
}

/** Where a frame goes. */
struct Destination {
    int32_t result;   // what to return at once when there is no decoder
    bool has_decoder; // send it on
    uint32_t decoder; // channel to send it to
};

Destination destination_of(uint32_t channel)
{
    const bool snapped = channel == static_cast<uint32_t>(load_word(cur_snap_chnn));
    if (load_word(playback_status) == 1) {
        // Playback owns the live decoders: only a snapshot's channel is decoded, on the spare one.
        if (!snapped) return {-1, false, 0};
        return {0, true, static_cast<uint32_t>(camera_count())};
    }
    if (is_shown(channel) || snapped) return {0, true, channel};
    return {0, false, 0};
}

int32_t send_video(const FrameInfo &frame, uint32_t codec, int32_t link_quality, int32_t rate_class)
{
    const uint32_t channel = frame.channel;
    if (channel >= kDecoderChannels) return -1;

    MI_VDEC_Stream stream = {};
    stream.address = static_cast<const uint8_t *>(frame.data);
    stream.length_bytes = frame.length;
    stream.pts = frame.pts;

    int32_t recreate_result = 0;
    if (vdec_chan_type[channel] != codec) {
        vdec_chan_type[channel] = codec;
        recreate_result = vdec_recreate(channel, codec);
    }
    note_picture_size(major_stream, frame);
    note_picture_size(minor_stream, frame);
    check_backlog(channel, link_quality, rate_class, recreate_result);

    const Destination destination = destination_of(channel);
    if (!destination.has_decoder) return destination.result;
    if (failed_call(vdec_send_stream(destination.decoder, &stream),
                    log_text("vdec_send_stream fail!%s,%d\n", kSource, __LINE__)))
        return -1;
    return 0;
}

/** Play a block. One without bytes, or shorter than its header, holds no frame. */
int32_t send_audio(const FrameInfo &block)
{
    if (block.data == nullptr || block.length < kAudioHeaderBytes) return 0;
    send_audio_frames(static_cast<const uint8_t *>(block.data),
                      (block.length - kAudioHeaderBytes) / kAudioFrameBytes, kSource);
    return 0;
}

} // namespace

int32_t ext_send_stream(const FrameInfo *frame, uint32_t codec, int32_t link_quality, int32_t rate_class)
{
    if (frame == nullptr) return -1;
    if (load_word(vo_for_ezoom) == 1 && frame->channel != load_word(zoom_channel)) return -1;
    if (frame->length - 1 >= kMostBytes) return -1; // 0 wraps to the largest length

    switch (frame->media) {
    case FRAME_MEDIA_NONE: log_line("FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"); return -1;
    case FRAME_MEDIA_VIDEO: return send_video(*frame, codec, link_quality, rate_class);
    case FRAME_MEDIA_AUDIO: return send_audio(*frame);
    default: return 0; // kinds of the application's own
    }
}
