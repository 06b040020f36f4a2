/* stream_decoder.cpp - libavcodec behind stream_decoder.h. */
#include "host/stream_decoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "host/av_handles.h"
#include "host/display_order.h"
#include "host/frame_memory.h"
#include "host/h264_headers.h"
#include "host/planar_frames.h"
#include "host/stream_codecs.h"

namespace vboard
{
namespace
{

// The largest picture the board decodes: 8192 x 4096 or any other shape of that area. A header that
// claims more is damage, not a reason to ask the PC for gigabytes.
constexpr int64_t kMaxPicturePixels = int64_t{8192} * 4096;

// A byte stream that never completes a frame (another codec, noise) is thrown away beyond this.
constexpr size_t kMaxOpenFrameBytes = size_t{8} << 20;

DisplayOrder::Coded coded_as(AVPictureStructure structure)
{
    switch (structure) {
    case AV_PICTURE_STRUCTURE_TOP_FIELD: return DisplayOrder::Coded::top_field;
    case AV_PICTURE_STRUCTURE_BOTTOM_FIELD: return DisplayOrder::Coded::bottom_field;
    case AV_PICTURE_STRUCTURE_UNKNOWN:
    case AV_PICTURE_STRUCTURE_FRAME: break;
    }
    return DisplayOrder::Coded::frame;
}

class AvStreamDecoder final : public StreamDecoder
{
public:
    AvStreamDecoder(const CodecTraits &traits, std::unique_ptr<FrameMemory> memory, ContextPtr context,
                    ParserPtr parser)
        : traits_(traits), memory_(std::move(memory)), context_(std::move(context)),
          parser_(std::move(parser)), packet_(av_packet_alloc()), frame_(av_frame_alloc())
    {
        if (packet_ == nullptr || frame_ == nullptr) throw std::bad_alloc();
        begin_order();
    }

    DecodeReport decode(const EncodedBytes &bytes, uint64_t pts, bool end_of_frame, bool end_of_stream,
                        const Deliver &deliver) override
    {
        report_ = {};
        deliver_ = &deliver;
        stopped_ = false;
        if (parser_ == nullptr)
            decode_unit(bytes.buffer(), bytes.data(), bytes.size(), static_cast<int64_t>(pts));
        else
            parse(bytes, static_cast<int64_t>(pts), end_of_frame || end_of_stream);
        if (end_of_stream && !stopped_) drain();
        deliver_ = nullptr;
        return report_;
    }

    void flush() override
    {
        avcodec_flush_buffers(context_.get());
        wait_for_key_ = true;
        if (parser_ != nullptr) begin_anew();
        begin_order();
    }

private:
    void parse(const EncodedBytes &bytes, int64_t pts, bool complete)
    {
        if (complete && open_bytes_ == 0) { // whole frames after all: nothing to look for
            decode_unit(bytes.buffer(), bytes.data(), bytes.size(), pts);
            return;
        }
        const uint8_t *data = bytes.data();
        size_t left = bytes.size();
        int64_t given_pts = pts; // goes to the first frame that begins in this send
        while (left > 0 && !stopped_) {
            const int used = parse_once(data, left, given_pts);
            if (used < 0) return;
            given_pts = AV_NOPTS_VALUE;
            data += used;
            left -= static_cast<size_t>(used);
        }
        if (!complete || stopped_) return;
        parse_once(nullptr, 0, AV_NOPTS_VALUE);
        begin_anew(); // an emptied parser does not find the next frame's start
    }

    void begin_anew()
    {
        open_bytes_ = 0;
        parser_.reset(av_parser_init(traits_.id));
    }

