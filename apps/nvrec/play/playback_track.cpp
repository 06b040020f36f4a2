/* playback_track.cpp - see playback_track.h. */
#include "play/playback_track.h"

#include <array>
#include <cstring>

#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr auto kOpenLimit = std::chrono::seconds(10);
constexpr auto kDecoderPatience = std::chrono::seconds(2);
constexpr uint32_t kDoubleRate = 2; /* FrameInfo::display_rate */

FrameInfo empty_buffer(int decoder)
{
    FrameInfo buffer = {};
    ext_playback_get_buf(&buffer);
    buffer.channel = static_cast<uint32_t>(decoder);
    return buffer;
}

/* Appends to a lent buffer of `room` bytes, whose length counts what lies in it. */
void append(FrameInfo *buffer, const uint8_t *bytes, size_t count)
{
    std::memcpy(static_cast<uint8_t *>(buffer->data) + buffer->length, bytes, count);
    buffer->length += static_cast<uint32_t>(count);
}

} // namespace

bool PlaybackTrack::stop(const std::string &why)
{
    trouble_ = why;
    at_end_ = true;
    return false;
}

bool PlaybackTrack::hold(Input::Read result)
{
    if (result == Input::Read::kFailed) return stop(input_.error());
    at_end_ = result != Input::Read::kUnit;
    return !at_end_;
}

bool PlaybackTrack::open()
{
    if (input_.live()) return stop("it is a camera and no recording");
    input_.want_sound();
    if (!input_.open(kOpenLimit)) return stop(input_.error());
    if (!hold(input_.read_key(&next_))) return stop(at_end_ ? "it holds no key frame" : input_.error());
    opened_ = true;
    return true;
}

bool PlaybackTrack::seek(int64_t position_us)
{
    drop_sound(INT64_MAX);
    at_end_ = !input_.seek(position_us, &next_);
    return at_end_ ? stop(input_.error()) : true;
}

void PlaybackTrack::deliver(bool double_rate)
{
    FrameInfo buffer = empty_buffer(decoder_);
    const size_t room = buffer.length;
    /* A decoder that takes the byte stream hands a picture out when the next one begins, which it does
     * not in a paused recording. */
    const std::span<const uint8_t> delimiter = traits_of(input_.facts().codec).delimiter;
    bool accepted = false;
    if (next_.bytes.size() + delimiter.size() <= room) {
        buffer.length = 0;
        append(&buffer, next_.bytes.data(), next_.bytes.size());
        append(&buffer, delimiter.data(), delimiter.size());
        buffer.frame_type = next_.key ? 1 : 0;
        buffer.media = FRAME_MEDIA_VIDEO;
        buffer.width = input_.facts().width_px;
        buffer.height = input_.facts().height_px;
        buffer.display_rate = double_rate ? kDoubleRate : 1;
        buffer.pts = static_cast<uint64_t>(next_.pts_us);
        accepted = ext_playback_set_buf(&buffer) == 0;
    }
    fed_.sent += accepted;
    fed_.refused += !accepted;
    fed_.bytes += accepted ? next_.bytes.size() : 0;
    hold(input_.read(&next_));
}

void PlaybackTrack::skip_to_key()
{
    if (!at_end_ && !next_.key) hold(input_.read_key(&next_));
}

void PlaybackTrack::flush() const
{
    vdec_resetchn(static_cast<uint32_t>(decoder_)); /* first: no picture may follow the clearing */
    FrameInfo nothing = {};
    nothing.channel = static_cast<uint32_t>(decoder_);
    ext_playback_set_buf(&nothing);
}

void PlaybackTrack::deliver_sound(int64_t until_us)
{
    for (const SoundBlock &block : input_.take_sound(until_us)) {
        constexpr std::array<uint8_t, NVRHAL_SOUND_HEADER_BYTES> kHeader = {};
        FrameInfo buffer = empty_buffer(decoder_);
        buffer.length = 0;
        append(&buffer, kHeader.data(), kHeader.size());
        append(&buffer, block.samples.data(), block.samples.size());
        buffer.media = FRAME_MEDIA_AUDIO;
        buffer.pts = static_cast<uint64_t>(block.pts_us);
        ext_playback_set_buf(&buffer);
    }
}

void PlaybackTrack::begin_count()
{
    counted_from_ = host::decoder_counters(decoder_);
}

host::DecoderCounters PlaybackTrack::end_count()
{
    const auto now = host::decoder_counters(decoder_);
    if (!now || !counted_from_) return {};
    const host::DecoderCounters counted = *now - *counted_from_;
    counted_ += counted;
    return counted;
}

void PlaybackTrack::wait_for_decoder() const
{
    host::wait_for_decoder(decoder_, kDecoderPatience);
}

ChannelReport PlaybackTrack::report(int number) const
{
    ChannelReport report;
    report.channel = number;
    report.address = input_.address();
    report.opened = opened_;
    report.facts = input_.facts();
    report.fed = fed_;
    report.counted = host::decoder_counters(decoder_).has_value();
    report.decoder = counted_;
    report.trouble = trouble_;
    return report;
}

} // namespace nvrec
