/*
 * framebuffer.cpp - the node "/dev/fb0": the standard requests, and the driver's own. Its memory is in
 * framebuffer_memory.cpp.
 *
 * After power-on the layer is hidden and 1920 x 1080 in ARGB1555, without colour key and blending.
 * Setting the display size gives the device that resolution, in rows without gaps. What lies below the
 * shown page is given back to the PC when the size or the format is set and reads as zero then, so
 * that a GUI costs the memory of its own page.
 *
 * One lock guards the settings; it is taken inside a canvas's lock, and the memory's own inside it. The
 * memory is read without one, as a display reads it while it is written.
 */
#include "devices/framebuffer.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <sys/mman.h>

#include "devices/framebuffer_blend.h"
#include "devices/framebuffer_memory.h"
#include "media/call.h"
#include "media/output_timing.h"

namespace vboard
{
namespace
{

constexpr char kPath[] = "/dev/fb0";
constexpr int32_t kDevice = 0;                    // the display device that it lies over
constexpr uint32_t kPhysicalAddress = 0x2F000000; // as the library may report it; nothing reads it
constexpr uint32_t kLargestSide_px = 8192;

[[gnu::format(printf, 1, 2)]] int refuse_value(const char *format, ...)
{
    char text[160];
    va_list values;
    va_start(values, format);
    vsnprintf(text, sizeof text, format, values);
    va_end(values);
    refuse_plainly("%s: %s", kPath, text);
    errno = EINVAL;
    return -1;
}

fb_bitfield bitfield(const PixelField &field)
{
    fb_bitfield bits = {};
    bits.offset = field.offset;
    bits.length = field.length;
    return bits;
}

class Framebuffer
{
public:
    Framebuffer() { power_on(); }

    bool is_there() const { return memory_.is_there(); }

    void reset()
    {
        const std::lock_guard guard(mutex_);
        power_on();
        memory_.forget_from(0);
    }

    void *map(size_t size)
    {
        if (size == 0 || size > kFramebufferMemory_bytes) {
            refuse_value("%zu bytes of its %zu cannot be mapped", size, kFramebufferMemory_bytes);
            return nullptr;
        }
        void *address = memory_.map(size);
        if (address == nullptr) refuse_plainly("%s: no room below 4 GiB to map %zu bytes", kPath, size);
        return address;
    }

    int request(unsigned long number, void *record)
    {
        if (record == nullptr) return refuse_value("request 0x%lx without a record", number);
        const std::lock_guard guard(mutex_);
        switch (number) {
        case FBIOGET_VSCREENINFO: return give(variable_, record);
        case FBIOGET_FSCREENINFO: return give(fixed(), record);
        case FBIOGET_DISPLAYLAYER_ATTRIBUTES: return give(layer_, record);
        case FBIOGET_COLORKEY: return give(key_, record);
        case FBIOGET_GLOBAL_ALPHA: return give(alpha_, record);
        case FBIOPUT_VSCREENINFO: return set_screen(*static_cast<const fb_var_screeninfo *>(record));
        case FBIOPAN_DISPLAY: return pan(*static_cast<const fb_var_screeninfo *>(record));
        case FBIOSET_DISPLAYLAYER_ATTRIBUTES: return set_layer(*static_cast<const FbDisplayLayer *>(record));
        case FBIOSET_COLORKEY: return take(key_, record);
        case FBIOSET_GLOBAL_ALPHA: return take(alpha_, record);
        case FBIOSET_SHOW: return take(shown_, record);
        default:
            refuse_plainly("%s: request 0x%lx", kPath, number);
            errno = ENOTTY;
            return -1;
        }
    }

    bool is_shown()
    {
        const std::lock_guard guard(mutex_);
        return shown_ != 0 && memory_.is_there();
    }

    bool has_visible_pixels(int width, int height)
    {
        return framebuffer_has_visible_pixels(view(), colours_, width, height);
    }

    void draw(const MutablePlanarView &picture) { blend_framebuffer(view(), colours_, picture); }

private:
    FramebufferView view()
    {
        const std::lock_guard guard(mutex_);
        return {memory_.bytes(),
                kFramebufferMemory_bytes,
                fixed().line_length,
                format_,
                variable_.xoffset,
                variable_.yoffset,
                layer_,
                key_,
                alpha_};
    }

    template <typename Record> static int give(const Record &value, void *record)
    {
        memcpy(record, &value, sizeof value);
        return 0;
    }

    template <typename Record> static int take(Record &value, const void *record)
    {
        memcpy(&value, record, sizeof value);
        return 0;
    }

    void power_on()
    {
        shown_ = 0;
        memory_.power_on();
        key_ = {};
        alpha_ = {};
        layer_ = {};
        variable_ = {};
        use_format(*find_pixel_format(FB_COLOR_ARGB1555));
        use_size(kUsualWidth_px, kUsualHeight_px);
        layer_.dst_width = kUsualWidth_px;
        layer_.dst_height = kUsualHeight_px;
    }

    void use_format(const PixelFormat &format)
    {
        format_ = &format;
        variable_.bits_per_pixel = format.bits;
        variable_.red = bitfield(format.red);
        variable_.green = bitfield(format.green);
        variable_.blue = bitfield(format.blue);
        variable_.transp = bitfield(format.alpha);
        layer_.color_format = format.code;
    }

    void use_size(uint32_t width, uint32_t height)
    {
        variable_.xres = variable_.xres_virtual = layer_.display_width = width;
        variable_.yres = layer_.display_height = height;
        variable_.yres_virtual = static_cast<uint32_t>(kFramebufferMemory_bytes / line_bytes());
        variable_.xoffset = variable_.yoffset = 0;
        memory_.forget_from(line_bytes() * height);
    }

