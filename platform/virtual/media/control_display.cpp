/* control_display.cpp - the control face's looks at the output: captures, loans, followers, pacing. */
#include <array>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "host/png_file.h"
#include "host/scaler.h"
#include "media/call.h"
#include "media/canvas.h"
#include "media/display.h"
#include "media/follow.h"
#include "media/modules.h"
#include "media/picture_view.h"
#include "media/vdec_channel.h"
#include "vboard.h"

namespace vboard
{
namespace
{

size_t image_bytes(uint32_t format, uint32_t width, uint32_t height)
{
    const size_t pixels = size_t{width} * height;
    return format == VBOARD_FORMAT_RGB24 ? pixels * 3 : pixels * 3 / 2;
}

// Room for an image of that format; -1 when there is none.
int allocate(vboard_image &image, uint32_t format, uint32_t width, uint32_t height)
{
    image = {};
    image.width = width;
    image.height = height;
    image.format = format;
    image.size = image_bytes(format, width, height);
    image.bytes = static_cast<uint8_t *>(malloc(image.size));
    return image.bytes != nullptr ? 0 : refuse_plainly("no memory for a picture of %u x %u", width, height);
}

void make_black(const vboard_image &image)
{
    if (image.format == VBOARD_FORMAT_RGB24)
        memset(image.bytes, 0, image.size);
    else
        fill_picture(packed_view(image.bytes, static_cast<int>(image.width), static_cast<int>(image.height)),
                     16, 128, 128);
}

/* Who has borrowed a device's picture. */
struct Loan {
    std::mutex mutex;
    std::condition_variable returned;
    std::optional<CanvasLook> look;
    std::thread::id borrower;
};

Loan &loan_of(int32_t device)
{
    static auto *all = new std::array<Loan, kDevices>;
    return (*all)[static_cast<size_t>(device_index(device))];
}

// The composition stands still for its borrower too: a look would wait for ever.
bool is_lent_to_this_thread(int32_t device)
{
    Loan &loan = loan_of(device);
    const std::lock_guard guard(loan.mutex);
    return loan.borrower == std::this_thread::get_id();
}

int refuse_own_loan(int32_t device)
{
    return refuse_plainly("display device %d is lent to this thread already", device);
}

// Check, look, copy. `signal`: whether the picture arrives where it is captured.
int capture(int32_t device, uint32_t format, vboard_image *image, bool signal)
{
    if (image == nullptr) return refuse_plainly("no image to fill");
    *image = {};
    if (device_index(device) < 0) return refuse_plainly("display device %d", device);
    if (format > VBOARD_FORMAT_RGB24) return refuse_plainly("image format %u", format);
    if (is_lent_to_this_thread(device)) return refuse_own_loan(device);
    const CanvasLook look(device);
    const vboard_picture &picture = look.picture();
    if (allocate(*image, format, picture.width, picture.height) != 0) return -1;
    if (!signal) {
        image->blank = 1;
        make_black(*image);
    } else if (format == VBOARD_FORMAT_RGB24) {
        convert_to_rgb24(view_of(picture), image->bytes, static_cast<int>(picture.width) * 3);
    } else {
        copy_picture(view_of(picture), packed_view(image->bytes, static_cast<int>(picture.width),
                                                   static_cast<int>(picture.height)));
    }
    return 0;
}

int save(vboard_image &image, const char *path)
{
    const int result = vboard_image_save_png(&image, path);
    vboard_image_free(&image);
    return result;
}

} // namespace
} // namespace vboard

using namespace vboard;