    // One turn of the parser; the bytes it took, or -1 when it can take no more.
    int parse_once(const uint8_t *data, size_t size, int64_t pts)
    {
        uint8_t *unit = nullptr;
        int unit_size = 0;
        const int used = av_parser_parse2(parser_.get(), context_.get(), &unit, &unit_size, data,
                                          static_cast<int>(size), pts, AV_NOPTS_VALUE, 0);
        if (used < 0) return -1;
        open_bytes_ += static_cast<size_t>(used);
        if (unit_size > 0) {
            open_bytes_ -= std::min(open_bytes_, static_cast<size_t>(unit_size));
            decode_parsed_unit(unit, static_cast<size_t>(unit_size), parser_->pts);
        } else if (used == 0 && size > 0) {
            return -1;
        }
        if (open_bytes_ > kMaxOpenFrameBytes) {
            ++report_.errors;
            flush();
            return -1;
        }
        return used;
    }

    // What the parser gives lives until its next turn: the decoder gets a copy, in memory that is used
    // again as long as the decoder does not hold it.
    void decode_parsed_unit(const uint8_t *bytes, size_t size, int64_t pts)
    {
        const size_t needed = size + AV_INPUT_BUFFER_PADDING_SIZE;
        if (unit_ == nullptr || unit_->size < needed || av_buffer_is_writable(unit_.get()) == 0)
            unit_.reset(av_buffer_alloc(needed + needed / 2));
        if (unit_ == nullptr) {
            ++report_.errors;
            wait_for_key_ = true;
            return;
        }
        memcpy(unit_->data, bytes, size);
        memset(unit_->data + size, 0, AV_INPUT_BUFFER_PADDING_SIZE);
        decode_unit(unit_.get(), unit_->data, size, pts);
    }

    void begin_order()
    {
        if (!traits_.may_hide_order) return;
        order_.forget();
        order_parser_.reset(av_parser_init(traits_.id));
        if (order_parser_ == nullptr) throw std::bad_alloc();
        order_parser_->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    }

