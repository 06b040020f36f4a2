/* timing.c - the seams' timing values as modes of the chip. */
#include <stddef.h>

#include "adapter.h"

typedef struct TimingRow {
    uint32_t value;
    TernMode mode;
} TimingRow;

static const TimingRow outputs[] = {
    {0, {720, 576, 25}},    {1, {720, 480, 30}},    {6, {720, 480, 60}},    {7, {720, 576, 50}},
    {8, {1280, 720, 50}},   {9, {1280, 720, 60}},   {10, {1920, 1080, 24}}, {11, {1920, 1080, 25}},
    {12, {1920, 1080, 30}}, {13, {1920, 1080, 50}}, {14, {1920, 1080, 60}}, {15, {1920, 1080, 50}},
    {16, {1920, 1080, 60}}, {18, {800, 600, 60}},   {19, {1024, 768, 60}},  {20, {1280, 1024, 60}},
    {21, {1366, 768, 60}},  {22, {1440, 900, 60}},  {23, {1280, 800, 60}},  {24, {1680, 1050, 60}},
    {26, {1600, 1200, 60}}, {27, {1920, 1200, 60}}, {28, {2560, 1440, 30}}, {30, {3840, 2160, 30}},
};

static const TimingRow hdmi_timings[] = {
    {4, {1280, 720, 50}},   {5, {1280, 720, 60}},   {7, {1920, 1080, 50}}, {9, {1920, 1080, 60}},
    {13, {3840, 2160, 30}}, {17, {2560, 1440, 30}}, {36, {1024, 768, 60}}, {37, {1280, 1024, 60}},
    {38, {1440, 900, 60}},  {39, {1600, 1200, 60}}, {40, {1280, 800, 60}}, {41, {1366, 768, 60}},
    {42, {1680, 1050, 60}},
};

static const TernMode *find(const TimingRow *rows, size_t count, uint32_t value)
{
    for (size_t i = 0; i < count; ++i)
        if (rows[i].value == value) return &rows[i].mode;
    return NULL;
}

const TernMode *mode_of_output(uint32_t timing)
{
    return find(outputs, sizeof outputs / sizeof outputs[0], timing);
}

const TernMode *mode_of_hdmi(uint32_t timing)
{
    return find(hdmi_timings, sizeof hdmi_timings / sizeof hdmi_timings[0], timing);
}
