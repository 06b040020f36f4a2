/* The tables behind output_timing.h and their look-ups. */
#include "core/output_timing.h"

#include "core/device_state.h"
#include "core/log.h"

namespace
{

struct TimingRow {
    uint32_t code;        // the library's timing code
    uint32_t disp_timing; // display output value
    uint32_t hdmi_timing; // HDMI timing value
    uint16_t width, height;
    const char *name; // logged at bring-up; null = the display refuses it
};

// Codes 2 and 4 run at 60 Hz and are logged under the 50 Hz names on purpose: the name is only a
// log line that field engineers know.
constexpr TimingRow kTimings[] = {
    {1, 8, 4, 1280, 720, "E_MI_DISP_OUTPUT_720P50"},
    {2, 9, 5, 1280, 720, "E_MI_DISP_OUTPUT_720P50"},
    {3, 15, 7, 1920, 1080, "E_MI_DISP_OUTPUT_1080P50"},
    {4, 16, 9, 1920, 1080, "E_MI_DISP_OUTPUT_1080P50"},
    {5, 26, 39, 1600, 1200, "E_MI_DISP_OUTPUT_1600x1200_60"},
    {6, 22, 38, 1440, 900, "E_MI_DISP_OUTPUT_1440x900_60"},
    {7, 20, 37, 1280, 1024, "E_MI_DISP_OUTPUT_1280x1024_60"},
    {8, 19, 36, 1024, 768, "E_MI_DISP_OUTPUT_1024x768_60"},
    {9, 23, 40, 1280, 800, "E_MI_DISP_OUTPUT_1280x800_60"},
    {10, 21, 41, 1366, 768, "E_MI_DISP_OUTPUT_1366x768_60"},
    {11, 24, 42, 1680, 1050, "E_MI_DISP_OUTPUT_1680x1050_60"},
    {12, 28, 17, 2560, 1440, nullptr},
    {13, 30, 13, 3840, 2160, "E_MI_DISP_OUTPUT_3840x2160_30"},
};

consteval bool codes_are_consecutive()
{
    uint32_t expected = 1;
    for (const TimingRow &row : kTimings)
        if (row.code != expected++) return false;
    return expected == 14;
}
static_assert(codes_are_consecutive());

struct OutputValueRow {
    uint32_t value; // display output value
    uint32_t width, height;
    uint32_t frame_rate; // frames per second
};

constexpr OutputValueRow kOutputValues[] = {
    {0, 720, 576, 25},    {1, 720, 480, 30},    {6, 720, 480, 60},    {7, 720, 576, 50},
    {8, 1280, 720, 50},   {9, 1280, 720, 60},   {10, 1920, 1080, 24}, {11, 1920, 1080, 25},
    {12, 1920, 1080, 30}, {13, 1920, 1080, 50}, {14, 1920, 1080, 60}, {15, 1920, 1080, 50},
    {16, 1920, 1080, 60}, {18, 800, 600, 60},   {19, 1024, 768, 60},  {20, 1280, 1024, 60},
    {21, 1366, 768, 60},  {22, 1440, 900, 60},  {23, 1280, 800, 60},  {24, 1680, 1050, 60},
    {26, 1600, 1200, 60}, {27, 1920, 1200, 60}, {28, 2560, 1440, 30},
};

consteval bool output_values_ascend()
{
    for (unsigned i = 1; i < sizeof kOutputValues / sizeof kOutputValues[0]; ++i)
        if (kOutputValues[i].value <= kOutputValues[i - 1].value) return false;
    return true;
}
static_assert(output_values_ascend());

// Size of the last look-up that succeeded. Written and read by look_up_output_timing, word by word.
uint16_t screen_width;
uint16_t screen_height;

template <typename Word> void store_if_wanted(Word *target, Word value)
{
    if (target != nullptr) *target = value;
}

} // namespace

// Written by look_up_output_timing, word by word; read by the display bring-up.
uint32_t nvrhal::D_HdmiTiming;
uint32_t nvrhal::D_DispTiming;

int32_t vo_timing_lookup(uint32_t code, uint32_t *hdmi_timing, uint32_t *disp_timing, uint16_t *width,
                         uint16_t *height)
{
    for (const TimingRow &row : kTimings) {
        if (row.code != code) continue;
        store_if_wanted(hdmi_timing, row.hdmi_timing);
        store_if_wanted(disp_timing, row.disp_timing);
        store_if_wanted(width, row.width);
        store_if_wanted(height, row.height);
        return 0;
    }
    nvrhal::log_text("Unspport Ap timing (%d)\n", static_cast<int>(code));
    return 0;
}

int32_t vo_get_wh(uint32_t value, uint32_t *width, uint32_t *height, uint32_t *frame_rate)
{
    for (const OutputValueRow &row : kOutputValues) {
        if (row.value != value) continue;
        store_if_wanted(width, row.width);
        store_if_wanted(height, row.height);
        store_if_wanted(frame_rate, row.frame_rate);
        return 0;
    }
    log_error_line("sdk3531Lib.c", "vo enIntfSync not support!");
    return -1;
}

int32_t vo_set_wh(void *, uint32_t, uint32_t, uint32_t)
{
    return 1;
}

nvrhal::ScreenSize nvrhal::look_up_output_timing()
{
    uint32_t hdmi_timing = load_word(D_HdmiTiming);
    uint32_t disp_timing = load_word(D_DispTiming);
    ScreenSize size = {load_word(screen_width), load_word(screen_height)};
    vo_timing_lookup(load_word(enNorm_vga), &hdmi_timing, &disp_timing, &size.width, &size.height);
    store_word(D_HdmiTiming, hdmi_timing);
    store_word(D_DispTiming, disp_timing);
    store_word(screen_width, size.width);
    store_word(screen_height, size.height);
    return size;
}

const char *nvrhal::shown_timing_name(uint32_t disp_timing)
{
    for (const TimingRow &row : kTimings)
        if (row.disp_timing == disp_timing) return row.name;
    return nullptr;
}
