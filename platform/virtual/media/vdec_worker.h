/*
 * vdec_worker.h - what a decoder channel consists of, and its worker: bytes in, pictures to whoever is
 * bound. The calls that change a channel are in vdec_channel.cpp, the locks in vdec_channel.h.
 */
#ifndef VBOARD_VDEC_WORKER_H
#define VBOARD_VDEC_WORKER_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "host/stream_decoder.h"
#include "media/clock.h"
#include "media/picture_ref.h"
#include "mi_vdec.h"
#include "vboard.h"

namespace vboard
{

/* One send, waiting for the worker. */
struct QueuedSend {
    EncodedBytes bytes;
    uint64_t pts;
    bool end_of_frame;
    bool end_of_stream;
};

struct DecoderChannel : Waitable { // `changed`: room, idleness or the state has changed
    std::mutex control;
    std::condition_variable work; // for the worker: something to decode, or the end

    // Guarded by the Waitable's mutex.
    bool created = false;
    bool started = false;
    bool quitting = false;
    bool busy = false;       // the worker is decoding or delivering
    bool delivering = false; // the worker holds a picture that no sink has taken yet
    bool ever_created = false;
    uint64_t stream_number = 0; // counts starts: a waiting sender belongs to one of them
    MI_VDEC_ChnAttr attr = {};
    MI_VDEC_OutputPortAttr output = {};
    std::deque<QueuedSend> queue;
    uint32_t left_bytes = 0;  // of the queue, and of what the worker is busy with
    uint32_t left_frames = 0; // likewise
    vboard_decoder_stat counters = {};

    // The worker's own while it is busy, otherwise the control lock's. Null until bytes come.
    std::unique_ptr<StreamDecoder> decoder;

    std::thread worker;
    std::atomic<bool> stopping{false}; // the worker is to give up what it holds
    std::atomic<bool> exists{false};   // for the graph, without a lock
    PictureTally tally;
};

/* None for a number, of enum MI_VDEC_Codec, that is no codec. */
std::optional<StreamCodec> stream_codec(uint32_t number);

/* The worker's thread: returns when the channel is quitting. */
void run_decoder_worker(DecoderChannel &channel, uint32_t number);

/* Stop and discard; the caller holds `control`. Returns when the worker holds nothing any more. */
void stop_decoder(DecoderChannel &channel);

/* End the worker's thread; the caller holds `control`. */
void end_decoder_worker(DecoderChannel &channel);

} // namespace vboard

#endif
