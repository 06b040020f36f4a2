/* input.cpp - see input.h. libavformat demuxes, a bit-stream filter brings units into Annex B form. */
#include "camera/input.h"

#include <algorithm>
#include <cmath>
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

constexpr double kSilentFrameRate = 25.0;             /* of elementary streams that state none */
constexpr auto kReadLimit = std::chrono::seconds(10); /* a silent line counts as broken after this */

/* How far pictures are read ahead for the sound that belongs before them: a fragment or a chunk of a
 * recording has all of its pictures first. The count is for files whose times say nothing. */
constexpr int64_t kSoundAhead_us = 100'000; /* whole blocks, and what a decoder holds back */
constexpr int64_t kFarthestAhead_us = 4'000'000;
constexpr size_t kMostAhead = 512;

struct CodecRow {
    AVCodecID id;
    Codec codec;
    const char *name;
    const char *to_annexb; /* filter for length-prefixed units, as MP4 and MKV carry them */
};

constexpr CodecRow kCodecs[] = {
    {AV_CODEC_ID_H264, Codec::kH264, "H.264", "h264_mp4toannexb"},
    {AV_CODEC_ID_HEVC, Codec::kH265, "H.265", "hevc_mp4toannexb"},
};

const CodecRow *row_of(AVCodecID id)
{
    for (const CodecRow &row : kCodecs) {
        if (row.id == id) return &row;
    }
    return nullptr;
}

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

const char *codec_name(Codec codec)
{
    for (const CodecRow &row : kCodecs) {
        if (row.codec == codec) return row.name;
    }
    return "?";
}

struct PacketRelease {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};
using Packet = std::unique_ptr<AVPacket, PacketRelease>;

/* Everything that libavformat and libavcodec hold for one open input. */
struct Input::Demuxer {
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
    bool elementary = false; /* the bare stream of the codec: no time stamps, no index */

    ~Demuxer()
    {
        av_packet_free(&packet);
        if (parser) av_parser_close(parser);
        avcodec_free_context(&parser_context);
        av_bsf_free(&filter);
        avformat_close_input(&format);
    }
};

Input::Input(std::string address) : address_(std::move(address)), live_(is_live(address_)) {}

Input::~Input() = default;

bool Input::fail(const std::string &reason)
{
    error_ = reason;
    return false;
}

bool Input::fail(const std::string &what, int av_code)
{
    return fail(what + ": " + text_of(av_code));
}

/* libavformat asks this while it waits; non-zero ends the wait. */
int Input::stop_asked(void *input)
{
    const auto *self = static_cast<const Input *>(input);
    if (self->interrupted_.load(std::memory_order_relaxed)) return 1;
    return Clock::now() > self->give_up_at_;
}

bool Input::open(std::chrono::milliseconds limit)
{
    close();
    error_.clear();
    units_in_pass_ = 0;
    first_dts_us_ = INT64_MIN;
    if (live_ && last_unit_at_ != Clock::time_point{}) {
        /* A camera that comes back counts from anew; its time goes on with the time it was away. */
        const auto away = Clock::now() - last_unit_at_;
        pass_start_us_ = last_due_us_ + std::chrono::duration_cast<std::chrono::microseconds>(away).count();
    }
    give_up_at_ = Clock::now() + limit;
    if (open_stream()) return true;
    close();
    return false;
}

void Input::close()
{
    demuxer_.reset();
}

