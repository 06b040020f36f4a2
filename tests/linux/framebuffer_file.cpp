/* framebuffer_file.cpp - see framebuffer_file.h. */
#include "framebuffer_file.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <string_view>

namespace
{

constexpr std::string_view kNode = "/dev/fb0";

FramebufferFile *the_one;

template <typename Record> int give(void *record, const Record &value)
{
    std::memcpy(record, &value, sizeof value);
    return 0;
}

template <typename Record> int take(Record &value, const void *record)
{
    std::memcpy(&value, record, sizeof value);
    return 0;
}

} // namespace

FramebufferFile::FramebufferFile() : path_(folder_.file("memory", std::string(kMemoryBytes, kPowerOnByte)))
{
    fixed_.smem_len = kMemoryBytes;
    fixed_.line_length = kWidth * kPixelBytes;
    variable_.xres = variable_.xres_virtual = kWidth;
    variable_.yres = variable_.yres_virtual = kHeight;
    variable_.bits_per_pixel = 8 * kPixelBytes;
    variable_.transp = {15, 1, 0};
    the_one = this;
}

FramebufferFile::~FramebufferFile()
{
    the_one = nullptr;
}

FramebufferFile *FramebufferFile::there()
{
    return the_one;
}

uint16_t FramebufferFile::pixel(uint32_t x, uint32_t y) const
{
    const std::string bytes = memory();
    uint16_t value = 0;
    std::memcpy(&value, bytes.data() + (y * kWidth + x) * kPixelBytes, sizeof value);
    return value;
}

void FramebufferFile::take_layer(const FbDisplayLayer &wanted)
{
    if ((wanted.mask & FB_LAYER_POSITION) != 0) {
        layer.x = wanted.x;
        layer.y = wanted.y;
    }
    if ((wanted.mask & FB_LAYER_DST_SIZE) != 0) {
        layer.dst_width = wanted.dst_width;
        layer.dst_height = wanted.dst_height;
    }
    if ((wanted.mask & FB_LAYER_DISPLAY_SIZE) != 0) {
        layer.display_width = wanted.display_width;
        layer.display_height = wanted.display_height;
    }
    if ((wanted.mask & FB_LAYER_COLOR_FORMAT) != 0) layer.color_format = wanted.color_format;
}

int FramebufferFile::request(unsigned long request, void *record)
{
    if (refused_.contains(static_cast<uint32_t>(request))) {
        errno = EINVAL;
        return -1;
    }
    switch (request) { // all of its bits: a code with the highest of its 32 bits set is not sign-extended
    case FBIOGET_VSCREENINFO: return give(record, variable_);
    case FBIOGET_FSCREENINFO: return give(record, fixed_);
    case FBIOPAN_DISPLAY: ++pans; return 0;
    case FBIOGET_DISPLAYLAYER_ATTRIBUTES: return give(record, layer);
    case FBIOSET_DISPLAYLAYER_ATTRIBUTES: take_layer(*static_cast<const FbDisplayLayer *>(record)); return 0;
    case FBIOGET_COLORKEY: return give(record, key);
    case FBIOSET_COLORKEY: return take(key, record);
    case FBIOGET_GLOBAL_ALPHA: return give(record, alpha);
    case FBIOSET_GLOBAL_ALPHA: return take(alpha, record);
    case FBIOSET_SHOW: return take(shown, record);
    default: errno = ENOTTY; return -1;
    }
}

extern "C" {

int __real_open(const char *path, int flags, ...);
int __real_ioctl(int descriptor, unsigned long request, ...);

// The machine's own framebuffer is never opened, whether it has one or not.
int __wrap_open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = va_arg(arguments, unsigned);
    va_end(arguments);
    if (path != kNode) return __real_open(path, flags, mode);
    FramebufferFile *const node = FramebufferFile::there();
    if (node == nullptr) {
        errno = ENOENT;
        return -1;
    }
    const int descriptor = __real_open(node->path().c_str(), flags, mode);
    if (descriptor >= 0) node->opened(descriptor);
    return descriptor;
}

int __wrap_ioctl(int descriptor, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void *const record = va_arg(arguments, void *);
    va_end(arguments);
    FramebufferFile *const node = FramebufferFile::there();
    if (node == nullptr || !node->has(descriptor)) return __real_ioctl(descriptor, request, record);
    return node->request(request, record);
}

} // extern "C"