extern "C" {

int vboard_display_capture(int32_t device, uint32_t format, vboard_image *image)
{
    return capture(device, format, image, true);
}

int vboard_display_save_png(int32_t device, const char *path)
{
    vboard_image image;
    if (vboard_display_capture(device, VBOARD_FORMAT_RGB24, &image) != 0) return -1;
    return save(image, path);
}

int vboard_monitor_has_signal(void)
{
    return hdmi_is_live() && display_is_enabled(0) ? 1 : 0;
}

int vboard_monitor_capture(uint32_t format, vboard_image *image)
{
    return capture(0, format, image, vboard_monitor_has_signal() != 0);
}

int vboard_monitor_save_png(const char *path)
{
    vboard_image image;
    if (vboard_monitor_capture(VBOARD_FORMAT_RGB24, &image) != 0) return -1;
    return save(image, path);
}

int vboard_monitor_save_settled(const char *path, int32_t timeout_ms)
{
    if (vdec_wait_all_idle(timeout_ms) != 0) return -1;
    return vboard_monitor_save_png(path);
}

void vboard_image_free(vboard_image *image)
{
    if (image == nullptr) return;
    free(image->bytes);
    *image = {};
}

int vboard_image_save_png(const vboard_image *image, const char *path)
{
    if (image == nullptr || image->bytes == nullptr || path == nullptr)
        return refuse_plainly("no image, or no file name");
    if (image->format > VBOARD_FORMAT_RGB24) return refuse_plainly("image format %u", image->format);
    if (image->size < image_bytes(image->format, image->width, image->height))
        return refuse_plainly("%zu bytes are no picture of %u x %u", image->size, image->width,
                              image->height);
    const int width = static_cast<int>(image->width);
    const int height = static_cast<int>(image->height);
    const uint8_t *rgb = image->bytes;
    std::unique_ptr<uint8_t[]> converted;
    if (image->format == VBOARD_FORMAT_I420) {
        converted = std::make_unique<uint8_t[]>(size_t{image->width} * image->height * 3);
        convert_to_rgb24(read_only(packed_view(image->bytes, width, height)), converted.get(), width * 3);
        rgb = converted.get();
    }
    if (!write_png(path, rgb, width, height, width * 3)) return refuse_plainly("cannot write \"%s\"", path);
    return 0;
}

int vboard_display_borrow(int32_t device, vboard_picture *picture)
{
    if (device_index(device) < 0) return refuse_plainly("display device %d", device);
    if (picture == nullptr) return refuse_plainly("no record to fill");
    Loan &loan = loan_of(device);
    std::unique_lock lock(loan.mutex);
    if (loan.borrower == std::this_thread::get_id()) return refuse_own_loan(device);
    loan.returned.wait(lock, [&] { return loan.borrower == std::thread::id(); });
    loan.borrower = std::this_thread::get_id();
    lock.unlock();
    loan.look.emplace(device);
    *picture = loan.look->picture();
    return 0;
}

int vboard_display_give_back(int32_t device)
{
    if (device_index(device) < 0) return refuse_plainly("display device %d", device);
    Loan &loan = loan_of(device);
    const std::lock_guard guard(loan.mutex);
    if (loan.borrower != std::this_thread::get_id())
        return refuse_plainly("display device %d is not lent to this thread", device);
    loan.look.reset();
    loan.borrower = {};
    loan.returned.notify_one();
    return 0;
}

int vboard_display_follow(int32_t device, vboard_follower follower, void *user)
{
    return follow_set(device, follower, user);
}

int vboard_display_set_pacing(int32_t device, uint32_t pacing)
{
    if (display_set_pacing(device, pacing) != 0) return -1;
    follow_set_pacing(device, pacing);
    return 0;
}

int vboard_display_step(int32_t device)
{
    if (device_index(device) >= 0 && is_lent_to_this_thread(device)) return refuse_own_loan(device);
    const int advanced = display_advance(device);
    if (advanced >= 0) follow_step(device);
    return advanced;
}

int vboard_display_wait_queued(int32_t device, uint32_t port_mask, uint32_t pictures, int32_t timeout_ms)
{
    return display_wait_queued(device, port_mask, pictures, timeout_ms);
}

int vboard_display_wait_taken(int32_t device, uint32_t port_mask, uint64_t pictures, int32_t timeout_ms)
{
    return display_wait_taken(device, port_mask, pictures, timeout_ms);
}

int vboard_display_mark(int32_t device)
{
    return display_mark(device);
}

int vboard_display_get_size(int32_t device, uint32_t *width, uint32_t *height)
{
    if (device_index(device) < 0 || width == nullptr || height == nullptr)
        return refuse_plainly("no size of display device %d", device);
    const Scene scene = display_scene(device);
    *width = static_cast<uint32_t>(scene.width);
    *height = static_cast<uint32_t>(scene.height);
    return 0;
}

int vboard_port_get_stat(int32_t device, uint32_t port, vboard_port_stat *stat)
{
    return port_read_stat(device, port, stat);
}

int vboard_port_get_place(int32_t device, uint32_t port, vboard_port_place *place)
{
    return port_read_place(device, port, place);
}

} // extern "C"
