/* container_file.cpp - see container_file.h. */
#include "record/container_file.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
}

#include "camera/sound.h"

namespace nvrec
{
namespace
{

constexpr AVRational kMicroseconds = {1, 1'000'000};
constexpr AVRational kVideoClock = {1, 90'000};
constexpr AVRational kSoundClock = {1, kSoundRate_hz};

struct Setting {
    const char *name, *value;
};
constexpr Setting kMp4Settings[] = {
    {"movflags", "frag_keyframe+empty_moov+default_base_moof"}, {"frag_duration", "2000000"}, /* us */
};
constexpr Setting kMkvSettings[] = {
    {"cluster_time_limit", "1000"}, /* ms */
};

struct ContainerRow {
    Container container;
    const char *ending;
    const char *format;            /* of libavformat */
    const char *format_with_sound; /* likewise       */
    bool tagged;                   /* codecs have tags, as in the MP4 family */
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

} // namespace

const char *file_ending(Container container)
{
    return row_of(container).ending;
}

bool TrackFacts::operator==(const TrackFacts &other) const
{
    return stream.codec == other.stream.codec && stream.width_px == other.stream.width_px &&
           stream.height_px == other.stream.height_px && stream.sound == other.stream.sound &&
           parameter_sets == other.parameter_sets;
}

ContainerFile::~ContainerFile()
{
    close();
}

bool ContainerFile::fail(int av_code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(av_code, text, sizeof text);
    error_ = text;
    return false;
}

bool ContainerFile::open(const std::string &path, Container container, const TrackFacts &facts,
                         int64_t origin_us)
{
    close();
    path_ = path;
    facts_ = facts;
    origin_us_ = origin_us;
    last_video_dts_ = last_sound_end_ = INT64_MIN;
    bytes_ = 0;

    const ContainerRow &row = row_of(container);
    int code = avformat_alloc_output_context2(
        &format_, nullptr, facts.stream.sound ? row.format_with_sound : row.format, path.c_str());
    if (code < 0) return fail(code);
    if (!add_video() || (facts.stream.sound && !add_sound())) {
        fail(AVERROR(ENOMEM));
        discard();
        return false;
    }
    video_->codecpar->codec_tag = row.tagged ? traits_of(facts.stream.codec).mp4_tag : 0;
    /* Nothing may wait in memory for a more convenient moment. */
    format_->flags |= AVFMT_FLAG_FLUSH_PACKETS;

    AVDictionary *settings = nullptr;
    for (const Setting &setting : row.settings)
        av_dict_set(&settings, setting.name, setting.value, 0);
    code = avio_open(&format_->pb, path.c_str(), AVIO_FLAG_WRITE);
    const bool made = code >= 0;
    if (made) code = avformat_write_header(format_, &settings);
    if (code >= 0) {
        avio_flush(format_->pb); /* some containers keep their header for later */
        code = format_->pb->error;
    }
    av_dict_free(&settings);
    if (code >= 0) return true;
    fail(code);
    discard();
    if (made) std::remove(path.c_str()); /* a full disk would fill with empty files, try after try */
    return false;
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
    const size_t size = facts_.parameter_sets.size();
    parameters->extradata = static_cast<uint8_t *>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!parameters->extradata) return false;
    std::memcpy(parameters->extradata, facts_.parameter_sets.data(), size);
    parameters->extradata_size = static_cast<int>(size);
    video_->time_base = kVideoClock;
    video_->avg_frame_rate = av_d2q(stream.frame_rate, 100'000);
    return true;
}

bool ContainerFile::add_sound()
{
    sound_ = avformat_new_stream(format_, nullptr);
    if (!sound_) return false;
    AVCodecParameters *parameters = sound_->codecpar;
    parameters->codec_type = AVMEDIA_TYPE_AUDIO;
    parameters->codec_id = AV_CODEC_ID_PCM_ALAW;
    parameters->sample_rate = kSoundRate_hz;
    av_channel_layout_default(&parameters->ch_layout, 1);
    parameters->bits_per_coded_sample = 8;
    parameters->bit_rate = 8 * kSoundRate_hz;
    parameters->block_align = 1;
    sound_->time_base = kSoundClock;
    return true;
}

bool ContainerFile::write_video(std::span<const uint8_t> unit, int64_t pts_us, int64_t dts_us, bool key)
{
    const AVRational base = video_->time_base; /* the container may have chosen another */
    /* Decoding times must grow; a camera's may stand still for a moment. */
    const int64_t dts = std::max(av_rescale_q(dts_us - origin_us_, kMicroseconds, base), last_video_dts_ + 1);
    const int64_t pts = std::max(av_rescale_q(pts_us - origin_us_, kMicroseconds, base), dts);
    const double rate = facts_.stream.frame_rate;
    const int64_t duration = rate > 0 ? std::llround(static_cast<double>(base.den) / base.num / rate) : 0;
    last_video_dts_ = dts;
    return write(video_, unit, pts, dts, duration, key);
}

bool ContainerFile::write_sound(std::span<const uint8_t> samples, int64_t pts_us)
{
    if (!sound_) return fail(AVERROR(EINVAL));
    const AVRational base = sound_->time_base;
    const int64_t duration = av_rescale_q(static_cast<int64_t>(samples.size()), kSoundClock, base);
    const int64_t pts = std::max(av_rescale_q(pts_us - origin_us_, kMicroseconds, base), last_sound_end_);
    last_sound_end_ = pts + duration;
    return write(sound_, samples, pts, pts, duration, true);
}

bool ContainerFile::write(AVStream *stream, std::span<const uint8_t> bytes, int64_t pts, int64_t dts,
                          int64_t duration, bool key)
{
    AVPacket *packet = av_packet_alloc();
    if (!packet || av_new_packet(packet, static_cast<int>(bytes.size())) < 0) {
        av_packet_free(&packet);
        return fail(AVERROR(ENOMEM));
    }
    std::memcpy(packet->data, bytes.data(), bytes.size());
    packet->stream_index = stream->index;
    packet->pts = pts;
    packet->dts = dts;
    packet->duration = duration;
    if (key) packet->flags |= AV_PKT_FLAG_KEY;
    /* Not the interleaving call: it holds pictures back while a camera is silent. */
    int code = av_write_frame(format_, packet);
    if (code >= 0 && format_->pb->error < 0) code = format_->pb->error;
    av_packet_free(&packet);
    bytes_ = static_cast<uint64_t>(std::max<int64_t>(avio_tell(format_->pb), 0));
    return code >= 0 || fail(code);
}

bool ContainerFile::close()
{
    if (!format_) return true;
    int code = av_write_trailer(format_);
    bytes_ = std::max(bytes_, static_cast<uint64_t>(std::max<int64_t>(avio_tell(format_->pb), 0)));
    const int closing = avio_closep(&format_->pb);
    if (code >= 0) code = closing;
    discard();
    return code >= 0 || fail(code);
}

/* Let go of a file as it is. */
void ContainerFile::discard()
{
    if (format_ && format_->pb) avio_closep(&format_->pb);
    avformat_free_context(format_);
    format_ = nullptr;
    video_ = sound_ = nullptr;
}

} // namespace nvrec
