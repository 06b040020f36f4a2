/*
 * gui_reference.h - what the output must look like with the framebuffer over plain video, worked
 * out pixel by pixel in the plainest way, from rules written down anew.
 */
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace gui_test
{

/** A framebuffer pixel with 8-bit components; alpha as it blends in the end. */
struct Colour {
    int red = 0, green = 0, blue = 0, alpha = 0;
};

struct Video {
    int y, u, v;
};

inline Video to_video(const Colour &c)
{
    return {(66 * c.red + 129 * c.green + 25 * c.blue + 128) / 256 + 16,
            (112 * c.blue - 74 * c.green - 38 * c.red + 128 + 256 * 128) / 256,
            (112 * c.red - 94 * c.green - 18 * c.blue + 128 + 256 * 128) / 256};
}

/** Planes of a whole output, as vboard_display_capture gives them. */
inline std::vector<uint8_t> covered(int width, int height, const Video &video,
                                    const std::function<Colour(int x, int y)> &gui)
{
    std::vector<uint8_t> bytes(static_cast<size_t>(width * height * 3 / 2));
    uint8_t *y_plane = bytes.data();
    uint8_t *u_plane = y_plane + width * height;
    uint8_t *v_plane = u_plane + width * height / 4;
    for (int block_y = 0; block_y < height; block_y += 2) {
        for (int block_x = 0; block_x < width; block_x += 2) {
            int alpha = 0, u = 0, v = 0;
            for (int i = 0; i < 4; ++i) {
                const int x = block_x + i % 2, y = block_y + i / 2;
                const Colour c = gui(x, y);
                const Video ink = to_video(c);
                y_plane[y * width + x] =
                    static_cast<uint8_t>((video.y * (255 - c.alpha) + ink.y * c.alpha + 127) / 255);
                alpha += c.alpha;
                u += ink.u * c.alpha;
                v += ink.v * c.alpha;
            }
            const int at = block_y / 2 * (width / 2) + block_x / 2;
            u_plane[at] = static_cast<uint8_t>((video.u * (1020 - alpha) + u + 510) / 1020);
            v_plane[at] = static_cast<uint8_t>((video.v * (1020 - alpha) + v + 510) / 1020);
        }
    }
    return bytes;
}

} // namespace gui_test
