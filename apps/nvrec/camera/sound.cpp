/* sound.cpp - see sound.h. */
#include "camera/sound.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
}

namespace nvrec
{
namespace
{

constexpr int64_t kSample_us = 1'000'000 / kSoundRate_hz;

/*
 * A packet's time stamp is followed only when it is this far from where counting samples leads:
 * stamps of small containers are rounded, and a block moved by a millisecond would be a click.
 */
constexpr int64_t kJump_us = 150'000;

} // namespace

/*
 * Sign, three bits of segment, four of mantissa, and every second bit inverted. The magnitude has
 * 12 bits after the lowest three of the 16-bit sample are dropped; negative ones count from -1.
 */
uint8_t alaw_of(int16_t sample)
{
    const bool positive = sample >= 0;
    const auto magnitude = static_cast<unsigned>(positive ? sample : -sample - 1) >> 3; /* 0 to 4095 */
    const unsigned segment = magnitude < 32 ? 0 : static_cast<unsigned>(std::bit_width(magnitude)) - 5;
    const unsigned mantissa = magnitude >> (segment < 2 ? 1 : segment) & 0x0f;
    return static_cast<uint8_t>((segment << 4 | mantissa | (positive ? 0x80u : 0u)) ^ 0x55u);
}

/* Everything that libavcodec and libswresample hold. */
struct SoundTrack::Decoder {
    AVCodecContext *codec = nullptr;
    SwrContext *resampler = nullptr;
    AVFrame *frame = av_frame_alloc();
    AVRational time_base = {1, 1};

    /* What the resampler was made for. */
    int rate_hz = 0;
    int format = AV_SAMPLE_FMT_NONE;
    int channels = 0;

    Decoder() = default;
    Decoder(const Decoder &) = delete;
    Decoder &operator=(const Decoder &) = delete;
    ~Decoder()
    {
        av_frame_free(&frame);
        swr_free(&resampler);
        avcodec_free_context(&codec);
    }

    bool open(const AVStream &stream)
    {
        const AVCodec *kind = avcodec_find_decoder(stream.codecpar->codec_id);
        codec = kind ? avcodec_alloc_context3(kind) : nullptr;
        time_base = stream.time_base;
        return codec && frame && avcodec_parameters_to_context(codec, stream.codecpar) >= 0 &&
               avcodec_open2(codec, kind, nullptr) >= 0;
    }

    /* Cameras change their mind about rate and channels; the resampler follows. */
    bool fit_resampler()
    {
        if (resampler && frame->sample_rate == rate_hz && frame->format == format &&
            frame->ch_layout.nb_channels == channels)
            return true;
        AVChannelLayout mono = AV_CHANNEL_LAYOUT_MONO;
        swr_free(&resampler);
        rate_hz = frame->sample_rate;
        format = frame->format;
        channels = frame->ch_layout.nb_channels;
        return swr_alloc_set_opts2(&resampler, &mono, AV_SAMPLE_FMT_S16, kSoundRate_hz, &frame->ch_layout,
                                   static_cast<AVSampleFormat>(format), rate_hz, 0, nullptr) >= 0 &&
               swr_init(resampler) >= 0;
    }
};

SoundTrack::SoundTrack(std::unique_ptr<Decoder> decoder, int stream_index)
    : decoder_(std::move(decoder)), stream_index_(stream_index)
{
}

SoundTrack::~SoundTrack() = default;

std::unique_ptr<SoundTrack> SoundTrack::find(AVFormatContext *format, int video_stream)
{
    const int index = av_find_best_stream(format, AVMEDIA_TYPE_AUDIO, -1, video_stream, nullptr, 0);
    if (index < 0) return nullptr;
    auto decoder = std::make_unique<Decoder>();
    if (!decoder->open(*format->streams[index])) return nullptr;
    return std::unique_ptr<SoundTrack>(new SoundTrack(std::move(decoder), index));
}

void SoundTrack::decode(const AVPacket &packet)
{
    if (avcodec_send_packet(decoder_->codec, &packet) < 0) return;
    while (avcodec_receive_frame(decoder_->codec, decoder_->frame) >= 0) {
        convert();
        av_frame_unref(decoder_->frame);
    }
}

/* Resample the frame at hand to 8 kHz mono, and append it. */
void SoundTrack::convert()
{
    AVFrame *frame = decoder_->frame;
    if (!decoder_->fit_resampler()) {
        swr_free(&decoder_->resampler);
        return;
    }
    if (frame->pts != AV_NOPTS_VALUE) {
        const int64_t held_us = swr_get_delay(decoder_->resampler, 1'000'000);
        place(av_rescale_q(frame->pts, decoder_->time_base, AVRational{1, 1'000'000}) - held_us);
    }
    const int room = swr_get_out_samples(decoder_->resampler, frame->nb_samples);
    if (room < 0) return;
    const size_t before = samples_.size();
    samples_.resize(before + static_cast<size_t>(room));
    auto *out = reinterpret_cast<uint8_t *>(samples_.data() + before);
    const int count = swr_convert(decoder_->resampler, &out, room,
                                  const_cast<const uint8_t **>(frame->extended_data), frame->nb_samples);
    samples_.resize(before + static_cast<size_t>(std::max(count, 0)));
    cut_blocks();
}

/* The next sample is of this time. */
void SoundTrack::place(int64_t pts_us)
{
    const int64_t held_us = static_cast<int64_t>(samples_.size()) * kSample_us;
    const int64_t expected_us = samples_at_us_ + held_us;
    if (placed_ && std::llabs(pts_us - expected_us) < kJump_us) return;
    samples_at_us_ = pts_us - held_us;
    placed_ = true;
}

void SoundTrack::cut_blocks()
{
    size_t at = 0;
    for (; samples_.size() - at >= kSoundBlock_bytes; at += kSoundBlock_bytes) {
        SoundBlock block;
        block.pts_us = samples_at_us_;
        std::transform(samples_.begin() + static_cast<ptrdiff_t>(at),
                       samples_.begin() + static_cast<ptrdiff_t>(at + kSoundBlock_bytes),
                       block.samples.begin(), alaw_of);
        blocks_.push_back(block);
        samples_at_us_ += kSoundBlock_us;
    }
    samples_.erase(samples_.begin(), samples_.begin() + static_cast<ptrdiff_t>(at));
}

void SoundTrack::forget()
{
    avcodec_flush_buffers(decoder_->codec);
    swr_free(&decoder_->resampler);
    samples_.clear();
    blocks_.clear();
    placed_ = false;
}

int64_t SoundTrack::read_until_us() const
{
    if (!placed_) return INT64_MIN;
    return samples_at_us_ + static_cast<int64_t>(samples_.size()) * kSample_us;
}

std::vector<SoundBlock> SoundTrack::take()
{
    return std::exchange(blocks_, {});
}

} // namespace nvrec
