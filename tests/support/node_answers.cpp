/*
 * The drivers' own answers: enough of them that the library starts on a platform that nobody
 * scripted. A framebuffer of 1280 x 720 pixels of 16 bits with one bit of alpha, and a clock that
 * shows the platform's time. All other requests succeed and leave their record as it is, so that
 * a script's filler finds what the library put there.
 */
#include "node_answers.h"

#include <ctime>

#include "fb_driver.h"
#include "recording_platform.h"
#include "rtc_driver.h"

namespace recording
{

namespace
{

constexpr uint32_t kWidth_px = 1280, kHeight_px = 720;
constexpr uint32_t kPixelBytes = 2;

void answer(fb_var_screeninfo &variable)
{
    fill_with_pattern(variable);
    variable.xres = variable.xres_virtual = kWidth_px;
    variable.yres = variable.yres_virtual = kHeight_px;
    variable.xoffset = variable.yoffset = 0;
    variable.bits_per_pixel = 8 * kPixelBytes;
    variable.transp = {15, 1, 0};
}

void answer(fb_fix_screeninfo &fixed)
{
    fill_with_pattern(fixed);
    fixed.smem_start = 0x2F000000;
    fixed.smem_len = kWidth_px * kPixelBytes * kHeight_px;
    fixed.line_length = kWidth_px * kPixelBytes;
}

void answer(rtc_time &time)
{
    const time_t now_s = static_cast<time_t>(platform.time_us() / 1000000);
    tm parts = {};
    gmtime_r(&now_s, &parts);
    time = {parts.tm_sec,  parts.tm_min,  parts.tm_hour, parts.tm_mday, parts.tm_mon,
            parts.tm_year, parts.tm_wday, parts.tm_yday, parts.tm_isdst};
}

} // namespace

void answer_request(const std::string &path, unsigned long request, void *record)
{
    if (record == nullptr) return;
    if (path == "/dev/fb0" && request == FBIOGET_VSCREENINFO)
        answer(*static_cast<fb_var_screeninfo *>(record));
    else if (path == "/dev/fb0" && request == FBIOGET_FSCREENINFO)
        answer(*static_cast<fb_fix_screeninfo *>(record));
    else if (path == RTC_NODE && request == RTC_RD_TIME)
        answer(*static_cast<rtc_time *>(record));
}

} // namespace recording
