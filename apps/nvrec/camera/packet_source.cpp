/* packet_source.cpp - see packet_source.h. */
#include "camera/packet_source.h"

#include <cstring>
#include <deque>
#include <optional>
#include <string_view>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
}

namespace nvrec
{
namespace
{

constexpr double kSilentFrameRate = 25.0;             /* of bare streams that state none */
constexpr auto kReadLimit = std::chrono::seconds(10); /* a silent line counts as broken after this */

/* How far pictures are read ahead for the sound that belongs before them: a fragment or a chunk of a
 * recording has all of its pictures first. The count is for files whose times say nothing. */
constexpr int64_t kSoundAhead_us = 100'000; /* whole blocks, and what a decoder holds back */
constexpr int64_t kFarthestAhead_us = 4'000'000;
constexpr size_t kMostAhead = 512;

std::string text_of(int av_code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(av_code, text, sizeof text);
    return text;
}

/* The time at which a packet is due, on its stream's clock; nothing where the file does not say. */
std::optional<int64_t> time_of(const AVPacket &packet, const AVStream &stream)
{
    const int64_t time = packet.dts != AV_NOPTS_VALUE ? packet.dts : packet.pts;
    if (time == AV_NOPTS_VALUE) return std::nullopt;
    return av_rescale_q(time, stream.time_base, AVRational{1, 1'000'000});
}

bool is_live(std::string_view address)
{
    return address.starts_with("rtsp://") || address.starts_with("rtsps://");
}

} // namespace

struct PacketRelease {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};
using Packet = std::unique_ptr<AVPacket, PacketRelease>;

/* Everything that libavformat and libavcodec hold for one open input. */
struct PacketSource::Demuxer {
    AVFormatContext *format = nullptr;
    AVStream *stream = nullptr;
    AVBSFContext *filter = nullptr;
    AVCodecParserContext *parser = nullptr; /* looks into key frames: size, true random access */
    AVCodecContext *parser_context = nullptr;
    std::unique_ptr<SoundTrack> sound;
    AVPacket *packet = av_packet_alloc();
    std::deque<Packet> ahead; /* of the video stream, read and not filtered yet */
    int ahead_end = 0;        /* why no more of them can be read; 0 = they can  */
    bool filter_drained = false;
    bool bare = false; /* the bare stream of the codec: no time stamps, no index */

