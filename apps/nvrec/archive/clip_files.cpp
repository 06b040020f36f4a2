/* clip_files.cpp - see clip_files.h. */
#include "archive/clip_files.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace nvrec
{
namespace
{

constexpr AVRational kClipMicroseconds = {1, 1'000'000};
constexpr int64_t kSilence_ms = 40; /* a packet of it; shorter pauses are rounding */

/*
 * The byte that stands for silence in sound whose samples have no times of their own; -1 = the sound has
 * times, so that a file can leave a gap.
 */
int silence_of(const AVCodecParameters &sound)
{
    switch (sound.codec_id) {
    case AV_CODEC_ID_PCM_ALAW: return 0xD5;
    case AV_CODEC_ID_PCM_MULAW: return 0xFF;
    default: return -1;
    }
}

bool same_bytes(const AVCodecParameters &a, const AVCodecParameters &b)
{
    return a.extradata_size == b.extradata_size &&
           (a.extradata_size == 0 ||
            std::memcmp(a.extradata, b.extradata, static_cast<size_t>(a.extradata_size)) == 0);
}

std::string av_text(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(code, text, sizeof text);
    return text;
}

} // namespace

ClipSource::~ClipSource()
{
    av_packet_free(&packet_);
    avformat_close_input(&format_);
}

bool ClipSource::fail(int av_code)
{
    error_ = av_text(av_code);
    return false;
}

const AVCodecParameters *ClipSource::video() const
{
    return format_->streams[video_]->codecpar;
}

const AVCodecParameters *ClipSource::sound() const
{
    return sound_ < 0 ? nullptr : format_->streams[sound_]->codecpar;
}

bool ClipSource::open(const std::string &path, int64_t from_us, int64_t at_us)
{
    packet_ = av_packet_alloc();
    int code = avformat_open_input(&format_, path.c_str(), nullptr, nullptr);
    if (code >= 0) code = avformat_find_stream_info(format_, nullptr);
    if (code < 0 || !packet_) return fail(code);
    video_ = av_find_best_stream(format_, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (video_ < 0) return fail(AVERROR_STREAM_NOT_FOUND);
    sound_ = av_find_best_stream(format_, AVMEDIA_TYPE_AUDIO, -1, video_, nullptr, 0);
    if (sound_ < 0) sound_ = -1;
    const AVStream *stream = format_->streams[video_];
    start_us_ = stream->start_time == AV_NOPTS_VALUE
                    ? 0
                    : av_rescale_q(stream->start_time, stream->time_base, kClipMicroseconds);
    from_us_ = from_us;
    if (at_us <= from_us) return true;
    const int64_t place = av_rescale_q(start_us_ + at_us - from_us, kClipMicroseconds, stream->time_base);
    code = av_seek_frame(format_, video_, place, AVSEEK_FLAG_BACKWARD);
    return code >= 0 || fail(code);
}

bool ClipSource::read(ClipPacket *packet)
{
    for (;;) {
        av_packet_unref(packet_);
        const int code = av_read_frame(format_, packet_);
        if (code == AVERROR_EOF) return false;
        if (code < 0) return fail(code);
        if (packet_->stream_index != video_ && packet_->stream_index != sound_) continue;
        if (packet_->size == 0) continue;
        const AVRational base = format_->streams[packet_->stream_index]->time_base;
        const int64_t dts = packet_->dts != AV_NOPTS_VALUE ? packet_->dts : packet_->pts;
        const int64_t pts = packet_->pts != AV_NOPTS_VALUE ? packet_->pts : dts;
        if (pts == AV_NOPTS_VALUE) continue;
        auto wall = [&](int64_t time) {
            return from_us_ + av_rescale_q(time, base, kClipMicroseconds) - start_us_;
        };
        *packet = {packet_,
                   packet_->stream_index == sound_,
                   (packet_->flags & AV_PKT_FLAG_KEY) != 0,
                   wall(pts),
                   wall(dts),
                   av_rescale_q(std::max<int64_t>(0, packet_->duration), base, kClipMicroseconds)};
        return true;
    }
}

ClipOutput::~ClipOutput()
{
    if (!format_) return;
    const bool made = format_->pb != nullptr;
    avio_closep(&format_->pb);
    avformat_free_context(format_);
    if (made) std::remove(path_.c_str()); /* it was not closed: half a file helps nobody */
}

bool ClipOutput::fail(int av_code)
{
    error_ = av_text(av_code);
    return false;
}

bool ClipOutput::add(const AVCodecParameters *parameters, int *index)
{
    AVStream *stream = avformat_new_stream(format_, nullptr);
    if (!stream || avcodec_parameters_copy(stream->codecpar, parameters) < 0) return fail(AVERROR(ENOMEM));
    stream->codecpar->codec_tag =
        std::strcmp(format_->oformat->name, "matroska") != 0 && parameters->codec_id == AV_CODEC_ID_HEVC
            ? MKTAG('h', 'v', 'c', '1') /* parameter sets in the head: more players take it */
            : 0;
    stream->time_base = parameters->codec_type == AVMEDIA_TYPE_AUDIO ? AVRational{1, parameters->sample_rate}
                                                                     : AVRational{1, 90'000};
    *index = stream->index;
    return true;
}

bool ClipOutput::open(const std::string &path, const ClipSource &source, int64_t origin_us)
{
    path_ = path;
    origin_us_ = origin_us;
    const bool mkv = path.ends_with(".mkv");
    /* G.711 has a place in the QuickTime kind of the format, and none in MP4 proper. */
    const AVOutputFormat *mp4 = av_guess_format("mp4", nullptr, nullptr);
    const bool proper =
        !source.sound() || !mp4 || av_codec_get_tag(mp4->codec_tag, source.sound()->codec_id) != 0;
    int code = avformat_alloc_output_context2(&format_, nullptr,
                                              mkv      ? "matroska"
                                              : proper ? "mp4"
                                                       : "mov",
                                              path.c_str());
    if (code < 0) return fail(code);
    if (!add(source.video(), &video_) || (source.sound() && !add(source.sound(), &sound_))) return false;
    format_->avoid_negative_ts = AVFMT_AVOID_NEG_TS_DISABLED; /* an edit list says where they begin */
    AVDictionary *settings = nullptr;
    if (!mkv) {
        av_dict_set(&settings, "movflags", "use_metadata_tags", 0);
        av_dict_set(&settings, "use_editlist", "1", 0);
        av_dict_set(&settings, "movie_timescale", "90000", 0);
    } else {
        format_->avoid_negative_ts = AVFMT_AVOID_NEG_TS_MAKE_NON_NEGATIVE;
    }
    code = avio_open(&format_->pb, path.c_str(), AVIO_FLAG_WRITE);
    if (code >= 0) code = avformat_write_header(format_, &settings);
    av_dict_free(&settings);
    return code >= 0 || fail(code);
}

bool ClipOutput::can_take(const ClipSource &source) const
{
    const AVCodecParameters &own = *format_->streams[video_]->codecpar, &video = *source.video();
    if (own.codec_id != video.codec_id || own.width != video.width || own.height != video.height ||
        !same_bytes(own, video))
        return false;
    if (!source.sound()) return true; /* there it is silent */
    if (sound_ < 0) return false;
    const AVCodecParameters &heard = *format_->streams[sound_]->codecpar, &sound = *source.sound();
    return heard.codec_id == sound.codec_id && heard.sample_rate == sound.sample_rate &&
           same_bytes(heard, sound);
}

bool ClipOutput::write(const ClipPacket &from)
{
    const int index = from.sound ? sound_ : video_;
    if (index < 0) return true;
    const AVRational base = format_->streams[index]->time_base;
    AVPacket *packet = av_packet_clone(from.packet);
    if (!packet) return fail(AVERROR(ENOMEM));
    packet->pts = av_rescale_q(from.wall_us - origin_us_, kClipMicroseconds, base);
    packet->dts = av_rescale_q(from.dts_us - origin_us_, kClipMicroseconds, base);
    packet->duration = av_rescale_q(from.duration_us, kClipMicroseconds, base);
    /* Files may overlap by a picture; decoding times must grow. */
    int64_t &last = last_dts_[from.sound];
    if (last != INT64_MIN) packet->dts = std::max(packet->dts, last + 1);
    packet->pts = std::max(packet->pts, packet->dts);
    if (from.sound && !fill_with_silence(packet->pts)) {
        av_packet_free(&packet);
        return false;
    }
    last = packet->dts;
    if (from.sound) sound_end_ = packet->pts + packet->duration;
    const bool written = put(packet, index);
    av_packet_free(&packet);
    return written;
}

/* Sound of equal samples plays one behind the other, whatever their times say. */
bool ClipOutput::fill_with_silence(int64_t until)
{
    const AVStream *stream = format_->streams[sound_];
    const int silence = silence_of(*stream->codecpar);
    if (silence < 0 || sound_end_ == INT64_MIN) return true;
    const int64_t block = av_rescale_q(kSilence_ms, {1, 1000}, stream->time_base);
    const auto bytes = static_cast<int>(kSilence_ms * stream->codecpar->sample_rate / 1000);
    while (block > 0 && until - sound_end_ >= block) {
        AVPacket *packet = av_packet_alloc();
        if (!packet || av_new_packet(packet, bytes) < 0) {
            av_packet_free(&packet);
            return fail(AVERROR(ENOMEM));
        }
        std::memset(packet->data, silence, static_cast<size_t>(bytes));
        packet->pts = packet->dts = sound_end_;
        packet->duration = block;
        packet->flags |= AV_PKT_FLAG_KEY;
        sound_end_ += block;
        const bool written = put(packet, sound_);
        av_packet_free(&packet);
        if (!written) return false;
    }
    return true;
}

bool ClipOutput::put(AVPacket *packet, int index)
{
    packet->stream_index = index;
    packet->pos = -1;
    int code = av_interleaved_write_frame(format_, packet);
    if (code >= 0 && format_->pb->error < 0) code = format_->pb->error;
    return code >= 0 || fail(code);
}

bool ClipOutput::close()
{
    int code = av_write_trailer(format_);
    const int closing = avio_closep(&format_->pb);
    if (code >= 0) code = closing;
    avformat_free_context(format_);
    format_ = nullptr;
    return code >= 0 || fail(code);
}

} // namespace nvrec
