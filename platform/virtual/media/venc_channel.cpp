/* venc_channel.cpp - encoder channels: the worker, the stream buffer and the state changes. */
#include "media/venc_channel.h"

#include <pthread.h>

#include <array>
#include <cstdio>
#include <thread>
#include <utility>

#include "host/jpeg_encoder.h"
#include "media/call.h"
#include "media/clock.h"
#include "media/encoded_images.h"
#include "media/modules.h"

namespace vboard
{
namespace
{

constexpr uint32_t kMaxSide = 4096; // pixels
constexpr uint32_t kMaxBufferBytes = 64u << 20;
constexpr uint32_t kOwnQuality = 90; // until one is set
constexpr uint32_t kMaxQuality = 99;

struct Channel : Waitable { // `changed`: an image, or the state has changed
    std::mutex control;
    std::condition_variable work; // for the worker: a picture and room for its image, or the end
    std::condition_variable room; // for sources: the input is free, or a reason to stop waiting

    // Guarded by the Waitable's mutex.
    bool created = false;
    bool receiving = false;
    bool quitting = false;
    uint64_t resets = 0; // an image begun before a reset is thrown away
    MI_VENC_ChnAttr attr = {};
    MI_VENC_JpegParam jpeg = {};
    PictureRefPtr input; // to be encoded next
    EncodedImages images;

