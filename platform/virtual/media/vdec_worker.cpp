/* vdec_worker.cpp - see vdec_worker.h. */
#include "media/vdec_worker.h"

#include <pthread.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "media/display.h"
#include "media/graph.h"

namespace vboard
{
namespace
{

struct CodecNumber {
    uint32_t number; // enum MI_VDEC_Codec
    StreamCodec codec;
};
constexpr CodecNumber kCodecNumbers[] = {
    {MI_VDEC_CODEC_H264, StreamCodec::h264},
    {MI_VDEC_CODEC_H265, StreamCodec::h265},
    {MI_VDEC_CODEC_JPEG, StreamCodec::jpeg},
};
static_assert(std::size(kCodecNumbers) == kStreamCodecs);

// The output port only ever makes pictures smaller, each dimension for itself.
int output_dimension(int stream, uint16_t set)
{
    return set == 0 ? stream : std::min<int>(stream, set);
}

bool deliver(DecoderChannel &channel, uint32_t number, PicturePtr picture)
{
    if (channel.stopping.load(std::memory_order_acquire)) return false;
    int width = picture->view.width;
    int height = picture->view.height;
    {
        const std::lock_guard guard(channel.mutex);
        ++channel.counters.decoded;
        channel.counters.width = static_cast<uint32_t>(width);
        channel.counters.height = static_cast<uint32_t>(height);
        channel.delivering = true;
        width = output_dimension(width, channel.output.width);
        height = output_dimension(height, channel.output.height);
    }
    auto ref = std::make_shared<const PictureRef>(std::move(picture), width, height, number, channel.tally);
    graph_deliver(MI_MODULE_VDEC, number, ref, channel.stopping);
    ref.reset();
    const std::lock_guard guard(channel.mutex);
    channel.delivering = false;
    return !channel.stopping.load(std::memory_order_relaxed);
}

// The decoder is opened by the first bytes that need it: a recorder creates channels for all cameras,
// and again at every layout change, long before anything is sent to them.
DecodeReport decode(DecoderChannel &channel, const QueuedSend &send, const StreamDecoder::Deliver &take)
{
    if (channel.decoder == nullptr)
        channel.decoder = StreamDecoder::open(stream_codec(channel.attr.codec).value(),
                                              channel.attr.video_mode == MI_VDEC_MODE_FRAME);
    if (channel.decoder == nullptr) return {.errors = 1}; // no memory
    return channel.decoder->decode(send.bytes, send.pts, send.end_of_frame, send.end_of_stream, take);
}

} // namespace

std::optional<StreamCodec> stream_codec(uint32_t number)
{
    for (const CodecNumber &row : kCodecNumbers)
        if (row.number == number) return row.codec;
    return std::nullopt;
}

void run_decoder_worker(DecoderChannel &channel, uint32_t number)
{
    char name[16];
    snprintf(name, sizeof name, "vdec%u", number);
    pthread_setname_np(pthread_self(), name);
    const StreamDecoder::Deliver take = [&](PicturePtr picture) {
        return deliver(channel, number, std::move(picture));
    };
    std::unique_lock lock(channel.mutex);
    for (;;) {
        channel.work.wait(lock, [&] { return channel.quitting || !channel.queue.empty(); });
        if (channel.quitting) return;
        QueuedSend send = std::move(channel.queue.front());
        channel.queue.pop_front();
        channel.busy = true;
        lock.unlock();

        graph_wait_room(MI_MODULE_VDEC, number, channel.stopping);
        DecodeReport report;
        if (!channel.stopping.load(std::memory_order_acquire)) report = decode(channel, send, take);

        lock.lock();
        channel.busy = false;
        channel.left_bytes -= static_cast<uint32_t>(send.bytes.size());
        --channel.left_frames;
        channel.counters.decode_errors += report.errors;
        channel.counters.damaged += report.withheld;
        channel.counters.late += report.late;
        channel.changed.notify_all();
    }
}

void stop_decoder(DecoderChannel &channel)
{
    std::unique_lock lock(channel.mutex);
    if (!channel.started) return;
    channel.started = false;
    ++channel.counters.resets;
    for (const QueuedSend &send : channel.queue) {
        channel.left_bytes -= static_cast<uint32_t>(send.bytes.size());
        --channel.left_frames;
    }
    channel.queue.clear();
    channel.stopping.store(true, std::memory_order_release); // seen by deliver and waiting sinks
    channel.changed.notify_all(); // senders that wait for room: their send is refused
    lock.unlock();
    display_wake_sources();
    lock.lock();
    channel.changed.wait(lock, [&] { return !channel.busy; });
    channel.stopping.store(false, std::memory_order_relaxed);
    if (channel.decoder != nullptr) channel.decoder->flush();
}

void end_decoder_worker(DecoderChannel &channel)
{
    std::thread worker;
    {
        const std::lock_guard guard(channel.mutex);
        channel.quitting = true;
        worker = std::move(channel.worker);
        channel.work.notify_all();
    }
    if (worker.joinable()) worker.join();
}

} // namespace vboard