    ~Demuxer()
    {
        av_packet_free(&packet);
        if (parser) av_parser_close(parser);
        avcodec_free_context(&parser_context);
        av_bsf_free(&filter);
        avformat_close_input(&format);
    }
};

PacketSource::PacketSource(std::string address) : address_(std::move(address)), live_(is_live(address_)) {}

PacketSource::~PacketSource() = default;

bool PacketSource::fail(const std::string &reason)
{
    error_ = reason;
    return false;
}

bool PacketSource::fail(const std::string &what, int av_code)
{
    return fail(what + ": " + text_of(av_code));
}

/* libavformat asks this while it waits; non-zero ends the wait. */
int PacketSource::stop_asked(void *source)
{
    const auto *self = static_cast<const PacketSource *>(source);
    if (self->interrupted_.load(std::memory_order_relaxed)) return 1;
    return Clock::now() > self->give_up_at_;
}

bool PacketSource::open(std::chrono::milliseconds limit, bool with_sound)
{
    close();
    error_.clear();
    give_up_at_ = Clock::now() + limit;
    if (open_stream(with_sound)) return true;
    close();
    return false;
}

void PacketSource::close()
{
    demuxer_.reset();
}

bool PacketSource::open_stream(bool with_sound)
{
    demuxer_ = std::make_unique<Demuxer>();
    AVFormatContext *format = avformat_alloc_context();
    if (!format || !demuxer_->packet) return fail("out of memory");
    format->interrupt_callback = {stop_asked, this};

    AVDictionary *options = nullptr;
    if (live_) av_dict_set(&options, "rtsp_transport", "tcp", 0); /* a lost datagram is a torn picture */
    int code = avformat_open_input(&format, address_.c_str(), nullptr, &options);
    av_dict_free(&options);
    if (code < 0) return fail("cannot open", code);
    demuxer_->format = format;

    code = avformat_find_stream_info(format, nullptr);
    if (code < 0) return fail("cannot read its streams", code);
    code = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (code < 0) return fail("it carries no video");
    demuxer_->stream = format->streams[code];
    if (with_sound) demuxer_->sound = SoundTrack::find(format, code);
    for (unsigned i = 0; i < format->nb_streams; ++i) {
        const bool is_sound = demuxer_->sound && demuxer_->sound->stream_index() == static_cast<int>(i);
        if (format->streams[i] != demuxer_->stream && !is_sound) format->streams[i]->discard = AVDISCARD_ALL;
    }

    const AVCodecParameters *parameters = demuxer_->stream->codecpar;
    const CodecTraits *row = traits_of_av_id(parameters->codec_id);
    if (!row) {
        return fail(std::string("its codec is ") + avcodec_get_name(parameters->codec_id) +
                    "; the board decodes " + codec_names());
    }
    if (parameters->width <= 0 || parameters->height <= 0) return fail("no picture was found in it");
    const AVRational rate = av_guess_frame_rate(format, demuxer_->stream, nullptr);
    /* libavformat names the demuxer of a bare stream after its codec. */
    demuxer_->bare = std::strcmp(format->iformat->name, avcodec_get_name(parameters->codec_id)) == 0;
    facts_.codec = row->codec;
    facts_.sound = demuxer_->sound != nullptr;
    facts_.width_px = static_cast<uint32_t>(parameters->width);
    facts_.height_px = static_cast<uint32_t>(parameters->height);
    facts_.frame_rate = rate.num > 0 && rate.den > 0 ? av_q2d(rate) : kSilentFrameRate;
    return choose_filter(parameters) && open_parser(parameters);
}

/*
 * Units with length prefixes become Annex B; parameter sets that came apart from the stream (an
 * RTSP session description) are put in front of key frames; all else passes through.
 */
bool PacketSource::choose_filter(const AVCodecParameters *parameters)
{
    const bool length_prefixed = parameters->extradata_size > 0 && parameters->extradata[0] == 1;
    std::string chain = "null";
    if (length_prefixed) {
        chain = traits_of_av_id(parameters->codec_id)->to_annexb;
    } else if (live_ && parameters->extradata_size > 0) {
        chain = "dump_extra=freq=keyframe";
    }
    int code = av_bsf_list_parse_str(chain.c_str(), &demuxer_->filter);
    if (code < 0) return fail("no bit-stream filter " + chain, code);
    code = avcodec_parameters_copy(demuxer_->filter->par_in, parameters);
    if (code < 0) return fail("bit-stream filter " + chain, code);
    demuxer_->filter->time_base_in = demuxer_->stream->time_base;
    code = av_bsf_init(demuxer_->filter);
    return code >= 0 || fail("bit-stream filter " + chain, code);
}

bool PacketSource::open_parser(const AVCodecParameters *parameters)
{
    demuxer_->parser = av_parser_init(parameters->codec_id);
    demuxer_->parser_context = avcodec_alloc_context3(nullptr);
    if (!demuxer_->parser || !demuxer_->parser_context) return fail("out of memory");
    demuxer_->parser->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    demuxer_->parser_context->codec_id = parameters->codec_id;
    return true;
}

/* Read one packet: sound is decoded, video joins what is ahead. @return what libavformat says. */
int PacketSource::read_packet()
{
    Packet packet(av_packet_alloc());
    if (!packet) return AVERROR(ENOMEM);
    give_up_at_ = Clock::now() + kReadLimit;
    const int code = av_read_frame(demuxer_->format, packet.get());
    if (code < 0) return code;
    if (demuxer_->sound && packet->stream_index == demuxer_->sound->stream_index())
        demuxer_->sound->decode(*packet);
    if (packet->stream_index == demuxer_->stream->index && packet->size > 0)
        demuxer_->ahead.push_back(std::move(packet));
    return 0;
}

/* Whether the first packet ahead may go, with all sound that belongs before it in hand. */
bool PacketSource::first_is_ready() const
{
    const std::deque<Packet> &ahead = demuxer_->ahead;
    if (ahead.empty()) return false;
    if (!demuxer_->sound || live_ || ahead.size() >= kMostAhead) return true; /* cameras send as it comes */
    const auto first_us = time_of(*ahead.front(), *demuxer_->stream);
    const auto last_us = time_of(*ahead.back(), *demuxer_->stream);
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
            const Packet first = std::move(demuxer_->ahead.front());
            demuxer_->ahead.pop_front();
            /* A damaged unit that cannot be brought into form is left out: the stream goes on behind it. */
            av_bsf_send_packet(demuxer_->filter, first.get());
            continue;
        }
        const int end = std::exchange(demuxer_->ahead_end, 0);
        if (end != AVERROR_EOF) {
            fail(Clock::now() > give_up_at_ ? "nothing came for ten seconds" : "reading", end);
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

int PacketSource::held_back() const
{
    return demuxer_->stream->codecpar->video_delay;
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

/* What the filter holds belongs to where the file was read last. */
void PacketSource::forget_position()
{
    if (demuxer_->sound) demuxer_->sound->forget();
    demuxer_->ahead.clear();
    demuxer_->ahead_end = 0;
    av_bsf_flush(demuxer_->filter);
    demuxer_->filter_drained = false;
}

} // namespace nvrec
