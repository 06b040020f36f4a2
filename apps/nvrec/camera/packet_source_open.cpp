/* packet_source_open.cpp - see packet_source.h: opening, closing, and why it did not work. */
#include <cstring>

#include "camera/address.h"
#include "camera/packet_demuxer.h"

namespace nvrec
{
namespace
{

constexpr double kSilentFrameRate = 25.0; /* of bare streams that state none */

std::string text_of(int av_code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(av_code, text, sizeof text);
    return text;
}

} // namespace

PacketSource::PacketSource(std::string address)
    : address_(std::move(address)), live_(is_network_address(address_))
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

} // namespace nvrec
