/* a_law.cpp - libavcodec's decoder, asked once for every byte there is. */
#include "host/a_law.h"

#include <cstring>
#include <optional>

#include "host/av_handles.h"

namespace vboard
{
namespace
{

ContextPtr open_decoder()
{
    const AVCodec *codec = avcodec_find_decoder(AV_CODEC_ID_PCM_ALAW);
    ContextPtr context(codec != nullptr ? avcodec_alloc_context3(codec) : nullptr);
    if (context == nullptr) return nullptr;
    context->sample_rate = 8000;
    av_channel_layout_default(&context->ch_layout, 1);
    if (avcodec_open2(context.get(), codec, nullptr) < 0) return nullptr;
    return context;
}

std::optional<ALawTable> decode_every_byte()
{
    ALawTable table;
    const ContextPtr decoder = open_decoder();
    const PacketPtr packet(av_packet_alloc());
    const FramePtr frame(av_frame_alloc());
    if (decoder == nullptr || packet == nullptr || frame == nullptr) return std::nullopt;
    if (av_new_packet(packet.get(), static_cast<int>(table.size())) < 0) return std::nullopt;
    for (size_t i = 0; i < table.size(); ++i)
        packet->data[i] = static_cast<uint8_t>(i);
    if (avcodec_send_packet(decoder.get(), packet.get()) < 0) return std::nullopt;
    if (avcodec_receive_frame(decoder.get(), frame.get()) < 0) return std::nullopt;
    if (frame->format != AV_SAMPLE_FMT_S16 || frame->nb_samples != static_cast<int>(table.size()))
        return std::nullopt;
    memcpy(table.data(), frame->data[0], sizeof table);
    return table;
}

} // namespace

const ALawTable *a_law_table()
{
    static const std::optional<ALawTable> table = decode_every_byte();
    return table ? &*table : nullptr;
}

} // namespace vboard
