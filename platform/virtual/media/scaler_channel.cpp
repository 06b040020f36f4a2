/* scaler_channel.cpp - scaler channels: the queue, the worker and the state changes. */
#include "media/scaler_channel.h"

#include <pthread.h>

#include <array>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "media/call.h"
#include "media/display.h"
#include "media/graph.h"
#include "media/modules.h"
#include "media/picture_scaler.h"
#include "media/venc_channel.h"

namespace vboard
{
namespace
{

constexpr uint32_t kMaxSide = 4096; // pixels
constexpr uint32_t kOwnDepth = 1;   // pictures waiting when no depth was set
constexpr uint32_t kMaxDepth = 64;

struct Channel {
    std::mutex control;
    std::mutex mutex;
    std::condition_variable work; // for the worker: a picture, or the end

    // Guarded by `mutex`.
    bool created = false;
    bool started = false;
    bool quitting = false;
    bool told_too_large = false;
    MI_DIVP_ChnAttr attr = {};
    MI_DIVP_OutputPortAttr output = {};
    uint32_t depth = kOwnDepth;
    std::deque<PictureRefPtr> queue;

    // The worker's own.
    PictureScaler scaler;

    std::thread worker;
    std::atomic<bool> stopping{false}; // the worker is to give up what it holds
    std::atomic<bool> exists{false};   // for the graph, without a lock
    PictureTally tally;
};

std::array<Channel, kScalerChannels> &channels()
{
    // Never destroyed: workers may still run when the process ends without vboard_reset.
    static auto *all = new std::array<Channel, kScalerChannels>;
    return *all;
}

int32_t refuse_channel(uint32_t number)
{
    return refuse(MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL, "scaler channel %u", number);
}

int32_t not_created(uint32_t number)
{
    return refuse(MI_MODULE_DIVP, MI_REASON_ABSENT, "scaler channel %u is not created", number);
}

/* Run `step` on a created channel, under its lock. */
template <typename Step> int32_t with_channel(uint32_t number, Step step)
{
    if (number >= kScalerChannels) return refuse_channel(number);
    Channel &channel = channels()[number];
    const std::lock_guard guard(channel.mutex);
    if (!channel.created) return not_created(number);
    return step(channel);
}

void scale_and_deliver(Channel &channel, uint32_t number, const PictureRefPtr &ref,
                       const MI_DIVP_ChnAttr &attr, const MI_DIVP_OutputPortAttr &output)
{
    auto picture = channel.scaler.scale(*ref, attr, output);
    if (picture == nullptr || channel.stopping.load(std::memory_order_acquire)) return;
    auto scaled = std::make_shared<const PictureRef>(std::move(picture), static_cast<int>(output.width),
                                                     static_cast<int>(output.height), number, channel.tally);
    graph_deliver(MI_MODULE_DIVP, number, scaled, channel.stopping);
}

void run_worker(Channel &channel, uint32_t number)
{
    char name[16];
    snprintf(name, sizeof name, "divp%u", number);
    pthread_setname_np(pthread_self(), name);
    std::unique_lock lock(channel.mutex);
    for (;;) {
        channel.work.wait(lock, [&] { return channel.quitting || !channel.queue.empty(); });
        if (channel.quitting) return;
        PictureRefPtr ref = std::move(channel.queue.front());
        channel.queue.pop_front();
        const MI_DIVP_ChnAttr attr = channel.attr;
        const MI_DIVP_OutputPortAttr output = channel.output;
        lock.unlock();
        scale_and_deliver(channel, number, ref, attr, output);
        ref.reset();
        lock.lock();
    }
}

/* Stop and discard; the caller holds `control`. Returns when the worker holds nothing any more. */
void stop_locked(Channel &channel)
{
    std::thread worker;
    {
        std::unique_lock lock(channel.mutex);
        if (!channel.started) return;
        channel.started = false;
        channel.queue.clear();
        channel.stopping.store(true, std::memory_order_release); // seen by waiting sinks
        channel.quitting = true;
        channel.work.notify_all();
        worker = std::move(channel.worker);
    }
    display_wake_sources();
    venc_wake_sources();
    worker.join();
    const std::lock_guard guard(channel.mutex);
    channel.stopping.store(false, std::memory_order_relaxed);
    channel.quitting = false;
}

int32_t check_attr(const MI_DIVP_ChnAttr &attr)
{
    if (attr.max_width == 0 || attr.max_height == 0 || attr.max_width > kMaxSide ||
        attr.max_height > kMaxSide)
        return refuse(MI_MODULE_DIVP, MI_REASON_BAD_VALUE, "pictures of up to %u x %u", attr.max_width,
                      attr.max_height);
    if (attr.noise_reduction != 0 || attr.deinterlace != 0 || attr.rotation != 0 || attr.mirror != 0 ||
        attr.flip != 0)
        return refuse(MI_MODULE_DIVP, MI_REASON_UNSUPPORTED, "the scaler only scales and crops");
    const MI_Rect &crop = attr.crop;
    if (crop.x % 2 != 0 || crop.y % 2 != 0 || uint32_t{crop.x} + crop.width > attr.max_width ||
        uint32_t{crop.y} + crop.height > attr.max_height)
        return refuse(MI_MODULE_DIVP, MI_REASON_BAD_VALUE, "a part of %u x %u at %u,%u", crop.width,
                      crop.height, crop.x, crop.y);
    return MI_SUCCESS;
}

int32_t check_output(const MI_DIVP_OutputPortAttr &attr)
{
    if (attr.width < 2 || attr.height < 2 || attr.width > kMaxSide || attr.height > kMaxSide ||
        attr.width % 2 != 0 || attr.height % 2 != 0)
        return refuse(MI_MODULE_DIVP, MI_REASON_BAD_VALUE, "output pictures of %u x %u", attr.width,
                      attr.height);
    if (attr.pixel_format != MI_PIXEL_YUV420_SEMIPLANAR || attr.compression != 0)
        return refuse(MI_MODULE_DIVP, MI_REASON_UNSUPPORTED, "pixel format %u with compression %u",
                      attr.pixel_format, attr.compression);
    return MI_SUCCESS;
}

} // namespace

bool scaler_channel_exists(uint32_t number)
{
    return number < kScalerChannels && channels()[number].exists.load(std::memory_order_acquire);
}

int32_t scaler_create(uint32_t number, const MI_DIVP_ChnAttr *attr)
{
    if (number >= kScalerChannels) return refuse_channel(number);
    if (attr == nullptr) return refuse(MI_MODULE_DIVP, MI_REASON_NULL_POINTER, "no attributes");
    if (!sys_is_up()) return refuse(MI_MODULE_DIVP, MI_REASON_NOT_READY, "the media system is not started");
    const int32_t checked = check_attr(*attr);
    if (checked != MI_SUCCESS) return checked;
    Channel &channel = channels()[number];
    const std::lock_guard control(channel.control);
    const std::lock_guard guard(channel.mutex);
    if (channel.created) return refuse(MI_MODULE_DIVP, MI_REASON_EXISTS, "scaler channel %u", number);
    channel.attr = *attr;
    channel.output = {};
    channel.depth = kOwnDepth;
    channel.told_too_large = false;
    channel.created = true;
    channel.exists.store(true, std::memory_order_release);
    return MI_SUCCESS;
}

int32_t scaler_destroy(uint32_t number)
{
    if (number >= kScalerChannels) return refuse_channel(number);
    Channel &channel = channels()[number];
    const std::lock_guard control(channel.control);
    return with_channel(number, [&](Channel &) -> int32_t {
        if (channel.started)
            return refuse(MI_MODULE_DIVP, MI_REASON_NOT_PERMITTED, "scaler channel %u is not stopped",
                          number);
        channel.created = false;
        channel.exists.store(false, std::memory_order_release);
        return MI_SUCCESS;
    });
}

int32_t scaler_start(uint32_t number)
{
    if (number >= kScalerChannels) return refuse_channel(number);
    Channel &channel = channels()[number];
    const std::lock_guard control(channel.control);
    return with_channel(number, [&](Channel &) -> int32_t {
        if (channel.started) return MI_SUCCESS;
        if (channel.output.width == 0)
            return refuse(MI_MODULE_DIVP, MI_REASON_NOT_READY, "scaler channel %u has no output size",
                          number);
        channel.worker = std::thread([&channel, number] { run_worker(channel, number); });
        channel.started = true;
        return MI_SUCCESS;
    });
}

int32_t scaler_stop(uint32_t number)
{
    if (number >= kScalerChannels) return refuse_channel(number);
    Channel &channel = channels()[number];
    const std::lock_guard control(channel.control);
    if (!channel.exists.load(std::memory_order_relaxed)) return not_created(number);
    stop_locked(channel);
    return MI_SUCCESS;
}

int32_t scaler_set_output(uint32_t number, uint32_t port, const MI_DIVP_OutputPortAttr *attr)
{
    if (attr == nullptr) return refuse(MI_MODULE_DIVP, MI_REASON_NULL_POINTER, "no attributes");
    return with_channel(number, [&](Channel &channel) -> int32_t {
        if (port != 0) return refuse(MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL, "output port %u", port);
        const int32_t checked = check_output(*attr);
        if (checked == MI_SUCCESS) channel.output = *attr;
        return checked;
    });
}

int32_t scaler_get_output(uint32_t number, uint32_t port, MI_DIVP_OutputPortAttr *attr)
{
    if (attr == nullptr) return refuse(MI_MODULE_DIVP, MI_REASON_NULL_POINTER, "no record to fill");
    return with_channel(number, [&](Channel &channel) -> int32_t {
        if (port != 0) return refuse(MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL, "output port %u", port);
        *attr = channel.output;
        return MI_SUCCESS;
    });
}

int32_t scaler_set_depth(uint32_t number, uint32_t port, uint32_t queue_depth)
{
    return with_channel(number, [&](Channel &channel) -> int32_t {
        if (port != 0) return refuse(MI_MODULE_DIVP, MI_REASON_BAD_CHANNEL, "output port %u", port);
        if (queue_depth > kMaxDepth)
            return refuse(MI_MODULE_DIVP, MI_REASON_BAD_VALUE, "a queue of %u pictures", queue_depth);
        channel.depth = queue_depth == 0 ? kOwnDepth : queue_depth;
        while (channel.queue.size() > channel.depth)
            channel.queue.pop_front();
        return MI_SUCCESS;
    });
}

void scaler_channel_take(uint32_t number, const PictureRefPtr &ref, const std::atomic<bool> &)
{
    Channel &channel = channels()[number];
    const std::lock_guard guard(channel.mutex);
    if (!channel.started) return;
    if (static_cast<uint32_t>(ref->width()) > channel.attr.max_width ||
        static_cast<uint32_t>(ref->height()) > channel.attr.max_height) {
        if (!channel.told_too_large)
            warn("scaler channel %u was made for pictures up to %u x %u, and gets %d x %d", number,
                 channel.attr.max_width, channel.attr.max_height, ref->width(), ref->height());
        channel.told_too_large = true;
        return;
    }
    if (channel.queue.size() >= channel.depth) channel.queue.pop_front();
    channel.queue.push_back(ref);
    channel.work.notify_one();
}

void scaler_reset()
{
    for (Channel &channel : channels()) {
        const std::lock_guard control(channel.control);
        stop_locked(channel);
        const std::lock_guard guard(channel.mutex);
        channel.created = false;
        channel.exists.store(false, std::memory_order_release);
    }
}

} // namespace vboard
