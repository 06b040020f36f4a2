/* vdec_channel.cpp - decoder channels: the queue, the worker and the state changes. */
#include "media/vdec_channel.h"

#include <pthread.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <deque>
#include <iterator>
#include <memory>
#include <optional>
#include <thread>

#include "host/stream_decoder.h"
#include "media/call.h"
#include "media/clock.h"
#include "media/display.h"
#include "media/graph.h"
#include "media/modules.h"

namespace vboard
{
namespace
{

constexpr size_t kMostQueuedSends = 4096; // however small: what a send costs beside its bytes is bounded too

/* One send, waiting for the worker. */
struct QueuedSend {
    EncodedBytes bytes;
    uint64_t pts;
    bool end_of_frame;
    bool end_of_stream;
};

struct Channel : Waitable { // `changed`: room, idleness or the state has changed
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

std::array<Channel, kDecoderChannels> &channels()
{
    // Never destroyed: workers may still run when the process ends without vboard_reset.
    static auto *all = new std::array<Channel, kDecoderChannels>;
    return *all;
}

int32_t no_channel(uint32_t number)
{
    return refuse(MI_MODULE_VDEC, MI_REASON_BAD_CHANNEL, "decoder channel %u", number);
}

int32_t not_created(uint32_t number)
{
    return refuse(MI_MODULE_VDEC, MI_REASON_ABSENT, "decoder channel %u is not created", number);
}

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

// None for a number that is no codec.
std::optional<StreamCodec> stream_codec(uint32_t number)
{
    for (const CodecNumber &row : kCodecNumbers)
        if (row.number == number) return row.codec;
    return std::nullopt;
}

// The output port only ever makes pictures smaller, each dimension for itself.
int output_dimension(int stream, uint16_t set)
{
    return set == 0 ? stream : std::min<int>(stream, set);
}

bool deliver(Channel &channel, uint32_t number, PicturePtr picture)
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
DecodeReport decode(Channel &channel, const QueuedSend &send, const StreamDecoder::Deliver &take)
{
    if (channel.decoder == nullptr)
        channel.decoder = StreamDecoder::open(stream_codec(channel.attr.codec).value(),
                                              channel.attr.video_mode == MI_VDEC_MODE_FRAME);
    if (channel.decoder == nullptr) return {.errors = 1}; // no memory
    return channel.decoder->decode(send.bytes, send.pts, send.end_of_frame, send.end_of_stream, take);
}

void run_worker(Channel &channel, uint32_t number)
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

// Stop and discard; the caller holds `control`. Returns when the worker holds nothing any more.
void stop_locked(Channel &channel)
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

void end_worker(Channel &channel)
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

bool wait_idle(Channel &channel, int32_t timeout_ms)
{
    std::unique_lock lock(channel.mutex);
    return wait_real(channel.changed, lock, timeout_ms,
                     [&] { return channel.queue.empty() && !channel.busy; });
}

int32_t check_attr(const MI_VDEC_ChnAttr &attr)
{
    if (!stream_codec(attr.codec)) return refuse(MI_MODULE_VDEC, MI_REASON_BAD_VALUE, "codec %u", attr.codec);
    if (attr.video_mode > MI_VDEC_MODE_FRAME)
        return refuse(MI_MODULE_VDEC, MI_REASON_BAD_VALUE, "video mode %u", attr.video_mode);
    if (attr.stream_buffer_bytes == 0 || attr.stream_buffer_bytes > (64u << 20))
        return refuse(MI_MODULE_VDEC, MI_REASON_BAD_VALUE, "a bit-stream buffer of %u bytes",
                      attr.stream_buffer_bytes);
    return MI_SUCCESS;
}

} // namespace

bool vdec_exists(uint32_t number)
{
    return number < kDecoderChannels && channels()[number].exists.load(std::memory_order_acquire);
}

int32_t vdec_create(uint32_t number, const MI_VDEC_ChnAttr *attr)
{
    if (number >= kDecoderChannels) return no_channel(number);
    if (attr == nullptr) return refuse(MI_MODULE_VDEC, MI_REASON_NULL_POINTER, "no attributes");
    if (!sys_is_up()) return refuse(MI_MODULE_VDEC, MI_REASON_NOT_READY, "the media system is not started");
    const int32_t checked = check_attr(*attr);
    if (checked != MI_SUCCESS) return checked;
    Channel &channel = channels()[number];
    const std::lock_guard control(channel.control);
    if (channel.exists.load(std::memory_order_relaxed))
        return refuse(MI_MODULE_VDEC, MI_REASON_EXISTS, "decoder channel %u", number);
    if (!StreamDecoder::is_available(stream_codec(attr->codec).value()))
        return refuse(MI_MODULE_VDEC, MI_REASON_FAULT, "libavcodec has no decoder for codec %u", attr->codec);
    const std::lock_guard guard(channel.mutex);
    if (channel.ever_created) ++channel.counters.recreations;
    channel.ever_created = true;
    channel.attr = *attr;
    channel.output = {};
    channel.quitting = false;
    channel.worker = std::thread([&channel, number] { run_worker(channel, number); });
    channel.created = true;
    channel.exists.store(true, std::memory_order_release);
    return MI_SUCCESS;
}

int32_t vdec_destroy(uint32_t number)
{
    if (number >= kDecoderChannels) return no_channel(number);
    Channel &channel = channels()[number];
    const std::lock_guard control(channel.control);
    {
        const std::lock_guard guard(channel.mutex);
        if (!channel.created) return not_created(number);
        if (channel.started)
            return refuse(MI_MODULE_VDEC, MI_REASON_NOT_PERMITTED, "decoder channel %u is not stopped",
                          number);
        channel.created = false;
        channel.exists.store(false, std::memory_order_release);
    }
    end_worker(channel);
    channel.decoder.reset();
    return MI_SUCCESS;
}

int32_t vdec_start(uint32_t number)
{
    if (number >= kDecoderChannels) return no_channel(number);
    Channel &channel = channels()[number];
    const std::lock_guard control(channel.control);
    const std::lock_guard guard(channel.mutex);
    if (!channel.created) return not_created(number);
    if (channel.started) return MI_SUCCESS;
    channel.started = true;
    ++channel.stream_number;
    return MI_SUCCESS;
}

int32_t vdec_stop(uint32_t number)
{
    if (number >= kDecoderChannels) return no_channel(number);
    Channel &channel = channels()[number];
    const std::lock_guard control(channel.control);
    if (!channel.exists.load(std::memory_order_relaxed)) return not_created(number);
    stop_locked(channel);
    return MI_SUCCESS;
}

int32_t vdec_get_attr(uint32_t number, MI_VDEC_ChnAttr *attr)
{
    if (number >= kDecoderChannels) return no_channel(number);
    if (attr == nullptr) return refuse(MI_MODULE_VDEC, MI_REASON_NULL_POINTER, "no record to fill");
    Channel &channel = channels()[number];
    const std::lock_guard guard(channel.mutex);
    if (!channel.created) return not_created(number);
    *attr = channel.attr;
    return MI_SUCCESS;
}

int32_t vdec_get_stat(uint32_t number, MI_VDEC_ChnStat *stat)
{
    if (number >= kDecoderChannels) return no_channel(number);
    if (stat == nullptr) return refuse(MI_MODULE_VDEC, MI_REASON_NULL_POINTER, "no record to fill");
    Channel &channel = channels()[number];
    const std::lock_guard guard(channel.mutex);
    if (!channel.created) return not_created(number);
    *stat = {channel.left_bytes, channel.left_frames, channel.delivering ? 1u : 0u};
    return MI_SUCCESS;
}

int32_t vdec_send(uint32_t number, const MI_VDEC_Stream *stream, int32_t timeout_ms)
{
    if (number >= kDecoderChannels) return no_channel(number);
    Channel &channel = channels()[number];
    if (stream == nullptr || stream->address == nullptr) {
        const std::lock_guard guard(channel.mutex);
        ++channel.counters.sends_refused;
        return refuse(MI_MODULE_VDEC, MI_REASON_NULL_POINTER, "no encoded bytes for channel %u", number);
    }
    const int64_t deadline_us = clock_deadline_us(timeout_ms);
    const uint32_t length = stream->length_bytes;
    std::unique_lock lock(channel.mutex);
    const auto refused = [&](MI_Reason reason, const char *why) {
        ++channel.counters.sends_refused;
        return refuse(MI_MODULE_VDEC, reason, "%u bytes for channel %u: %s", length, number, why);
    };
    if (!channel.created) return refused(MI_REASON_ABSENT, "it is not created");
    if (!channel.started) return refused(MI_REASON_NOT_PERMITTED, "it is stopped");
    if (length == 0) return refused(MI_REASON_BAD_VALUE, "nothing to send");
    if (length > channel.attr.stream_buffer_bytes)
        return refused(MI_REASON_BAD_VALUE, "more than its whole bit-stream buffer");

    const uint64_t stream_number = channel.stream_number;
    const auto stopped = [&] { return !channel.started || channel.stream_number != stream_number; };
    const auto has_room = [&] {
        return channel.attr.stream_buffer_bytes - channel.left_bytes >= length &&
               channel.queue.size() < kMostQueuedSends;
    };
    if (!wait_until(channel, lock, deadline_us, [&] { return stopped() || has_room(); }))
        return refused(MI_REASON_BUFFER_FULL, "no room in time");
    if (stopped()) return refused(MI_REASON_NOT_PERMITTED, "it was stopped meanwhile");

    EncodedBytes bytes(stream->address, length);
    if (!bytes) return refused(MI_REASON_NO_MEMORY, "no memory");
    channel.queue.push_back(
        {std::move(bytes), stream->pts, stream->end_of_frame != 0, stream->end_of_stream != 0});
    channel.left_bytes += length;
    ++channel.left_frames;
    ++channel.counters.frames_sent;
    channel.counters.bytes_sent += length;
    lock.unlock();
    channel.work.notify_one();
    return MI_SUCCESS;
}

int32_t vdec_set_output(uint32_t number, const MI_VDEC_OutputPortAttr *attr)
{
    if (number >= kDecoderChannels) return no_channel(number);
    if (attr == nullptr) return refuse(MI_MODULE_VDEC, MI_REASON_NULL_POINTER, "no attributes");
    Channel &channel = channels()[number];
    const std::lock_guard guard(channel.mutex);
    if (!channel.created) return not_created(number);
    channel.output = *attr;
    return MI_SUCCESS;
}

int32_t vdec_get_output(uint32_t number, MI_VDEC_OutputPortAttr *attr)
{
    if (number >= kDecoderChannels) return no_channel(number);
    if (attr == nullptr) return refuse(MI_MODULE_VDEC, MI_REASON_NULL_POINTER, "no record to fill");
    Channel &channel = channels()[number];
    const std::lock_guard guard(channel.mutex);
    if (!channel.created) return not_created(number);
    *attr = channel.output;
    return MI_SUCCESS;
}

int vdec_read_counters(uint32_t number, vboard_decoder_stat *stat)
{
    if (number >= kDecoderChannels || stat == nullptr)
        return refuse_plainly("no counters of decoder channel %u", number);
    display_settle_fates();
    Channel &channel = channels()[number];
    const std::lock_guard guard(channel.mutex);
    *stat = channel.counters;
    stat->created = channel.created ? 1 : 0;
    stat->started = channel.started ? 1 : 0;
    stat->codec = channel.attr.codec;
    stat->shown = channel.tally.shown.load();
    stat->dropped = channel.tally.dropped.load();
    return 0;
}

int vdec_wait_idle(uint32_t number, int32_t timeout_ms)
{
    if (!vdec_exists(number)) return refuse_plainly("decoder channel %u is not created", number);
    return wait_idle(channels()[number], timeout_ms) ? 0 : -1;
}

int vdec_wait_all_idle(int32_t timeout_ms)
{
    using std::chrono::steady_clock;
    const auto until = steady_clock::now() + std::chrono::milliseconds(std::max(timeout_ms, 0));
    for (uint32_t number = 0; number < kDecoderChannels; ++number) {
        if (!vdec_exists(number)) continue;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - steady_clock::now());
        const auto left_ms = static_cast<int32_t>(std::max<int64_t>(left.count(), 0));
        if (!wait_idle(channels()[number], timeout_ms < 0 ? timeout_ms : left_ms))
            return refuse_plainly("decoder channel %u is still at work", number);
    }
    return 0;
}

void vdec_reset()
{
    for (Channel &channel : channels()) {
        const std::lock_guard control(channel.control);
        if (!channel.ever_created) continue;
        if (channel.exists.load(std::memory_order_relaxed)) {
            stop_locked(channel);
            channel.exists.store(false, std::memory_order_release);
            end_worker(channel);
        }
        const std::lock_guard guard(channel.mutex);
        channel.decoder.reset();
        channel.created = false;
        channel.ever_created = false;
        channel.attr = {};
        channel.counters = {};
        channel.tally.shown = 0;
        channel.tally.dropped = 0;
    }
}

} // namespace vboard
