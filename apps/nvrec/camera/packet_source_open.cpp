/* packet_source_open.cpp - see packet_source.h: opening, closing, and why it did not work. */
#include <cerrno>
#include <cstring>

#include <netdb.h>

#include "camera/address.h"
#include "camera/connection_reader.h"
#include "camera/loss_count.h"
#include "camera/packet_demuxer.h"

namespace nvrec
{
namespace
{

constexpr double kSilentFrameRate = 25.0; /* of bare streams that state none */
constexpr const char *kUdpBuffer_bytes = "2097152";
constexpr auto kGoodbyeLimit = std::chrono::seconds(1); /* the end of a session is sent, no answer awaited */

/* Answers of a camera that does not offer the transport. */
bool is_of_transport(int av_code)
{
    return av_code == AVERROR(EPROTONOSUPPORT) || av_code == AVERROR_INVALIDDATA ||
           av_code == AVERROR_HTTP_BAD_REQUEST || av_code == AVERROR_HTTP_OTHER_4XX ||
           av_code == AVERROR_HTTP_SERVER_ERROR;
}

/* Why a host's name cannot be resolved; empty = it can. */
std::string name_problem(const std::string &host)
{
    addrinfo *found = nullptr;
    const int code = getaddrinfo(host.c_str(), nullptr, nullptr, &found);
    if (code == 0) freeaddrinfo(found);
    return code == 0 ? "" : "the name " + host + " does not resolve: " + gai_strerror(code);
}

std::string text_of(int av_code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(av_code, text, sizeof text);
    return text;
}

} // namespace

PacketSource::PacketSource(std::string address, Transport transport)
    : address_(std::move(address)), transport_(transport), live_(is_network_address(address_))
{
}

PacketSource::~PacketSource() = default;

bool PacketSource::fail(const std::string &reason)
{
    error_ = reason;
    return false;
}

bool PacketSource::fail(const std::string &what, int av_code)
{
    const bool gave_up = av_code == AVERROR_EXIT; /* stop_asked() said so */
    return fail(what + ": " + (gave_up ? "it does not answer" : text_of(av_code)));
}

/* libavformat asks this while it waits; non-zero ends the wait. */
int PacketSource::stop_asked(void *source)
{
    const auto *self = static_cast<const PacketSource *>(source);
    const bool late = Clock::now() > self->give_up_at_.load(std::memory_order_relaxed);
    if (self->hanging_up_) return late;
    if (self->interrupted_.load(std::memory_order_relaxed)) return 1;
    if (self->closing_.load(std::memory_order_relaxed)) return 1;
    return late;
}

bool PacketSource::open(std::chrono::milliseconds limit, bool with_sound)
{
    close();
    error_.clear();
    give_up_at_ = Clock::now() + limit;
    if (open_stream(with_sound)) {
        if (live_) start_reading();
        return true;
    }
    close();
    return false;
}

void PacketSource::close()
{
    connection_.reset();
    give_up_at_ = Clock::now() + kGoodbyeLimit;
    hanging_up_ = true;
    demuxer_.reset();
    hanging_up_ = false;
    sound_packets_.clear();
    sound_codec_.reset();
}

void PacketSource::start_reading()
{
    const AVStream *stream = demuxer_->stream;
    connection_ =
        std::make_unique<ConnectionReader>(*this, [this, stream](const ConnectionReader::Arrival &arrival) {
            const AVPacket &packet = *arrival.packet;
            if (!watch_ || packet.stream_index != stream->index || packet.size <= 0) return;
            std::optional<int64_t> camera_us;
            if (packet.pts != AV_NOPTS_VALUE)
                camera_us = av_rescale_q(packet.pts, stream->time_base, AVRational{1, 1'000'000});
            watch_(arrival.at, static_cast<size_t>(packet.size), (packet.flags & AV_PKT_FLAG_KEY) != 0,
                   camera_us);
        });
}

/* The text of libavformat's error, or the reason behind the error. */
std::string PacketSource::reason_of(int av_code) const
{
    std::string reason = text_of(av_code);
    if (live_ && av_code == AVERROR_EXIT && !interrupted()) reason = "no answer in time";
    if (live_ && av_code == AVERROR_INVALIDDATA) reason = "what answers there does not speak RTSP";
    if (live_ && av_code == AVERROR(EIO) && !interrupted()) { /* to ask for a name may take half a minute */
        const std::string problem = name_problem(host_of(address_));
        if (!problem.empty()) reason = problem;
    }
    return "cannot open: " + reason;
}

/*
 * Open the file, or connect: over the transport that the user names, or the one that worked before, or TCP,
 * or else UDP.
 */
int PacketSource::open_address()
{
    if (!live_) return open_format(Transport::kTcp);
    const bool chosen = transport_ != Transport::kAuto;
    const Transport first = chosen ? transport_ : std::exchange(worked_, Transport::kAuto);
    Transport used = first == Transport::kUdp ? Transport::kUdp : Transport::kTcp;
    int code = open_format(used);
    if (code < 0 && !chosen && is_of_transport(code)) {
        used = used == Transport::kTcp ? Transport::kUdp : Transport::kTcp;
        const int other = open_format(used);
        if (other >= 0 || other == AVERROR_EXIT) code = other;
    }
    if (code >= 0) worked_ = used;
    return code;
}

int PacketSource::open_format(Transport transport)
{
    AVFormatContext *format = avformat_alloc_context();
    if (!format) return AVERROR(ENOMEM);
    format->interrupt_callback = {stop_asked, this};
    count_losses(format, this);
    AVDictionary *options = nullptr;
    if (live_) av_dict_set(&options, "rtsp_transport", transport == Transport::kUdp ? "udp" : "tcp", 0);
    if (live_) av_dict_set(&options, "buffer_size", kUdpBuffer_bytes, 0); /* a key frame comes at once */
    const int code = avformat_open_input(&format, address_.c_str(), nullptr, &options);
    av_dict_free(&options);
    demuxer_->format = code < 0 ? nullptr : format;
    return code;
}

bool PacketSource::open_stream(bool with_sound)
{
    demuxer_ = std::make_unique<Demuxer>();
    if (!demuxer_->packet) return fail("out of memory");
    int code = open_address();
    if (code < 0) return fail(reason_of(code));
    AVFormatContext *format = demuxer_->format;

    code = avformat_find_stream_info(format, nullptr);
    if (code < 0) return fail("cannot read its streams", code);
    code = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (code < 0) return fail("it carries no video");
    demuxer_->stream = format->streams[code];
    if (with_sound) demuxer_->sound = SoundTrack::find(format, code);
    if (demuxer_->sound) note_sound_codec();
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
    held_back_ = parameters->video_delay;
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

} // namespace nvrec