    // Tell libavcodec how many pictures it is to keep back behind this H.264 access unit.
    void set_order(const uint8_t *bytes, size_t size)
    {
        const H264UnitHeaders headers = read_h264_headers(bytes, size);
        if (headers.is_idr && order_.drains_before_idr()) {
            avcodec_send_packet(context_.get(), nullptr);
            receive_all();
            avcodec_flush_buffers(context_.get());
            order_.drained();
        }
        if (headers.sequence) order_.set_sequence(*headers.sequence);
        uint8_t *unit = nullptr;
        int unit_size = 0;
        av_parser_parse2(order_parser_.get(), context_.get(), &unit, &unit_size, bytes,
                         static_cast<int>(size), AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
        if (order_parser_->picture_structure == AV_PICTURE_STRUCTURE_UNKNOWN) return; // no readable slice
        context_->has_b_frames =
            static_cast<int>(order_.goes_in(unit_number_, order_parser_->output_picture_number,
                                            headers.is_idr, coded_as(order_parser_->picture_structure)));
    }

    // `buffer` holds the bytes and keeps them alive for the decoder.
    void decode_unit(AVBufferRef *buffer, const uint8_t *bytes, size_t size, int64_t pts)
    {
        // The decoder is given numbers instead of the sender's time stamps, which need not differ.
        pts_[++unit_number_ % pts_.size()] = pts;
        const bool waited_for_key = wait_for_key_;
        if (order_parser_ != nullptr) set_order(bytes, size);
        packet_->buf = av_buffer_ref(buffer);
        packet_->data = const_cast<uint8_t *>(bytes); // the decoder only reads
        packet_->size = static_cast<int>(size);
        packet_->pts = static_cast<int64_t>(unit_number_);
        const int sent = avcodec_send_packet(context_.get(), packet_.get());
        av_packet_unref(packet_.get());
        bool failed = sent < 0 && sent != AVERROR_EOF;
        if (receive_all() < 0) failed = true;
        order_.done(static_cast<unsigned>(context_->has_b_frames), failed);
        count_lost(failed || waited_for_key);
        if (failed && !holds_only_side_data(traits_, bytes, size)) {
            ++report_.errors;
            wait_for_key_ = true;
        }
    }

    void drain()
    {
        avcodec_send_packet(context_.get(), nullptr);
        receive_all();
        avcodec_flush_buffers(context_.get());
        order_.drained();
        count_lost(wait_for_key_);
        wait_for_key_ = true;
    }

    // A picture that damage has swallowed, or that none before the first key frame could be, is withheld.
    void count_lost(bool withheld) { (withheld ? report_.withheld : report_.late) += order_.take_late(); }

    // 0, or the decoder's error. Takes everything out, even when nobody wants more.
    int receive_all()
    {
        for (;;) {
            const int result = avcodec_receive_frame(context_.get(), frame_.get());
            if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return 0;
            if (result < 0) return result;
            const auto number = static_cast<uint64_t>(frame_->pts);
            order_.came_out(number);
            frame_->pts = pts_[number % pts_.size()];
            hand_on();
            av_frame_unref(frame_.get());
        }
    }

    void hand_on()
    {
        const bool damaged = frame_->decode_error_flags != 0 || (frame_->flags & AV_FRAME_FLAG_CORRUPT) != 0;
        if (damaged)
            wait_for_key_ = true;
        else if (frame_->key_frame != 0)
            wait_for_key_ = false;
        if (wait_for_key_) {
            ++report_.withheld;
            return;
        }
        if (stopped_) return;
        FramePtr frame = planar_.take(*frame_);
        if (frame == nullptr) {
            ++report_.errors;
            return;
        }
        stopped_ = !(*deliver_)(picture_in(std::move(frame)));
    }

    const CodecTraits &traits_;
    std::unique_ptr<FrameMemory> memory_; // outlives the context
    ContextPtr context_;
    ParserPtr parser_; // null in frame mode
    PacketPtr packet_;
    FramePtr frame_;
    BufferPtr unit_; // a parsed frame
    PlanarFrames planar_;
    DisplayOrder order_;               // of H.264 pictures
    ParserPtr order_parser_;           // reads their order counts; null for the other codecs
    uint64_t unit_number_ = 0;         // of the access unit that went in last
    std::array<int64_t, 64> pts_ = {}; // the senders' time stamps of the newest units
    const Deliver *deliver_ = nullptr;
    DecodeReport report_;
    size_t open_bytes_ = 0; // taken by the parser, not yet given out
    bool wait_for_key_ = true;
    bool stopped_ = false; // nobody wants more of this send
};

} // namespace

bool StreamDecoder::is_available(StreamCodec codec)
{
    return avcodec_find_decoder(traits_of(codec).id) != nullptr;
}

std::unique_ptr<StreamDecoder> StreamDecoder::open(StreamCodec codec, bool whole_frames)
{
    const CodecTraits &traits = traits_of(codec);
    const AVCodec *decoder = avcodec_find_decoder(traits.id);
    if (decoder == nullptr) return nullptr;
    ContextPtr context(avcodec_alloc_context3(decoder));
    if (context == nullptr) return nullptr;
    context->thread_count = 1;
    context->flags |= AV_CODEC_FLAG_LOW_DELAY;
    context->err_recognition = AV_EF_EXPLODE | AV_EF_BITSTREAM | AV_EF_BUFFER;
    context->max_pixels = kMaxPicturePixels;
    context->log_level_offset = AV_LOG_TRACE; // damage is counted, not told on standard error
    auto memory = std::make_unique<FrameMemory>();
    memory->serve(*context);
    if (avcodec_open2(context.get(), decoder, nullptr) < 0) return nullptr;
    ParserPtr parser;
    if (!whole_frames) {
        parser.reset(av_parser_init(traits.id));
        if (parser == nullptr) return nullptr;
    }
    return std::make_unique<AvStreamDecoder>(traits, std::move(memory), std::move(context),
                                             std::move(parser));
}

} // namespace vboard
