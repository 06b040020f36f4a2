/*
 * stream_decoder.h - one elementary stream to pictures, through libavcodec with one thread.
 *
 * Only good pictures come out. After damage (the decoder reports an error, or marks a picture as
 * concealed or corrupt) pictures are withheld until the next key frame; so are pictures before the
 * first key frame. H.264 pictures come out in display order, and at once where their order allows it
 * (display_order.h). Not thread-safe: one thread at a time.
 */
#ifndef VBOARD_STREAM_DECODER_H
#define VBOARD_STREAM_DECODER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "host/encoded_bytes.h"
#include "host/picture.h"

namespace vboard
{

enum class StreamCodec { h264, h265, jpeg };
constexpr size_t kStreamCodecs = 3;

/* What became of one send. */
struct DecodeReport {
    unsigned errors = 0;   // errors that the decoder reported
    unsigned withheld = 0; // pictures that were damaged, or came before a key frame
    unsigned late = 0;     // pictures lost to the order of display: decoded too late, or swallowed
};

class StreamDecoder
{
public:
    /* Where good pictures go, in display order; false = stop decoding this send. */
    using Deliver = std::function<bool(PicturePtr)>;

    /* Does this PC's libavcodec decode it? */
    static bool is_available(StreamCodec codec);

    /* Null when the decoder cannot be had. `whole_frames`: every send is one whole frame. */
    static std::unique_ptr<StreamDecoder> open(StreamCodec codec, bool whole_frames);

    virtual ~StreamDecoder() = default;

    /*
     * Decode one send. `end_of_frame` completes a frame that a byte stream leaves open;
     * `end_of_stream` also brings out the pictures kept back for reordering.
     */
    virtual DecodeReport decode(const EncodedBytes &bytes, uint64_t pts, bool end_of_frame,
                                bool end_of_stream, const Deliver &deliver) = 0;

    /* Forget everything but the parameter sets; the next picture out is a key frame. */
    virtual void flush() = 0;
};

} // namespace vboard

#endif
