/* image_file.cpp - see image_file.h; by the board's own scaler and encoders. */
#include "server/image_file.h"

#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

#include "host/jpeg_encoder.h"
#include "host/png_file.h"
#include "host/scaler.h"

namespace vboard_app
{
namespace
{

constexpr uint64_t kMostHeight = 3840; // pixels of a scaled picture, as many as its width may be

[[noreturn]] void no_memory()
{
    throw RequestError("refused", "there is no memory for the picture");
}

vboard::PlanarView view_of(const Picture &picture)
{
    const size_t luma = static_cast<size_t>(picture.width) * picture.height;
    vboard::PlanarView view;
    view.plane[0] = picture.bytes.data();
    view.plane[1] = view.plane[0] + luma;
    view.plane[2] = view.plane[1] + luma / 4;
    view.width = static_cast<int>(picture.width);
    view.height = static_cast<int>(picture.height);
    view.stride[0] = view.width;
    view.stride[1] = view.stride[2] = view.width / 2;
    return view;
}

vboard::MutablePlanarView room_of(Picture &picture)
{
    const vboard::PlanarView view = view_of(picture);
    vboard::MutablePlanarView room;
    for (int plane = 0; plane < 3; ++plane) {
        room.plane[plane] = picture.bytes.data() + (view.plane[plane] - picture.bytes.data());
        room.stride[plane] = view.stride[plane];
    }
    room.width = view.width;
    room.height = view.height;
    return room;
}

Picture of_size(uint32_t width, uint32_t height)
{
    Picture picture;
    picture.width = width;
    picture.height = height;
    picture.bytes.resize(static_cast<size_t>(width) * height * 3 / 2);
    return picture;
}

/* The encoder writes to a file that is memory. */
std::string read_memory_file(int file)
{
    std::string bytes;
    const off_t size = lseek(file, 0, SEEK_END);
    if (size <= 0) return bytes;
    bytes.resize(static_cast<size_t>(size));
    return pread(file, bytes.data(), bytes.size(), 0) == size ? bytes : "";
}

} // namespace

Picture black_picture(uint32_t width, uint32_t height)
{
    Picture picture = of_size(width, height);
    picture.blank = true;
    const size_t luma = static_cast<size_t>(width) * height;
    std::memset(picture.bytes.data(), 16, luma);
    std::memset(picture.bytes.data() + luma, 128, luma / 2);
    return picture;
}

Picture cut_out(const Picture &picture, const std::vector<int> &region)
{
    const int64_t right = static_cast<int64_t>(region[0]) + region[2];
    const int64_t bottom = static_cast<int64_t>(region[1]) + region[3];
    if (region[0] < 0 || region[1] < 0 || region[2] < 1 || region[3] < 1 || right > picture.width ||
        bottom > picture.height)
        throw RequestError("bad_parameter",
                           "\"region\" is not within the " + std::to_string(picture.width) + " x " +
                               std::to_string(picture.height) + " pixels of the picture",
                           "region");
    const int left = region[0] & ~1, top = region[1] & ~1;
    Picture part = of_size((static_cast<uint32_t>(right - left) + 1) & ~1u,
                           (static_cast<uint32_t>(bottom - top) + 1) & ~1u);
    part.blank = picture.blank;
    vboard::copy_picture(vboard::part_of(view_of(picture), left, top, static_cast<int>(part.width),
                                         static_cast<int>(part.height)),
                         room_of(part));
    return part;
}

Picture scaled(const Picture &picture, uint32_t width)
{
    width = (width + 1) & ~1u;
    const uint64_t height = (static_cast<uint64_t>(picture.height) * width / picture.width + 1) & ~1ull;
    // A part of a few columns would become a picture of gigabytes.
    if (height > kMostHeight)
        throw RequestError("bad_parameter",
                           "\"width\" makes the picture " + std::to_string(height) +
                               " pixels high, not at most " + std::to_string(kMostHeight),
                           "width");
    Picture result = of_size(width, height < 2 ? 2 : static_cast<uint32_t>(height));
    result.blank = picture.blank;
    vboard::Scaler scaler;
    if (!scaler.scale(view_of(picture), room_of(result))) no_memory();
    return result;
}

std::string as_png(const Picture &picture)
{
    std::vector<uint8_t> rgb(static_cast<size_t>(picture.width) * picture.height * 3);
    const int stride = static_cast<int>(picture.width) * 3;
    if (!vboard::convert_to_rgb24(view_of(picture), rgb.data(), stride)) no_memory();
    const int file = memfd_create("picture", MFD_CLOEXEC);
    if (file < 0) no_memory();
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    const bool written = vboard::write_png(path.c_str(), rgb.data(), static_cast<int>(picture.width),
                                           static_cast<int>(picture.height), stride);
    std::string bytes = written ? read_memory_file(file) : "";
    close(file);
    if (bytes.empty()) no_memory();
    return bytes;
}

std::string as_jpeg(const Picture &picture, int quality)
{
    const vboard::JpegImage image = vboard::encode_jpeg(view_of(picture), quality, 0);
    if (!image) no_memory();
    return {reinterpret_cast<const char *>(image.bytes()), image.size()};
}

} // namespace vboard_app
