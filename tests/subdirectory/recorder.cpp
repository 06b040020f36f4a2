/* A recorder of another project, in C++, that looks at the board's screen: a white rectangle appears. */
#include "nvrhal.h"
#include "vboard.h"

namespace
{

constexpr int kX = 400, kY = 300;

/* The brightness of the rectangle's middle, 0 to 255; -1 = no picture. */
int brightness()
{
    vboard_image image = {};
    if (vboard_display_capture(0, VBOARD_FORMAT_I420, &image) != 0) return -1;
    const int value = image.bytes[(kY + 10) * image.width + kX + 10];
    vboard_image_free(&image);
    return value;
}

} // namespace

int main()
{
    DeviceParams params = {};
    params.vi_chn_num = 1;
    params.gui_width = 1920;
    params.gui_height = 1080;
    if (ext_device_init(&params) != 0) return 1;
    const int before = brightness();
    drawRect(kX, kY, 20, 20, 0xffffffff);
    const int after = brightness();
    ext_device_quit();
    if (before < 0 || before > 32) return 2;
    return after >= 220 ? 0 : 3;
}
