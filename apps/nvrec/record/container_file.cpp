/* container_file.cpp - see container_file.h. */
#include "record/container_file.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include "archive/time_of_day.h"
#include "record/container_output.h"

namespace nvrec
{
namespace
{

constexpr AVRational kMicroseconds = {1, 1'000'000};
constexpr AVRational kVideoClock = {1, 90'000};
constexpr int kAacFrame_samples = 1024;

struct Setting {
    const char *name, *value;
};
/*
 * frag_discont: the first fragment of a track tells when the track begins, so that sound may begin later than
 * the pictures. The muxer takes the beginning from the first picture's presentation time, which write_held()
 * corrects.
 */
constexpr Setting kMp4Settings[] = {
    {"movflags", "frag_keyframe+empty_moov+default_base_moof+frag_discont"},
    {"use_editlist", "1"},        /* none is written; without it sound would begin at 0 */
    {"frag_duration", "1000000"}, /* us */
};
constexpr Setting kMkvSettings[] = {
    {"cluster_time_limit", "1000"}, /* ms */
};

struct ContainerRow {
    Container container;
    const char *ending;
    const char *format;           /* of libavformat */
    const char *format_with_g711; /* likewise       */
    bool tagged;                  /* codecs have tags, as in the MP4 family */
    std::span<const Setting> settings;
};
constexpr ContainerRow kContainers[] = {
    {Container::kMp4, ".mp4", "mp4", "mov", true, kMp4Settings},
    {Container::kMkv, ".mkv", "matroska", "matroska", false, kMkvSettings},
};

const ContainerRow &row_of(Container container)
{
    return kContainers[static_cast<size_t>(container)];
}

bool is_g711(const SoundFormat &format)
{
    return format.av_id == AV_CODEC_ID_PCM_ALAW || format.av_id == AV_CODEC_ID_PCM_MULAW;
}

bool set_extradata(AVCodecParameters *parameters, const std::vector<uint8_t> &bytes)
{
    parameters->extradata = static_cast<uint8_t *>(av_mallocz(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!parameters->extradata) return false;
    if (!bytes.empty()) std::memcpy(parameters->extradata, bytes.data(), bytes.size());
    parameters->extradata_size = static_cast<int>(bytes.size());
    return true;
}

} // namespace

const char *file_ending(Container container)
{
    return row_of(container).ending;
}

uint64_t FileChunk::bytes() const
{
    uint64_t sum = 0;
    for (const Extent &extent : extents)
        sum += extent.bytes.size();
    return sum;
}

bool TrackFacts::operator==(const TrackFacts &other) const
{
    const bool same_sound = sound == other.sound || (sound && other.sound && *sound == *other.sound);
    return stream.codec == other.stream.codec && stream.width_px == other.stream.width_px &&
           stream.height_px == other.stream.height_px && same_sound && parameter_sets == other.parameter_sets;
}

ContainerFile::ContainerFile() = default;

ContainerFile::~ContainerFile()
{
    discard();
}

bool ContainerFile::fail(int av_code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(av_code, text, sizeof text);
    error_ = text;
    return false;
}

bool ContainerFile::open(Container container, const TrackFacts &facts, int64_t origin_us,
                         const FileLabel &label)
{
    discard();
    container_ = container;
    facts_ = facts;
    origin_us_ = origin_us;
    last_video_dts_ = last_sound_end_ = INT64_MIN;
    last_duration_ = 0;
    last_was_sound_ = false;
    muxed_pictures_ = muxed_sounds_ = 0;
    muxed_until_us_ = origin_us;
    ready_ = {};

    const ContainerRow &row = row_of(container);
    const bool g711 = facts.sound && is_g711(*facts.sound);
    output_ = std::make_unique<Output>();
    int code =
        avformat_alloc_output_context2(&format_, nullptr, g711 ? row.format_with_g711 : row.format, nullptr);
    if (code < 0) return fail(code);
    format_->pb = output_->context();
    if (!format_->pb || !add_video() || (facts.sound && !add_sound())) {
        fail(AVERROR(ENOMEM));
        discard();
        return false;
    }
    video_->codecpar->codec_tag = row.tagged ? traits_of(facts.stream.codec).mp4_tag : 0;
    set_label(label);
    /* Write everything at once; nothing may stay in the muxer's memory. */
    format_->flags |= AVFMT_FLAG_FLUSH_PACKETS | AVFMT_FLAG_CUSTOM_IO;
    format_->avoid_negative_ts = AVFMT_AVOID_NEG_TS_DISABLED; /* times are as they are given */

    AVDictionary *settings = nullptr;
    for (const Setting &setting : row.settings)
        av_dict_set(&settings, setting.name, setting.value, 0);
    code = avformat_write_header(format_, &settings);
    av_dict_free(&settings);
    if (code < 0) {
        fail(code);
        discard();
        return false;
    }
    avio_flush(format_->pb);
    note_output(false);
    return true;
}

/* MP4's own time of creation is in whole seconds; the date is a text. */
void ContainerFile::set_label(const FileLabel &label)
{
    if (!label.camera.empty()) av_dict_set(&format_->metadata, "title", label.camera.c_str(), 0);
    if (label.from_us == 0) return;
    const std::string from = iso_time(label.from_us);
    for (const char *key : {"creation_time", "date"})
        av_dict_set(&format_->metadata, key, from.c_str(), 0);
}

bool ContainerFile::add_video()
{
    video_ = avformat_new_stream(format_, nullptr);
    if (!video_) return false;
    const StreamFacts &stream = facts_.stream;
    AVCodecParameters *parameters = video_->codecpar;
    parameters->codec_type = AVMEDIA_TYPE_VIDEO;
    parameters->codec_id = static_cast<AVCodecID>(traits_of(stream.codec).av_id);
    parameters->width = static_cast<int>(stream.width_px);
    parameters->height = static_cast<int>(stream.height_px);
    video_->time_base = kVideoClock;
    video_->avg_frame_rate = av_d2q(stream.frame_rate, 100'000);
    return set_extradata(parameters, facts_.parameter_sets);
}

bool ContainerFile::add_sound()
{
    sound_ = avformat_new_stream(format_, nullptr);
    if (!sound_) return false;
    const SoundFormat &sound = *facts_.sound;
    AVCodecParameters *parameters = sound_->codecpar;
    parameters->codec_type = AVMEDIA_TYPE_AUDIO;
    parameters->codec_id = static_cast<AVCodecID>(sound.av_id);
    parameters->sample_rate = sound.rate_hz;
    av_channel_layout_default(&parameters->ch_layout, sound.channels);
    if (is_g711(sound)) {
        parameters->bits_per_coded_sample = 8;
        parameters->bit_rate = 8 * sound.rate_hz * sound.channels;
        parameters->block_align = sound.channels;
    }
    if (sound.av_id == AV_CODEC_ID_AAC) parameters->frame_size = kAacFrame_samples;
    sound_->time_base = {1, sound.rate_hz};
    return set_extradata(parameters, sound.extradata);
}

bool ContainerFile::write_video(std::span<const uint8_t> unit, int64_t pts_us, int64_t dts_us, bool key)
{
    const AVRational base = video_->time_base; /* the container may have chosen another */
    /* Decoding times must grow; a camera's may stand still for a moment. */
    const int64_t dts = std::max(av_rescale_q(dts_us - origin_us_, kMicroseconds, base), last_video_dts_ + 1);
    const int64_t pts = std::max(av_rescale_q(pts_us - origin_us_, kMicroseconds, base), dts);
    if (held_ && !write_held(dts - held_->dts)) return false;
    last_video_dts_ = dts;
    held_ = HeldPicture{{unit.begin(), unit.end()}, pts, dts, dts_us, key};
    return true;
}

bool ContainerFile::write_held(int64_t duration)
{
    const HeldPicture picture = std::move(*held_);
    held_.reset();
    const bool first = last_duration_ == 0;
    last_duration_ = duration;
    /* MP4's muxer moves the track by the time between decoding and showing its first picture. */
    if (first) muxer_shift_ = container_ == Container::kMp4 ? picture.pts - picture.dts : 0;
    if (!write(video_, picture.bytes, picture.pts - muxer_shift_, picture.dts - muxer_shift_, duration,
               picture.key))
        return false;
    ++muxed_pictures_;
    muxed_until_us_ = picture.dts_us + av_rescale_q(duration, video_->time_base, kMicroseconds);
    return true;
}

bool ContainerFile::write_sound(std::span<const uint8_t> bytes, int64_t pts_us, int64_t duration_us)
{
    if (!sound_) return fail(AVERROR(EINVAL));
    const AVRational base = sound_->time_base;
    int64_t duration = av_rescale_q(duration_us, kMicroseconds, base);
    if (is_g711(*facts_.sound)) {
        const auto samples = static_cast<int64_t>(bytes.size()) / facts_.sound->channels;
        duration = av_rescale_q(samples, AVRational{1, facts_.sound->rate_hz}, base);
    }
    const int64_t pts = std::max(av_rescale_q(pts_us - origin_us_, kMicroseconds, base), last_sound_end_);
    last_sound_end_ = pts + std::max<int64_t>(duration, 1);
    if (!write(sound_, bytes, pts, pts, duration, true)) return false;
    ++muxed_sounds_;
    return true;
}

bool ContainerFile::write(AVStream *stream, std::span<const uint8_t> bytes, int64_t pts, int64_t dts,
                          int64_t duration, bool key)
{
    AVPacket *packet = av_packet_alloc();
    if (!packet || av_new_packet(packet, static_cast<int>(bytes.size())) < 0) {
        av_packet_free(&packet);
        return fail(AVERROR(ENOMEM));
    }
    if (!bytes.empty()) std::memcpy(packet->data, bytes.data(), bytes.size());
    packet->stream_index = stream->index;
    packet->pts = pts;
    packet->dts = dts;
    packet->duration = duration;
    if (key) packet->flags |= AV_PKT_FLAG_KEY;
    /* Not the interleaving call: it holds pictures back while a camera is silent. */
    const int code = av_write_frame(format_, packet);
    av_packet_free(&packet);
    avio_flush(format_->pb);
    /* The bytes that came out are of packets before this one. MKV's muxer holds one packet of sound back. */
    note_output(container_ == Container::kMkv && last_was_sound_);
    last_was_sound_ = stream == sound_;
    return code >= 0 || fail(code);
}

/* Once libavformat has written something, all that it was given before is in it. */
void ContainerFile::note_output(bool sound_cached)
{
    if (!output_->has_bytes()) return;
    for (FileChunk::Extent &extent : output_->take())
        ready_.extents.push_back(std::move(extent));
    const uint64_t kept = sound_cached && muxed_sounds_ > 0 ? 1 : 0;
    ready_.pictures += std::exchange(muxed_pictures_, 0);
    ready_.sounds += std::exchange(muxed_sounds_, kept) - kept;
    ready_.until_us = muxed_until_us_;
}

FileChunk ContainerFile::take_output()
{
    return std::exchange(ready_, {});
}

bool ContainerFile::close()
{
    if (!format_) return true;
    if (held_) {
        const double rate = facts_.stream.frame_rate;
        const AVRational base = video_->time_base;
        const int64_t nominal = rate > 0 ? std::llround(static_cast<double>(base.den) / base.num / rate) : 1;
        const int64_t second = base.den / base.num;
        write_held(last_duration_ > 0 ? std::min(last_duration_, second) : nominal); /* a pause is none */
    }
    const int code = av_write_trailer(format_);
    avio_flush(format_->pb);
    note_output(false);
    discard();
    return code >= 0 || fail(code);
}

void ContainerFile::discard()
{
    avformat_free_context(format_);
    format_ = nullptr;
    output_.reset();
    video_ = sound_ = nullptr;
    held_.reset();
}

} // namespace nvrec
