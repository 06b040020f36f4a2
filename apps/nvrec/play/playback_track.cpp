/* playback_track.cpp - see playback_track.h. */
#include "play/playback_track.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "camera/address.h"
#include "camera/decoder_codec.h"
#include "nvrhal.h"

namespace nvrec
{
namespace
{

constexpr auto kOpenLimit = std::chrono::seconds(10);
constexpr auto kDecoderPatience = std::chrono::seconds(2);
constexpr uint32_t kDoubleRate = 2; /* FrameInfo::display_rate */
/* Pictures further apart have a gap between them, unless the camera sends so few. */
constexpr int64_t kLeastGap_us = 2'000'000;

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

int64_t PlaybackTrack::frame_us() const
{
    const double rate = facts().frame_rate;
    return rate > 0 ? static_cast<int64_t>(1e6 / rate) : 0;
}

/* The last file that begins by then, or the first one. */
size_t PlaybackTrack::file_at(int64_t position_us) const
{
    size_t number = plan_.files.size() - 1;
    while (number > 0 && plan_.files[number].from_us > position_us)
        --number;
    return number;
}

/* Open a file of the track, without holding a picture of it yet. */
bool PlaybackTrack::open_file(size_t number)
{
    const TrackFile &file = plan_.files[number];
    auto input = std::make_unique<Input>(file.address);
    if (input->live()) return stop(shown_address(file.address) + ": it is a camera and no recording");
    input->want_sound();
    if (!input->open(kOpenLimit)) return stop(file.address + ": " + input->error());
    input_ = std::move(input);
    file_ = number;
    return true;
}

/* Hold the first key frame of the first file from a number on that can be played. */
bool PlaybackTrack::hold_from(size_t number)
{
    for (; number < plan_.files.size(); ++number) {
        if (open_file(number) && take(input_->read_key(&next_))) return true;
    }
    at_end_ = true;
    return false;
}

/* Hold the picture that was read from the file at hand; false: the file has no more. */
bool PlaybackTrack::take(Input::Read result)
{
    if (result == Input::Read::kFailed) return stop(input_->error());
    at_end_ = result != Input::Read::kUnit;
    if (at_end_) return false;
    times_to_places();
    return true;
}

/* The held picture still has times of its file: turn them into places of the track. */
void PlaybackTrack::times_to_places()
{
    next_.due_us += plan_.files[file_].from_us;
    next_.pts_us += plan_.files[file_].from_us;
}

bool PlaybackTrack::open(int64_t position_us)
{
    std::string first_trouble;
    auto try_file = [&](size_t number) {
        opened_ = open_file(number) && take(input_->read_key(&next_));
        if (!opened_ && trouble_.empty()) stop(plan_.files[number].address + ": it holds no key frame");
        if (!opened_ && first_trouble.empty()) first_trouble = trouble_;
    };
    const size_t begin = file_at(position_us);
    for (size_t number = begin; number < plan_.files.size() && !opened_; ++number)
        try_file(number);
    for (size_t number = begin; number > 0 && !opened_; --number)
        try_file(number - 1);
    if (!opened_) trouble_ = first_trouble;
    return opened_;
}

void PlaybackTrack::turn_to(int64_t position_us)
{
    const size_t number = file_at(position_us);
    if (!input_ || number != file_) hold_from(number);
}

bool PlaybackTrack::seek(int64_t position_us)
{
    drop_sound(INT64_MAX);
    delivered_us_ = INT64_MIN;
    dark_ = false;
    const size_t number = file_at(position_us);
    if ((!input_ || number != file_) && !hold_from(number)) return false;
    if (file_ != number) return true; /* what is there of it begins later */
    if (!input_->seek(position_us - plan_.files[file_].from_us, &next_)) {
        stop(input_->error());
        return hold_from(number + 1);
    }
    at_end_ = false;
    times_to_places();
    return true;
}

bool PlaybackTrack::ends_before(int64_t position_us)
{
    if (!seek(position_us)) return true;
    int64_t last_us = next_.due_us;
    while (!at_end_ && next_.due_us < position_us) {
        last_us = next_.due_us;
        hold(input_->read(&next_));
    }
    return at_end_ && position_us > last_us + frame_us();
}

int64_t PlaybackTrack::dark_from_us() const
{
    if (dark_ || delivered_us_ == INT64_MIN) return INT64_MAX;
    const int64_t gap_us = std::max(kLeastGap_us, 3 * frame_us());
    if (at_end_) return plan_.dated ? delivered_us_ + gap_us / 2 : INT64_MAX;
    return next_.due_us - delivered_us_ > gap_us ? delivered_us_ + gap_us / 2 : INT64_MAX;
}

/* A decoder that takes a byte stream gives a picture out when the next one begins. In a paused recording
 * none does, so a delimiter takes the place of that beginning. */
bool PlaybackTrack::hand_over(const AccessUnit &unit, bool double_rate) const
{
    FrameInfo buffer = empty_buffer(decoder_);
    const size_t room = buffer.length;
    const std::span<const uint8_t> delimiter = traits_of(made_for_.value_or(facts().codec)).delimiter;
    if (unit.bytes.size() + delimiter.size() > room) return false;
    buffer.length = 0;
    append(&buffer, unit.bytes.data(), unit.bytes.size());
    append(&buffer, delimiter.data(), delimiter.size());
    buffer.frame_type = unit.key ? 1 : 0;
    buffer.media = FRAME_MEDIA_VIDEO;
    buffer.width = input_->facts().width_px;
    buffer.height = input_->facts().height_px;
    buffer.display_rate = double_rate ? kDoubleRate : 1;
    buffer.pts = static_cast<uint64_t>(std::max<int64_t>(0, unit.pts_us));
    return ext_playback_set_buf(&buffer) == 0;
}

void PlaybackTrack::deliver(bool double_rate)
{
    const bool accepted = hand_over(next_, double_rate);
    fed_.sent += accepted;
    fed_.refused += !accepted;
    fed_.bytes += accepted ? next_.bytes.size() : 0;
    delivered_us_ = next_.due_us;
    dark_ = false;
    if (next_.key && input_->held_back() > 0) last_key_ = next_;
    hold(input_->read(&next_));
}

void PlaybackTrack::push_out(bool double_rate)
{
    if (delivered_us_ == INT64_MIN) return;
    const int64_t place_us = delivered_us_;
    for (int left = input_->held_back(); left > 0; --left) {
        wait_for_decoder(); /* its buffer is small */
        if (!at_end_ && decoder_fits() && next_.due_us - place_us < kLeastGap_us) {
            deliver(double_rate);
        } else if (!last_key_.bytes.empty()) {
            hand_over(last_key_, double_rate); /* it stays in the decoder and is never shown */
        }
    }
    delivered_us_ = place_us;
}

void PlaybackTrack::skip_to_key()
{
    if (!at_end_ && !next_.key) hold(input_->read_key(&next_));
}

void PlaybackTrack::make_decoder_fit()
{
    const Codec codec = facts().codec;
    match_decoder(decoder_, codec);
    if (made_for_ != codec) last_key_ = {}; /* of the codec before */
    made_for_ = codec;
}

void PlaybackTrack::flush() const
{
    vdec_resetchn(static_cast<uint32_t>(decoder_)); /* first: no picture may follow the clearing */
    FrameInfo nothing = {};
    nothing.channel = static_cast<uint32_t>(decoder_);
    ext_playback_set_buf(&nothing);
}

std::vector<SoundBlock> PlaybackTrack::take_sound(int64_t until_us)
{
    if (!input_) return {};
    const int64_t from_us = plan_.files[file_].from_us;
    return input_->take_sound(until_us == INT64_MAX ? until_us : until_us - from_us);
}

void PlaybackTrack::drop_sound(int64_t until_us)
{
    take_sound(until_us);
}

void PlaybackTrack::deliver_sound(int64_t until_us)
{
    for (const SoundBlock &block : take_sound(until_us)) {
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
    report.address = plan_.files.empty() ? std::string() : shown_address(plan_.files.front().address);
    if (plan_.files.size() > 1) report.address += " and " + std::to_string(plan_.files.size() - 1) + " more";
    report.opened = opened_;
    report.facts = facts();
    report.fed = fed_;
    report.counted = host::decoder_counters(decoder_).has_value();
    report.decoder = counted_;
    report.trouble = trouble_;
    return report;
}

} // namespace nvrec
