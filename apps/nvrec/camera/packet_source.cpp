/* packet_source.cpp - see packet_source.h: reading, and going to another place. */
#include "camera/packet_source.h"

#include <optional>
#include <utility>

#include "camera/connection_reader.h"
#include "camera/packet_demuxer.h"

namespace nvrec
{
namespace
{

constexpr auto kReadLimit = std::chrono::seconds(10); /* a file on a disk that does not answer */
constexpr auto kCatchUpLimit = std::chrono::milliseconds(500);

/* How far pictures are read ahead for the sound that belongs before them: a fragment or a chunk of a
 * recording has all of its pictures first. The count is for files whose times say nothing. */
constexpr int64_t kSoundAhead_us = 100'000; /* whole blocks, and what a decoder holds back */
constexpr int64_t kFarthestAhead_us = 4'000'000;
constexpr size_t kMostAhead = 512;

/* The time at which a packet is due, on its stream's clock; nothing where the file does not say. */
std::optional<int64_t> time_of(const AVPacket &packet, const AVStream &stream)
{
    const int64_t time = packet.dts != AV_NOPTS_VALUE ? packet.dts : packet.pts;
    if (time == AV_NOPTS_VALUE) return std::nullopt;
    return av_rescale_q(time, stream.time_base, AVRational{1, 1'000'000});
}

} // namespace

/* Read one packet: sound is decoded, video joins what is ahead. @return what libavformat says. */
int PacketSource::read_packet()
{
    if (connection_) return read_connection();
    Packet packet(av_packet_alloc());
    if (!packet) return AVERROR(ENOMEM);
    give_up_at_ = Clock::now() + kReadLimit;
    const int code = av_read_frame(demuxer_->format, packet.get());
    if (code < 0) return code;
    sort({std::move(packet), {}});
    return 0;
}

int PacketSource::read_connection()
{
    ConnectionReader::Arrival arrival;
    const int code = connection_->take(&arrival);
    if (code == 0) sort({std::move(arrival.packet), arrival.at});
    return code;
}

/* Sound is decoded and kept as it came, video joins what is ahead, all else goes. */
void PacketSource::sort(TimedPacket timed)
{
    const AVPacket &packet = *timed.packet;
    if (demuxer_->sound && packet.stream_index == demuxer_->sound->stream_index()) {
        demuxer_->sound->decode(packet);
        keep_sound(packet);
    }
    if (packet.stream_index == demuxer_->stream->index && packet.size > 0)
        demuxer_->ahead.push_back(std::move(timed));
}

void PacketSource::keep_sound(const AVPacket &packet)
{
    constexpr size_t kMostKept = 4096; /* of an input whose pictures never come */
    if (packet.pts == AV_NOPTS_VALUE || packet.size <= 0 || sound_packets_.size() >= kMostKept) return;
    if ((packet.flags & AV_PKT_FLAG_DISCARD) != 0) return; /* before the beginning that the file names */
    if (!connection_) note_sound_codec(); /* the connection's reader may change the stream meanwhile */
    const AVRational base = demuxer_->sound_time_base;
    SoundPacket kept;
    kept.bytes.assign(packet.data, packet.data + packet.size);
    kept.pts_us = av_rescale_q(packet.pts, base, AVRational{1, 1'000'000});
    kept.duration_us = av_rescale_q(packet.duration, base, AVRational{1, 1'000'000});
    kept.codec = sound_codec_;
    sound_packets_.push_back(std::move(kept));
}

void PacketSource::note_sound_codec()
{
    const AVStream &stream = *demuxer_->format->streams[demuxer_->sound->stream_index()];
    const AVCodecParameters &parameters = *stream.codecpar;
    demuxer_->sound_time_base = stream.time_base;
    SoundCodec codec = {.av_id = parameters.codec_id,
                        .rate_hz = parameters.sample_rate,
                        .channels = parameters.ch_layout.nb_channels,
                        .frame_samples = parameters.frame_size,
                        .block_bytes = parameters.block_align,
                        .bit_rate_bps = parameters.bit_rate,
                        .extradata = {}};
    if (parameters.extradata_size > 0)
        codec.extradata.assign(parameters.extradata, parameters.extradata + parameters.extradata_size);
    if (!sound_codec_ || !(codec == *sound_codec_))
        sound_codec_ = std::make_shared<const SoundCodec>(std::move(codec));
}

std::vector<LiveClock::Arrived> PacketSource::catch_up()
{
    std::vector<LiveClock::Arrived> first;
    if (!connection_) return first;
    const Clock::time_point begun = Clock::now();
    ConnectionReader::Arrival arrival;
    bool empty = false; /* nothing waits on the connection */
    while (!empty && Clock::now() - begun < kCatchUpLimit && !interrupted()) {
        const int code = connection_->take(&arrival);
        if (code < 0) {
            demuxer_->ahead_end = code; /* next() reports it after the packets that came before */
            break;
        }
        const AVPacket &packet = *arrival.packet;
        const AVStream &stream = *demuxer_->stream;
        if (packet.stream_index == stream.index && packet.size > 0) {
            /* If the first picture has no time, it is computed from the pictures behind it. */
            const bool tells =
                packet.pts != AV_NOPTS_VALUE && first.size() > static_cast<size_t>(held_back_) + 1;
            empty = arrival.waited_for && (tells || (!first.empty() && first.front().times.pts_us));
            LiveClock::Arrived picture = {{}, arrival.at.time_since_epoch().count()};
            if (packet.pts != AV_NOPTS_VALUE)
                picture.times.pts_us = av_rescale_q(packet.pts, stream.time_base, AVRational{1, 1'000'000});
            first.push_back(picture);
        }
        sort({std::move(arrival.packet), arrival.at});
    }
    return first;
}

/* Whether the first packet ahead may be handed out: all sound that belongs before it has been read. */
bool PacketSource::first_is_ready() const
{
    const std::deque<TimedPacket> &ahead = demuxer_->ahead;
    if (ahead.empty()) return false;
    if (!demuxer_->sound || live_ || ahead.size() >= kMostAhead) return true; /* cameras send as it comes */
    const auto first_us = time_of(*ahead.front().packet, *demuxer_->stream);
    const auto last_us = time_of(*ahead.back().packet, *demuxer_->stream);
    if (!first_us || !last_us || *last_us - *first_us >= kFarthestAhead_us) return true;
    return demuxer_->sound->read_until_us() >= *first_us + kSoundAhead_us;
}

/* The next filtered packet of the video stream into demuxer_->packet. */
PacketSource::Read PacketSource::next()
{
    AVPacket *packet = demuxer_->packet;
    for (;;) {
        const int code = av_bsf_receive_packet(demuxer_->filter, packet);
        if (code >= 0) return Read::kUnit;
        if (code == AVERROR_EOF) return Read::kEnd;
        if (code != AVERROR(EAGAIN)) {
            fail("bit-stream filter", code);
            return Read::kFailed;
        }
        while (demuxer_->ahead_end == 0 && !first_is_ready())
            demuxer_->ahead_end = read_packet();
        if (interrupted_.load(std::memory_order_relaxed)) return Read::kInterrupted;
        if (!demuxer_->ahead.empty()) {
            const TimedPacket first = std::move(demuxer_->ahead.front());
            demuxer_->ahead.pop_front();
            unit_arrived_at_ = first.at; /* the filters answer every packet with one */
            /* A damaged unit that cannot be brought into form is left out: the stream goes on behind it. */
            av_bsf_send_packet(demuxer_->filter, first.packet.get());
            continue;
        }
        const int end = std::exchange(demuxer_->ahead_end, 0);
        if (end != AVERROR_EOF) {
            const bool silent = connection_ ? connection_->was_silent() : Clock::now() > give_up_at_.load();
            silent ? fail("no picture came for ten seconds") : fail("reading", end);
            return Read::kFailed;
        }
        if (demuxer_->filter_drained) return Read::kEnd;
        demuxer_->filter_drained = true;
        av_bsf_send_packet(demuxer_->filter, nullptr);
    }
}

const uint8_t *PacketSource::bytes() const
{
    return demuxer_->packet->data;
}

size_t PacketSource::size() const
{
    return static_cast<size_t>(demuxer_->packet->size);
}

bool PacketSource::is_key() const
{
    return (demuxer_->packet->flags & AV_PKT_FLAG_KEY) != 0;
}

UnitClock::PacketTimes PacketSource::times() const
{
    const AVPacket *packet = demuxer_->packet;
    const AVRational base = demuxer_->filter->time_base_out;
    auto us = [base](int64_t time) { return av_rescale_q(time, base, AVRational{1, 1'000'000}); };
    UnitClock::PacketTimes times;
    times.key = is_key();
    times.before_start = (packet->flags & AV_PKT_FLAG_DISCARD) != 0;
    if (demuxer_->bare) return times;
    if (packet->pts != AV_NOPTS_VALUE) times.pts_us = us(packet->pts);
    if (packet->dts != AV_NOPTS_VALUE) times.dts_us = us(packet->dts);
    if (times.pts_us && times.dts_us) times.pts_behind_dts_us = us(packet->pts - packet->dts);
    return times;
}

void PacketSource::release()
{
    av_packet_unref(demuxer_->packet);
}

bool PacketSource::is_bare() const
{
    return demuxer_ && demuxer_->bare;
}

bool PacketSource::may_be_joined() const
{
    return (demuxer_->format->iformat->flags & AVFMT_TS_DISCONT) != 0;
}

int PacketSource::held_back() const
{
    return live_ ? held_back_ : demuxer_->stream->codecpar->video_delay;
}

SoundTrack *PacketSource::sound() const
{
    return demuxer_ ? demuxer_->sound.get() : nullptr;
}

void PacketSource::look_into(const uint8_t *unit, size_t size)
{
    uint8_t *out = nullptr;
    int out_size = 0;
    av_parser_parse2(demuxer_->parser, demuxer_->parser_context, &out, &out_size, unit,
                     static_cast<int>(size), AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
    if (demuxer_->parser->width <= 0 || demuxer_->parser->height <= 0) return;
    facts_.width_px = static_cast<uint32_t>(demuxer_->parser->width);
    facts_.height_px = static_cast<uint32_t>(demuxer_->parser->height);
}

bool PacketSource::to_first_byte(const char *failure)
{
    const int64_t at = avio_seek(demuxer_->format->pb, 0, SEEK_SET);
    const int code = at < 0 ? static_cast<int>(at) : avformat_flush(demuxer_->format);
    forget_position();
    return code >= 0 || fail(failure, code);
}

bool PacketSource::to_first_picture(const char *failure)
{
    const AVStream *stream = demuxer_->stream;
    const int64_t start = stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
    const int code = av_seek_frame(demuxer_->format, stream->index, start, AVSEEK_FLAG_BACKWARD);
    if (code < 0) return fail(failure, code);
    forget_position();
    return true;
}

bool PacketSource::to_key_before(int64_t pts_us, const char *failure)
{
    const AVStream *stream = demuxer_->stream;
    const int64_t at = av_rescale_q(pts_us, AVRational{1, 1'000'000}, stream->time_base);
    const int code = av_seek_frame(demuxer_->format, stream->index, at, AVSEEK_FLAG_BACKWARD);
    if (code < 0) return fail(failure, code);
    forget_position();
    return true;
}

/* The filter still holds packets from the place that the file was read at before. */
void PacketSource::forget_position()
{
    if (demuxer_->sound) demuxer_->sound->forget();
    sound_packets_.clear();
    demuxer_->ahead.clear();
    demuxer_->ahead_end = 0;
    av_bsf_flush(demuxer_->filter);
    demuxer_->filter_drained = false;
}

} // namespace nvrec