    size_t line_bytes() const { return size_t{variable_.xres_virtual} * variable_.bits_per_pixel / 8; }

    fb_fix_screeninfo fixed() const
    {
        fb_fix_screeninfo fixed = {};
        snprintf(fixed.id, sizeof fixed.id, "vboard");
        fixed.smem_start = kPhysicalAddress;
        fixed.smem_len = kFramebufferMemory_bytes;
        fixed.type = FB_TYPE_PACKED_PIXELS;
        fixed.visual = FB_VISUAL_TRUECOLOR;
        fixed.xpanstep = fixed.ypanstep = 1;
        fixed.line_length = static_cast<uint32_t>(line_bytes());
        return fixed;
    }

    static bool fits(uint32_t width, uint32_t height, uint32_t bits)
    {
        return width >= 1 && height >= 1 && width <= kLargestSide_px && height <= kLargestSide_px &&
               uint64_t{width} * bits / 8 * height <= kFramebufferMemory_bytes;
    }

    int set_screen(const fb_var_screeninfo &wanted)
    {
        const PixelFormat *format = find_pixel_format(wanted.bits_per_pixel, wanted.transp.length);
        if (format == nullptr)
            return refuse_value("%u bits a pixel with %u of alpha", wanted.bits_per_pixel,
                                wanted.transp.length);
        if (!fits(wanted.xres, wanted.yres, format->bits))
            return refuse_value("%u x %u pixels of %u bits", wanted.xres, wanted.yres, format->bits);
        use_format(*format);
        use_size(wanted.xres, wanted.yres);
        return 0;
    }

    int pan(const fb_var_screeninfo &wanted)
    {
        if (uint64_t{wanted.xoffset} + variable_.xres > variable_.xres_virtual ||
            uint64_t{wanted.yoffset} + variable_.yres > variable_.yres_virtual)
            return refuse_value("a view at %u,%u leaves the %u x %u surface", wanted.xoffset, wanted.yoffset,
                                variable_.xres_virtual, variable_.yres_virtual);
        variable_.xoffset = wanted.xoffset;
        variable_.yoffset = wanted.yoffset;
        return 0;
    }

    int set_layer(const FbDisplayLayer &wanted)
    {
        const bool changes_format = (wanted.mask & FB_LAYER_COLOR_FORMAT) != 0;
        const bool changes_size = (wanted.mask & FB_LAYER_DISPLAY_SIZE) != 0;
        const PixelFormat *format = changes_format ? find_pixel_format(wanted.color_format) : format_;
        const uint32_t width = changes_size ? wanted.display_width : variable_.xres;
        const uint32_t height = changes_size ? wanted.display_height : variable_.yres;
        if (format == nullptr) return refuse_value("colour format %u", wanted.color_format);
        if (!fits(width, height, format->bits))
            return refuse_value("%u x %u pixels of %u bits", width, height, format->bits);
        if ((wanted.mask & FB_LAYER_DST_SIZE) != 0 && (wanted.dst_width == 0 || wanted.dst_height == 0))
            return refuse_value("a layer of %u x %u on the screen", wanted.dst_width, wanted.dst_height);
        if ((wanted.mask & FB_LAYER_PREMULTIPLIED) != 0 && wanted.premultiplied != 0)
            return refuse_value("pixels that are multiplied by their alpha");

        if ((wanted.mask & FB_LAYER_POSITION) != 0) {
            layer_.x = wanted.x;
            layer_.y = wanted.y;
        }
        if ((wanted.mask & FB_LAYER_DST_SIZE) != 0) {
            layer_.dst_width = wanted.dst_width;
            layer_.dst_height = wanted.dst_height;
        }
        if ((wanted.mask & FB_LAYER_SCREEN_SIZE) != 0) {
            layer_.screen_width = wanted.screen_width;
            layer_.screen_height = wanted.screen_height;
        }
        if (changes_format) use_format(*format);
        if (changes_format || changes_size) use_size(width, height);
        return 0;
    }

    FramebufferMemory memory_;
    OverlayColours colours_; // of the one canvas that draws

    std::mutex mutex_; // guards what follows
    uint8_t shown_ = 0;
    const PixelFormat *format_ = nullptr;
    fb_var_screeninfo variable_ = {};
    FbDisplayLayer layer_ = {};
    FbColorKey key_ = {};
    FbGlobalAlpha alpha_ = {};
};

Framebuffer &framebuffer()
{
    static auto *device = new Framebuffer;
    return *device;
}

class OpenFramebuffer : public OpenNode
{
public:
    int ioctl(unsigned long request, void *argument) override
    {
        return framebuffer().request(request, argument);
    }
    void *map(size_t size) override { return framebuffer().map(size); }
    int unmap(void *address, size_t size) override { return munmap(address, size); }
};

class FramebufferNode : public DeviceNode
{
public:
    const char *path() const override { return kPath; }

    std::shared_ptr<OpenNode> open(int) override
    {
        if (framebuffer().is_there()) return std::make_shared<OpenFramebuffer>();
        refuse_plainly("%s: the PC gives it no memory", kPath);
        errno = ENOMEM;
        return nullptr;
    }

    void reset() override { framebuffer().reset(); }
};

} // namespace

DeviceNode *framebuffer_node()
{
    static auto *node = new FramebufferNode;
    return node;
}

bool framebuffer_covers(int32_t device, int width, int height)
{
    return device == kDevice && framebuffer().is_shown() && framebuffer().has_visible_pixels(width, height);
}

void framebuffer_draw(const MutablePlanarView &picture)
{
    framebuffer().draw(picture);
}

} // namespace vboard
