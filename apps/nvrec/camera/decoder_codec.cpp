/* decoder_codec.cpp - see decoder_codec.h. */
#include "camera/decoder_codec.h"

#include <array>
#include <mutex>

#include "nvrhal.h"

namespace nvrec
{
namespace
{

struct Decoder {
    Codec codec = Codec::kH265; /* it was made for                  */
    Codec live = Codec::kH265;  /* of the camera, as intake knows it */
};

std::mutex lock; /* guards what follows */
std::array<Decoder, NVRHAL_MAX_DECODERS> decoders;

} // namespace

void note_live_codec(int channel, Codec codec)
{
    const std::scoped_lock guard(lock);
    Decoder &decoder = decoders.at(static_cast<size_t>(channel));
    if (decoder.live == codec) return;
    decoder.live = decoder.codec = codec;
}

void match_decoder(int channel, Codec codec)
{
    {
        const std::scoped_lock guard(lock);
        Decoder &decoder = decoders.at(static_cast<size_t>(channel));
        if (decoder.codec == codec) return;
        decoder.codec = codec;
    }
    vdec_recreate(static_cast<uint32_t>(channel), static_cast<uint32_t>(codec));
}

} // namespace nvrec
