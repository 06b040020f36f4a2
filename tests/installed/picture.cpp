/*
 * picture.cpp - an application outside the tree, in C++: four panes, and one H.264 frame, red on the left and
 * blue on the right, in the lower right one. usage: picture FILE.h264
 *
 * Exit status: 0 = the screen shows it, 2 = the file cannot be read, 3 = a call failed, 4 = the screen shows
 * something else.
 */
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include <nvrhal.h>
#include <vboard.h>

namespace
{

constexpr uint16_t kCameras = 4, kWidth = 1920, kHeight = 1080;

std::string colour_at(const vboard_image &image, size_t x, size_t y)
{
    const uint8_t *rgb = image.bytes + 3 * (y * image.width + x);
    if (rgb[0] > 180 && rgb[1] < 80 && rgb[2] < 80) return "red";
    if (rgb[2] > 180 && rgb[0] < 80 && rgb[1] < 80) return "blue";
    return rgb[0] < 32 && rgb[1] < 32 && rgb[2] < 32 ? "black" : "something else";
}

/* The colours of the upper left quarter and of both halves of the lower right one. */
std::string screen()
{
    vboard_image image = {};
    if (vboard_monitor_capture(VBOARD_FORMAT_RGB24, &image) != 0) return "no picture";
    const std::string seen = colour_at(image, kWidth / 4, kHeight / 4) + ", " +
                             colour_at(image, kWidth * 5 / 8, kHeight * 3 / 4) + ", " +
                             colour_at(image, kWidth * 7 / 8, kHeight * 3 / 4);
    vboard_image_free(&image);
    std::cout << "picture: " << seen << '\n';
    return seen;
}

} // namespace

int main(int argc, char **argv)
{
    std::ifstream file(argc > 1 ? argv[1] : "", std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(file), {});
    if (bytes.empty()) return 2;

    DeviceParams params = {};
    params.vi_chn_num = kCameras;
    params.gui_width = kWidth;
    params.gui_height = kHeight;
    if (ext_device_init(&params) != 0) return 3;
    FrameInfo frame = {};
    frame.frame_type = 1;
    frame.media = FRAME_MEDIA_VIDEO;
    frame.data = reinterpret_cast<uint8_t *>(bytes.data());
    frame.length = static_cast<uint32_t>(bytes.size());
    frame.channel = kCameras - 1;
    frame.width = 640;
    frame.height = 360;
    /* The decoders begin as H.265's: the first frame makes this one H.264's, and the layout connects it. */
    if (ext_send_stream(&frame, 0, 0, 0) != 0) return 3;

    DispAttrib panes[kCameras] = {};
    for (uint16_t i = 0; i < kCameras; i++) {
        panes[i].bind_status = 1;
        panes[i].channel = i;
        panes[i].x = i % 2 * kWidth / 2;
        panes[i].y = i / 2 * kHeight / 2;
        panes[i].w = kWidth / 2;
        panes[i].h = kHeight / 2;
    }
    if (ext_change_display_format(panes, kCameras) != 0) return 3;
    if (screen() != "black, black, black") return 4;

    /* It then takes any cut of the stream, and knows a picture's end by the next one's beginning. */
    for (int i = 0; i < 2; i++)
        if (ext_send_stream(&frame, 0, 0, 0) != 0) return 3;
    if (vboard_display_wait_taken(0, 1u << (kCameras - 1), 1, 10000) != 0) return 3;
    const bool shown = screen() == "black, red, blue";
    ext_device_quit();
    return shown ? 0 : 4;
}
