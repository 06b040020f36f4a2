/* stream_codecs.h - the codecs that the board decodes, as libavcodec and their streams know them. */
#ifndef VBOARD_STREAM_CODECS_H
#define VBOARD_STREAM_CODECS_H

#include <cstddef>
#include <cstdint>

#include "host/av_handles.h"
#include "host/stream_decoder.h"

namespace vboard
{

/*
 * What the codecs differ in. Units begin with a start code and a byte that holds their type; those
 * from `first_side` to `last_side` are parameter sets and messages without picture data.
 */
struct CodecTraits {
    StreamCodec codec;
    AVCodecID id;
    unsigned type_shift, type_mask; // of a unit's type; no mask: the stream has no units
    unsigned first_side, last_side;
    bool may_hide_order; // reordering need not be stated: display_order.h
};

const CodecTraits &traits_of(StreamCodec codec);

/*
 * Is this piece of a stream nothing but parameter sets and messages? Sent on their own they make the
 * decoder complain without any damage.
 */
bool holds_only_side_data(const CodecTraits &traits, const uint8_t *bytes, size_t size);

} // namespace vboard

#endif