    std::thread worker;
    std::atomic<bool> exists{false}; // for the graph, without a lock
};

std::array<Channel, kEncoderChannels> &channels()
{
    // Never destroyed: workers may still run when the process ends without vboard_reset.
    static auto *all = new std::array<Channel, kEncoderChannels>;
    return *all;
}

int32_t refuse_channel(uint32_t number)
{
    return refuse(MI_MODULE_VENC, MI_REASON_BAD_CHANNEL, "encoder channel %u", number);
}

int32_t not_created(uint32_t number)
{
    return refuse(MI_MODULE_VENC, MI_REASON_ABSENT, "encoder channel %u is not created", number);
}

/* Run `step` on a created channel, under its lock. */
template <typename Step> int32_t with_channel(uint32_t number, Step step)
{
    if (number >= kEncoderChannels) return refuse_channel(number);
    Channel &channel = channels()[number];
    const std::lock_guard guard(channel.mutex);
    if (!channel.created) return not_created(number);
    return step(channel);
}

void drop_everything(Channel &channel)
{
    ++channel.resets;
    channel.input.reset();
    channel.images.clear();
    channel.work.notify_all();
    channel.room.notify_all();
}

void keep_image(Channel &channel, uint32_t number, JpegImage jpeg, uint64_t pts)
{
    if (!jpeg) {
        warn("encoder channel %u could not encode a picture", number);
        return;
    }
    const size_t size = jpeg.size();
    if (!channel.images.keep(std::move(jpeg), pts, channel.attr.stream_buffer_bytes)) {
        warn("encoder channel %u has no room for %zu bytes; the picture is lost", number, size);
        return;
    }
    channel.changed.notify_all();
}

void run_worker(Channel &channel, uint32_t number)
{
    char name[16];
    snprintf(name, sizeof name, "venc%u", number);
    pthread_setname_np(pthread_self(), name);
    std::unique_lock lock(channel.mutex);
    for (;;) {
        channel.work.wait(lock, [&] {
            return channel.quitting || (channel.input != nullptr && channel.receiving &&
                                        channel.images.has_room(channel.attr.stream_buffer_bytes));
        });
        if (channel.quitting) return;
        PictureRefPtr ref = std::move(channel.input);
        const uint64_t resets = channel.resets;
        const int quality = static_cast<int>(channel.jpeg.quality);
        const int restart_rows = static_cast<int>(channel.attr.restart_rows);
        channel.room.notify_one();
        lock.unlock();
        JpegImage jpeg = encode_jpeg(ref->picture().view, quality, restart_rows);
        lock.lock();
        if (resets == channel.resets) keep_image(channel, number, std::move(jpeg), ref->picture().pts);
        ref.reset();
    }
}

void end_worker(Channel &channel)
{
    std::thread worker;
    {
        const std::lock_guard guard(channel.mutex);
        channel.quitting = true;
        channel.created = false;
        channel.receiving = false;
        channel.exists.store(false, std::memory_order_release);
        drop_everything(channel);
        channel.changed.notify_all();
        worker = std::move(channel.worker);
    }
    if (worker.joinable()) worker.join();
}

int32_t check_attr(const MI_VENC_ChnAttr &attr)
{
    if (attr.codec != MI_VENC_CODEC_JPEG)
        return refuse(MI_MODULE_VENC, MI_REASON_UNSUPPORTED, "codec %u", attr.codec);
    if (attr.by_frame != 1)
        return refuse(MI_MODULE_VENC, MI_REASON_UNSUPPORTED, "streams of less than a picture");
    if (attr.width == 0 || attr.height == 0 || attr.width > attr.max_width || attr.height > attr.max_height ||
        attr.max_width > kMaxSide || attr.max_height > kMaxSide)
        return refuse(MI_MODULE_VENC, MI_REASON_BAD_VALUE, "pictures of %u x %u, up to %u x %u", attr.width,
                      attr.height, attr.max_width, attr.max_height);
    if (attr.stream_buffer_bytes == 0 || attr.stream_buffer_bytes > kMaxBufferBytes)
        return refuse(MI_MODULE_VENC, MI_REASON_BAD_VALUE, "a stream buffer of %u bytes",
                      attr.stream_buffer_bytes);
    if (attr.restart_rows > kMaxSide)
        return refuse(MI_MODULE_VENC, MI_REASON_BAD_VALUE, "%u rows between restart markers",
                      attr.restart_rows);
    return MI_SUCCESS;
}

} // namespace

bool venc_channel_exists(uint32_t device, uint32_t number)
{
    return device == kJpegDevice && number < kEncoderChannels &&
           channels()[number].exists.load(std::memory_order_acquire);
}

int32_t venc_create(uint32_t number, const MI_VENC_ChnAttr *attr)
{
    if (number >= kEncoderChannels) return refuse_channel(number);
    if (attr == nullptr) return refuse(MI_MODULE_VENC, MI_REASON_NULL_POINTER, "no attributes");
    if (!sys_is_up()) return refuse(MI_MODULE_VENC, MI_REASON_NOT_READY, "the media system is not started");
    const int32_t checked = check_attr(*attr);
    if (checked != MI_SUCCESS) return checked;
    Channel &channel = channels()[number];
    const std::lock_guard control(channel.control);
    const std::lock_guard guard(channel.mutex);
    if (channel.created) return refuse(MI_MODULE_VENC, MI_REASON_EXISTS, "encoder channel %u", number);
    channel.attr = *attr;
    channel.jpeg = {kOwnQuality, 0};
    channel.images.number_from_0();
    channel.quitting = false;
    channel.worker = std::thread([&channel, number] { run_worker(channel, number); });
    channel.created = true;
    channel.exists.store(true, std::memory_order_release);
    return MI_SUCCESS;
}

int32_t venc_destroy(uint32_t number)
{
    if (number >= kEncoderChannels) return refuse_channel(number);
    Channel &channel = channels()[number];
    const std::lock_guard control(channel.control);
    const int32_t checked = with_channel(number, [&](Channel &) -> int32_t {
        if (channel.receiving)
            return refuse(MI_MODULE_VENC, MI_REASON_NOT_PERMITTED, "encoder channel %u is receiving", number);
        return MI_SUCCESS;
    });
    if (checked == MI_SUCCESS) end_worker(channel);
    return checked;
}

int32_t venc_reset_channel(uint32_t number)
{
    return with_channel(number, [](Channel &channel) -> int32_t {
        drop_everything(channel);
        return MI_SUCCESS;
    });
}

int32_t venc_get_jpeg(uint32_t number, MI_VENC_JpegParam *param)
{
    if (param == nullptr) return refuse(MI_MODULE_VENC, MI_REASON_NULL_POINTER, "no record to fill");
    return with_channel(number, [&](Channel &channel) -> int32_t {
        *param = channel.jpeg;
        return MI_SUCCESS;
    });
}

int32_t venc_set_jpeg(uint32_t number, const MI_VENC_JpegParam *param)
{
    if (param == nullptr) return refuse(MI_MODULE_VENC, MI_REASON_NULL_POINTER, "no parameters");
    return with_channel(number, [&](Channel &channel) -> int32_t {
        if (param->quality == 0 || param->quality > kMaxQuality)
            return refuse(MI_MODULE_VENC, MI_REASON_BAD_VALUE, "quality %u", param->quality);
        channel.jpeg = *param;
        return MI_SUCCESS;
    });
}

int32_t venc_get_device(uint32_t number, uint32_t *device)
{
    if (device == nullptr) return refuse(MI_MODULE_VENC, MI_REASON_NULL_POINTER, "no place for the device");
    return with_channel(number, [&](Channel &) -> int32_t {
        *device = kJpegDevice;
        return MI_SUCCESS;
    });
}

int32_t venc_start(uint32_t number)
{
    return with_channel(number, [](Channel &channel) -> int32_t {
        channel.receiving = true;
        channel.work.notify_all();
        channel.room.notify_all();
        return MI_SUCCESS;
    });
}

int32_t venc_stop(uint32_t number)
{
    return with_channel(number, [](Channel &channel) -> int32_t {
        channel.receiving = false;
        channel.input.reset();
        channel.changed.notify_all();
        return MI_SUCCESS;
    });
}

int32_t venc_get_stream(uint32_t number, MI_VENC_Stream *stream, int32_t timeout_ms)
{
    if (number >= kEncoderChannels) return refuse_channel(number);
    if (stream == nullptr || stream->packs == nullptr)
        return refuse(MI_MODULE_VENC, MI_REASON_NULL_POINTER, "no packs to fill");
    if (stream->pack_count == 0) return refuse(MI_MODULE_VENC, MI_REASON_BAD_VALUE, "room for no pack");
    const int64_t deadline_us = clock_deadline_us(timeout_ms);
    Channel &channel = channels()[number];
    std::unique_lock lock(channel.mutex);
    if (!channel.created) return not_created(number);
    const auto over = [&] { return !channel.created || !channel.receiving; };
    const bool ended = wait_until(channel, lock, deadline_us, [&] { return channel.images.any() || over(); });
    if (!ended) return MI_ERROR(MI_MODULE_VENC, MI_REASON_TIMEOUT); // no refusal: a picture may be late
    if (channel.images.any()) {
        channel.images.lend_oldest(*stream);
        return MI_SUCCESS;
    }
    return refuse(MI_MODULE_VENC, MI_REASON_NOT_READY, "encoder channel %u receives no pictures", number);
}

int32_t venc_release_stream(uint32_t number, MI_VENC_Stream *stream)
{
    if (stream == nullptr) return refuse(MI_MODULE_VENC, MI_REASON_NULL_POINTER, "no stream");
    return with_channel(number, [&](Channel &channel) -> int32_t {
        if (!channel.images.release(stream->handle))
            return refuse(MI_MODULE_VENC, MI_REASON_BAD_VALUE, "stream %zu is not lent by channel %u",
                          static_cast<size_t>(stream->handle), number);
        channel.work.notify_all();
        return MI_SUCCESS;
    });
}

void venc_channel_take(uint32_t number, const PictureRefPtr &ref, const std::atomic<bool> &abandoned)
{
    Channel &channel = channels()[number];
    std::unique_lock lock(channel.mutex);
    const auto unwanted = [&] { return !channel.created || abandoned.load(std::memory_order_acquire); };
    channel.room.wait(lock, [&] { return unwanted() || (channel.receiving && channel.input == nullptr); });
    if (unwanted()) return;
    if (static_cast<uint32_t>(ref->width()) != channel.attr.width ||
        static_cast<uint32_t>(ref->height()) != channel.attr.height) {
        warn("encoder channel %u was made for %u x %u, and gets %d x %d", number, channel.attr.width,
             channel.attr.height, ref->width(), ref->height());
        return;
    }
    channel.input = ref;
    channel.work.notify_one();
}

void venc_wake_sources()
{
    for (Channel &channel : channels()) {
        const std::lock_guard guard(channel.mutex);
        channel.room.notify_all();
    }
}

void venc_reset()
{
    for (Channel &channel : channels()) {
        const std::lock_guard control(channel.control);
        end_worker(channel);
    }
}

} // namespace vboard
