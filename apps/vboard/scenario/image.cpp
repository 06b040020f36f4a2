/* image.cpp - see image.h. */
#include "scenario/image.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <png.h>

#include "host/picture.h"
#include "host/scaler.h"

namespace vboard_app::scenario
{
namespace
{

constexpr int kSeenDifference = 16; // of a colour, of 255
constexpr int kMostPixels = 8192;   // a side of a picture from a file
constexpr int kGap_px = 8;          // between pictures side by side

bool differ(const uint8_t *one, const uint8_t *other)
{
    for (int colour = 0; colour < 3; ++colour)
        if (std::abs(one[colour] - other[colour]) > kSeenDifference) return true;
    return false;
}

void put(Image &onto, const Image &image, int left)
{
    for (int y = 0; y < image.height; ++y)
        std::memcpy(onto.at(left, y), image.at(0, y), static_cast<size_t>(image.width) * 3);
}

} // namespace

Image black_image(int width, int height)
{
    Image image;
    image.width = width;
    image.height = height;
    image.rgb.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
    return image;
}

Image image_of(const Picture &picture)
{
    const int width = static_cast<int>(picture.width);
    const int height = static_cast<int>(picture.height);
    const size_t pixels = static_cast<size_t>(picture.width) * picture.height;
    if (pixels == 0 || picture.bytes.size() < pixels * 3 / 2) return {};
    Image image = black_image(width, height);
    const uint8_t *luma = picture.bytes.data();
    vboard::PlanarView view = {};
    view.width = width;
    view.height = height;
    view.plane[0] = luma;
    view.plane[1] = luma + pixels;
    view.plane[2] = luma + pixels + pixels / 4;
    view.stride[0] = width;
    view.stride[1] = view.stride[2] = width / 2;
    vboard::convert_to_rgb24(view, image.rgb.data(), width * 3);
    return image;
}

bool lies_in(const Region &region, int width, int height)
{
    return region.x >= 0 && region.y >= 0 && region.width > 0 && region.height > 0 &&
           region.width <= width - region.x && region.height <= height - region.y;
}

Image part_of(const Image &image, const Region &region)
{
    Image part = black_image(region.width, region.height);
    for (int y = 0; y < region.height; ++y)
        std::memcpy(part.at(0, y), image.at(region.x, region.y + y), static_cast<size_t>(region.width) * 3);
    return part;
}

std::optional<Image> read_png(const std::string &path, std::string &problem)
{
    png_image file = {};
    file.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&file, path.c_str()) == 0) {
        problem = file.message;
        return {};
    }
    if (file.width > kMostPixels || file.height > kMostPixels) {
        png_image_free(&file);
        problem = "it has more than " + std::to_string(kMostPixels) + " pixels a side";
        return {};
    }
    file.format = PNG_FORMAT_RGB;
    Image image = black_image(static_cast<int>(file.width), static_cast<int>(file.height));
    const png_color background = {0, 0, 0}; // what is transparent counts as black
    if (png_image_finish_read(&file, &background, image.rgb.data(), 0, nullptr) == 0) {
        problem = file.message;
        png_image_free(&file);
        return {};
    }
    return image;
}

bool write_png(const std::string &path, const Image &image)
{
    png_image file = {};
    file.version = PNG_IMAGE_VERSION;
    file.width = static_cast<png_uint_32>(image.width);
    file.height = static_cast<png_uint_32>(image.height);
    file.format = PNG_FORMAT_RGB;
    file.flags = PNG_IMAGE_FLAG_FAST;
    return png_image_write_to_file(&file, path.c_str(), 0, image.rgb.data(), 0, nullptr) != 0;
}

double difference_percent(const Image &one, const Image &other)
{
    if (one.width != other.width || one.height != other.height || one.rgb.empty()) return 100;
    size_t differing = 0;
    for (size_t at = 0; at + 2 < one.rgb.size(); at += 3)
        differing += differ(&one.rgb[at], &other.rgb[at]) ? 1 : 0;
    return 100.0 * static_cast<double>(differing) / (static_cast<double>(one.rgb.size()) / 3);
}

Image side_by_side(const Image &actual, const Image &expected)
{
    const int width = std::min(actual.width, expected.width);
    const int height = std::min(actual.height, expected.height);
    Image difference = black_image(std::max(width, 1), std::max(height, 1));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint8_t *seen = actual.at(x, y);
            uint8_t *to = difference.at(x, y);
            const bool other = differ(seen, expected.at(x, y));
            for (int colour = 0; colour < 3; ++colour)
                to[colour] = static_cast<uint8_t>(seen[colour] / 4);
            if (other) to[0] = 255;
        }
    Image all = black_image(actual.width + expected.width + difference.width + 2 * kGap_px,
                            std::max({actual.height, expected.height, difference.height}));
    std::fill(all.rgb.begin(), all.rgb.end(), uint8_t{128});
    put(all, actual, 0);
    put(all, expected, actual.width + kGap_px);
    put(all, difference, actual.width + expected.width + 2 * kGap_px);
    return all;
}

} // namespace vboard_app::scenario