bool Input::open_stream()
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
    if (sound_wanted_) demuxer_->sound = SoundTrack::find(format, code);
    for (unsigned i = 0; i < format->nb_streams; ++i) {
        const bool is_sound = demuxer_->sound && demuxer_->sound->stream_index() == static_cast<int>(i);
        if (format->streams[i] != demuxer_->stream && !is_sound) format->streams[i]->discard = AVDISCARD_ALL;
    }

    const AVCodecParameters *parameters = demuxer_->stream->codecpar;
    const CodecRow *row = row_of(parameters->codec_id);
    if (!row) {
        return fail(std::string("its codec is ") + avcodec_get_name(parameters->codec_id) +
                    "; the board decodes H.264 and H.265");
    }
    if (parameters->width <= 0 || parameters->height <= 0) return fail("no picture was found in it");
    const AVRational rate = av_guess_frame_rate(format, demuxer_->stream, nullptr);
    /* libavformat names the demuxer of a bare stream after its codec. */
    demuxer_->elementary = std::strcmp(format->iformat->name, avcodec_get_name(parameters->codec_id)) == 0;
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
bool Input::choose_filter(const AVCodecParameters *parameters)
{
    const bool length_prefixed = parameters->extradata_size > 0 && parameters->extradata[0] == 1;
    std::string chain = "null";
    if (length_prefixed) {
        chain = row_of(parameters->codec_id)->to_annexb;
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

bool Input::open_parser(const AVCodecParameters *parameters)
{
    demuxer_->parser = av_parser_init(parameters->codec_id);
    demuxer_->parser_context = avcodec_alloc_context3(nullptr);
    if (!demuxer_->parser || !demuxer_->parser_context) return fail("out of memory");
    demuxer_->parser->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    demuxer_->parser_context->codec_id = parameters->codec_id;
    return true;
}

/* Read one packet: sound is decoded, video joins what is ahead. @return what libavformat says. */
int Input::read_packet()
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
bool Input::first_is_ready() const
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
Input::Read Input::next_packet()
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

Input::Read Input::read(AccessUnit *unit)
{
    if (!demuxer_) {
        fail("not open");
        return Read::kFailed;
    }
    if (interrupted_.load(std::memory_order_relaxed)) return Read::kInterrupted;
    const Read result = next_packet();
    if (result != Read::kUnit) {
        place_sound();
        return result;
    }

    AVPacket *packet = demuxer_->packet;
    unit->bytes.assign(packet->data, packet->data + packet->size);
    unit->key = (packet->flags & AV_PKT_FLAG_KEY) != 0;
    stamp(unit);
    av_packet_unref(packet);
    place_sound();
    if (unit->key) look_into(*unit);
    return Read::kUnit;
}

Input::Read Input::read_key(AccessUnit *unit)
{
    for (;;) {
        const Read result = read(unit);
        if (result != Read::kUnit || unit->key) return result;
    }
}

/* Time stamps of the packet at hand, counted from the input's first unit on. */
void Input::stamp(AccessUnit *unit)
{
    const AVPacket *packet = demuxer_->packet;
    const AVRational microseconds = {1, 1000000};
    const AVRational base = demuxer_->filter->time_base_out;

    const auto by_count =
        static_cast<int64_t>(std::llround(static_cast<double>(units_in_pass_) * 1e6 / facts_.frame_rate));
    int64_t since_start_us = by_count;
    int64_t pts_offset_us = 0;
    const bool has_pts = !demuxer_->elementary && packet->pts != AV_NOPTS_VALUE;
    const int64_t pts_us = has_pts ? av_rescale_q(packet->pts, base, microseconds) : 0;
    if (has_pts && first_pts_us_ == INT64_MIN) first_pts_us_ = pts_us;
    if (!demuxer_->elementary && packet->dts != AV_NOPTS_VALUE) {
        const int64_t dts_us = av_rescale_q(packet->dts, base, microseconds);
        if (first_dts_us_ == INT64_MIN) first_dts_us_ = dts_us - by_count;
        since_start_us = dts_us - first_dts_us_;
        if (packet->pts != AV_NOPTS_VALUE)
            pts_offset_us = av_rescale_q(packet->pts - packet->dts, base, microseconds);
    } else if (has_pts) {
        /* Some files say only when a unit is shown; it is decoded as much earlier as units are held back. */
        const int64_t held_back_us =
            std::llround(demuxer_->stream->codecpar->video_delay * 1e6 / facts_.frame_rate);
        if (first_dts_us_ == INT64_MIN) first_dts_us_ = pts_us - held_back_us - by_count;
        if (unit->key) since_start_us = pts_us - held_back_us - first_dts_us_;
        pts_offset_us = pts_us - first_dts_us_ - since_start_us;
    }
    last_due_us_ = std::max(last_due_us_, pass_start_us_ + since_start_us);
    unit->due_us = last_due_us_;
    unit->pts_us = std::max<int64_t>(0, last_due_us_ + pts_offset_us);
    ++units_in_pass_;
    last_unit_at_ = Clock::now();
}

/* Sound read before the first unit waits for that unit: it is what all times count from. */
void Input::place_sound()
{
    if (!demuxer_->sound || first_dts_us_ == INT64_MIN) return;
    for (SoundBlock &block : demuxer_->sound->take()) {
        block.pts_us += pass_start_us_ - first_dts_us_;
        if (block.pts_us >= 0) sound_.push_back(block);
    }
}

std::vector<SoundBlock> Input::take_sound(int64_t until_us)
{
    const auto end = std::find_if(sound_.begin(), sound_.end(),
                                  [until_us](const SoundBlock &block) { return block.pts_us > until_us; });
    std::vector<SoundBlock> taken(sound_.begin(), end);
    sound_.erase(sound_.begin(), end);
    return taken;
}

/* A key frame carries the parameter sets: the size may have changed. */
void Input::look_into(const AccessUnit &unit)
{
    uint8_t *out = nullptr;
    int out_size = 0;
    av_parser_parse2(demuxer_->parser, demuxer_->parser_context, &out, &out_size, unit.bytes.data(),
                     static_cast<int>(unit.bytes.size()), AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
    if (demuxer_->parser->width <= 0 || demuxer_->parser->height <= 0) return;
    facts_.width_px = static_cast<uint32_t>(demuxer_->parser->width);
    facts_.height_px = static_cast<uint32_t>(demuxer_->parser->height);
}

bool Input::rewind()
{
    if (live_ || !demuxer_) return fail("cannot go back to the start");
    AVFormatContext *format = demuxer_->format;
    const AVStream *stream = demuxer_->stream;
    int code = 0;
    if (demuxer_->elementary) {
        code = to_first_byte();
    } else {
        const int64_t start = stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
        code = av_seek_frame(format, stream->index, start, AVSEEK_FLAG_BACKWARD);
    }
    if (code < 0) return fail("cannot go back to the start", code);

    pass_start_us_ = last_due_us_ + static_cast<int64_t>(std::llround(1e6 / facts_.frame_rate));
    forget_position();
    units_in_pass_ = 0;
    first_dts_us_ = INT64_MIN;
    return true;
}

int Input::to_first_byte()
{
    const int64_t at = avio_seek(demuxer_->format->pb, 0, SEEK_SET);
    return at < 0 ? static_cast<int>(at) : avformat_flush(demuxer_->format);
}

/* What the filter holds belongs to where the file was read last. */
void Input::forget_position()
{
    if (demuxer_->sound) demuxer_->sound->forget();
    demuxer_->ahead.clear();
    demuxer_->ahead_end = 0;
    av_bsf_flush(demuxer_->filter);
    demuxer_->filter_drained = false;
    last_due_us_ = 0;
}

bool Input::seek(int64_t target_us, AccessUnit *unit)
{
    if (live_ || !demuxer_) return fail("cannot go to another place");
    pass_start_us_ = 0;
    if (demuxer_->elementary) return seek_in_bare_stream(target_us, unit);

    const int64_t first_us = first_pts_us_ == INT64_MIN ? 0 : first_pts_us_; /* key frames are found by it */
    const int64_t at =
        av_rescale_q(first_us + target_us, AVRational{1, 1000000}, demuxer_->stream->time_base);
    const int code = av_seek_frame(demuxer_->format, demuxer_->stream->index, at, AVSEEK_FLAG_BACKWARD);
    if (code < 0) return fail("cannot go to another place", code);
    forget_position();
    const Read result = read_key(unit);
    if (result != Read::kUnit) return result == Read::kEnd && fail("no key frame at that place");
    units_in_pass_ = std::llround(static_cast<double>(unit->due_us) * facts_.frame_rate / 1e6) + 1;
    return true;
}

bool Input::seek_in_bare_stream(int64_t target_us, AccessUnit *unit)
{
    auto begin = [this] {
        const int code = to_first_byte();
        forget_position();
        units_in_pass_ = 0;
        return code >= 0 || fail("cannot go to another place", code);
    };
    if (!begin()) return false;
    int64_t key_number = 0;
    while (read(unit) == Read::kUnit && unit->due_us <= target_us) {
        if (unit->key) key_number = units_in_pass_ - 1;
    }
    if (!begin()) return false;
    Read result = read_key(unit);
    while (result == Read::kUnit && units_in_pass_ - 1 < key_number)
        result = read_key(unit);
    return result == Read::kUnit || (result == Read::kEnd && fail("no key frame at that place"));
}

} // namespace nvrec
