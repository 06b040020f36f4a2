/* vdec_channel.cpp - decoder channels: the queue and the state changes. */
#include "media/vdec_channel.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "media/call.h"
#include "media/clock.h"
#include "media/display.h"
#include "media/modules.h"
#include "media/vdec_worker.h"

namespace vboard
{
namespace
{

constexpr size_t kMostQueuedSends = 4096; // however small: what a send costs beside its bytes is bounded too

using Channel = DecoderChannel;

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
    channel.worker = std::thread([&channel, number] { run_decoder_worker(channel, number); });
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
    end_decoder_worker(channel);
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
    stop_decoder(channel);
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

int vdec_read_backlog(uint32_t number, uint32_t *bytes, uint32_t *sends)
{
    if (number >= kDecoderChannels || bytes == nullptr || sends == nullptr)
        return refuse_plainly("no backlog of decoder channel %u", number);
    Channel &channel = channels()[number];
    const std::lock_guard guard(channel.mutex);
    *bytes = channel.created ? channel.left_bytes : 0;
    *sends = channel.created ? channel.left_frames : 0;
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
            stop_decoder(channel);
            channel.exists.store(false, std::memory_order_release);
            end_decoder_worker(channel);
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
