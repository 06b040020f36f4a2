/* output_timing.cpp - tables of display and HDMI timings. */
#include "media/output_timing.h"

#include <algorithm>
#include <iterator>

namespace vboard
{
namespace
{

constexpr OutputTiming kTimings[] = {
    {0, 720, 576, 25},    {1, 720, 480, 30},    {6, 720, 480, 60},    {7, 720, 576, 50},
    {8, 1280, 720, 50},   {9, 1280, 720, 60},   {10, 1920, 1080, 24}, {11, 1920, 1080, 25},
    {12, 1920, 1080, 30}, {13, 1920, 1080, 50}, {14, 1920, 1080, 60}, {15, 1920, 1080, 50},
    {16, 1920, 1080, 60}, {18, 800, 600, 60},   {19, 1024, 768, 60},  {20, 1280, 1024, 60},
    {21, 1366, 768, 60},  {22, 1440, 900, 60},  {23, 1280, 800, 60},  {24, 1680, 1050, 60},
    {26, 1600, 1200, 60}, {27, 1920, 1200, 60}, {28, 2560, 1440, 30}, {30, 3840, 2160, 30},
};

constexpr uint32_t kHdmiTimings[] = {4, 5, 7, 9, 13, 17, 36, 37, 38, 39, 40, 41, 42};

} // namespace

const OutputTiming *find_output_timing(uint32_t value)
{
    const auto found = std::find_if(std::begin(kTimings), std::end(kTimings),
                                    [&](const OutputTiming &timing) { return timing.value == value; });
    return found != std::end(kTimings) ? found : nullptr;
}

bool hdmi_timing_is_known(uint32_t value)
{
    return std::find(std::begin(kHdmiTimings), std::end(kHdmiTimings), value) != std::end(kHdmiTimings);
}

} // namespace vboard
