/* key_pictures.cpp - see key_pictures.h. */
#include "play/key_pictures.h"

#include <cstring>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "wall/jpeg.h"

namespace nvrec
{
namespace
{

struct FreeKeyFrame {
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
};
struct FreeKeyPacket {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};
struct FreeKeyDecoder {
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
};

/* One packet in, one picture out: once the stream is ended, the decoder holds nothing back. */
std::unique_ptr<AVFrame, FreeKeyFrame> decode(const std::vector<uint8_t> &bytes, Codec codec)
{
    const AVCodec *decoder = avcodec_find_decoder(static_cast<AVCodecID>(traits_of(codec).av_id));
    if (!decoder) return nullptr;
    const std::unique_ptr<AVCodecContext, FreeKeyDecoder> context(avcodec_alloc_context3(decoder));
    const std::unique_ptr<AVPacket, FreeKeyPacket> packet(av_packet_alloc());
    std::unique_ptr<AVFrame, FreeKeyFrame> frame(av_frame_alloc());
    if (!context || !packet || !frame) return nullptr;
    context->thread_count = 1;
    if (avcodec_open2(context.get(), decoder, nullptr) < 0) return nullptr;
    if (av_new_packet(packet.get(), static_cast<int>(bytes.size())) < 0) return nullptr;
    std::memcpy(packet->data, bytes.data(), bytes.size());
    if (avcodec_send_packet(context.get(), packet.get()) < 0) return nullptr;
    if (avcodec_send_packet(context.get(), nullptr) < 0) return nullptr;
    if (avcodec_receive_frame(context.get(), frame.get()) < 0) return nullptr;
    return frame;
}

} // namespace

void KeyPictures::note(int channel, const AccessUnit &unit, Codec codec)
{
    if (!unit.key || channel < 0 || static_cast<size_t>(channel) >= kept_.size()) return;
    const std::scoped_lock guard(lock_);
    Kept &kept = kept_[static_cast<size_t>(channel)];
    kept.bytes.assign(unit.bytes.begin(), unit.bytes.end());
    kept.codec = codec;
    came_.notify();
}

bool KeyPictures::wait_for(int channel, Clock::time_point until)
{
    if (channel < 0 || static_cast<size_t>(channel) >= kept_.size()) return false;
    std::unique_lock guard(lock_);
    return came_.wait_until(guard, until, [&] { return !kept_[static_cast<size_t>(channel)].bytes.empty(); });
}

std::optional<StillPicture> KeyPictures::take(int channel) const
{
    if (channel < 0 || static_cast<size_t>(channel) >= kept_.size()) return std::nullopt;
    Kept kept;
    {
        const std::scoped_lock guard(lock_);
        kept = kept_[static_cast<size_t>(channel)];
    }
    if (kept.bytes.empty()) return std::nullopt;
    const auto frame = decode(kept.bytes, kept.codec);
    if (!frame) return std::nullopt;
    auto jpeg = jpeg_of_picture(*frame);
    if (!jpeg) return std::nullopt;
    return StillPicture{frame->width, frame->height, std::move(*jpeg)};
}

} // namespace nvrec
