/* points_analog.c - the analog inputs: norm, settings, loss of the signal, motion. */
#include <fcntl.h>
#include <string.h>

#include "ad_driver.h"
#include "hooks.h"
#include "node_requests.h"
#include "points.h"
#include "record.h"

static int need_analog(void)
{
    const int node = board_open(AD_NODE, O_RDWR);
    if (node < 0) not_tried("this board has no analog inputs: %s", last_call_text());
    return node;
}

POINT(ad_norm, "analog.norm.reads-back", "board_ioctl", "the video norm is read as it was set")
{
    const int node = need_analog();
    for (uint32_t norm = 0; norm < 2; ++norm) {
        AdChipValue set = {AD_CHIP_SELECTOR, norm}, read = {AD_CHIP_SELECTOR, 77};
        expect_request(node, AD_SET_NORM, &set);
        expect_request(node, AD_GET_NORM, &read);
        HOLDS(read.value == norm, "set to %u, read as %u", norm, read.value);
    }
}

POINT(ad_adjust, "analog.adjust.reads-back", "board_ioctl", "the colour adjustment is read as it was set")
{
    AdColorAdjust set = {{11, 22, 33}}, read = {{0, 0, 0}};
    const int node = need_analog();
    expect_request(node, AD_SET_ADJUST, &set);
    expect_request(node, AD_GET_ADJUST, &read);
    HOLDS(memcmp(&read, &set, sizeof read) == 0, "set to 11, 22, 33, read as %u, %u, %u", read.values[0],
          read.values[1], read.values[2]);
}

POINT(ad_settings, "analog.settings.accepted", "board_ioctl",
      "work modes, sampling, playback, volume, format, width, mute, area and sensitivity are accepted")
{
    static const unsigned long requests[] = {AD_SET_AUDIO_PLAYBACK, AD_SET_AUDIO_VOLUME, AD_SET_AUDIO_FORMAT,
                                             AD_SET_AUDIO_BITWIDTH, AD_SET_MUTE};
    static AdMotionArea area;
    const int node = need_analog();
    for (uint32_t channel = 0; channel < 8; ++channel) {
        const uint8_t chip = (uint8_t)(channel / AD_INPUTS_PER_CHIP),
                      input = (uint8_t)(channel % AD_INPUTS_PER_CHIP);
        AdWorkMode mode = {chip, 3, input};
        AdMotionSensitivity sensitivity = {chip, input, {0, 0}, 5};
        area.chip = chip;
        area.input = input;
        memset(area.mask, 0xFF, sizeof area.mask);
        expect_request(node, AD_SET_WORK_MODE, &mode);
        expect_request(node, AD_MOTION_SET_AREA, &area);
        expect_request(node, AD_MOTION_SET_SENSITIVITY, &sensitivity);
    }
    for (uint32_t code = 0; code <= 4; ++code) {
        AdSampleRate rate = {AD_CHIP_SELECTOR, code, 0};
        expect_request(node, AD_SET_SAMPLE_RATE, &rate);
    }
    for (int i = 0; i < 5; ++i) {
        AdChipValue value = {AD_CHIP_SELECTOR, 0};
        expect_request(node, requests[i], &value);
    }
    expect_request(node, AD_MOTION_START, NULL);
    expect_request(node, AD_MOTION_START, NULL);
}

POINT(ad_bad, "analog.refusals.bad-values", "board_ioctl",
      "a chip, input, selector or rate code that there is not gives EINVAL")
{
    AdVideoLoss loss = {99, 0, 0};
    AdWorkMode mode = {0, 1, 9};
    AdChipValue value = {7, 0};
    AdSampleRate rate = {AD_CHIP_SELECTOR, 5, 0};
    AdMotionQuery query = {99, 0, {0, 0}, 0};
    const int node = need_analog();
    expect_refused(node, AD_GET_LOSS, &loss);
    expect_refused(node, AD_SET_WORK_MODE, &mode);
    expect_refused(node, AD_SET_NORM, &value);
    expect_refused(node, AD_SET_MUTE, &value);
    expect_refused(node, AD_SET_SAMPLE_RATE, &rate);
    expect_refused(node, AD_MOTION_GET_AREA, &query);
}

static bool input_is_lost(int node, uint32_t channel)
{
    AdVideoLoss loss = {channel / AD_INPUTS_PER_CHIP, channel % AD_INPUTS_PER_CHIP, 77};
    expect_request(node, AD_GET_LOSS, &loss);
    return loss.lost != 0;
}

POINT(ad_loss, "analog.loss", "board_ioctl",
      "an input whose cable is pulled is told as lost, and no other one")
{
    static const uint32_t channels[] = {0, 3, 6, 15};
    const int node = need_analog();
    if (conformance_hooks.analog_loss == NULL) not_tried("needs the analog input hook");
    for (int i = 0; i < 4; ++i) {
        conformance_hooks.analog_loss(channels[i], 1);
        for (int other = 0; other < 4; ++other)
            HOLDS(input_is_lost(node, channels[other]) == (other == i),
                  "input %u was pulled, and input %u is told as %s", channels[i], channels[other],
                  other == i ? "present" : "lost");
        conformance_hooks.analog_loss(channels[i], 0);
        HOLDS(!input_is_lost(node, channels[i]), "input %u is back, and is told as lost", channels[i]);
    }
}

static uint32_t moving_blocks(int node, uint32_t channel)
{
    AdMotionQuery query = {
        (uint8_t)(channel / AD_INPUTS_PER_CHIP), (uint8_t)(channel % AD_INPUTS_PER_CHIP), {0, 0}, 77};
    expect_request(node, AD_MOTION_GET_AREA, &query);
    return query.result;
}

POINT_WITH(FRESH, ad_motion, "analog.motion", "board_ioctl",
           "moving blocks are told once watching was started, of each input for itself")
{
    static AdMotionArea area;
    const int node = need_analog();
    if (conformance_hooks.analog_motion == NULL) not_tried("needs the analog motion hook");
    area.chip = 1;
    area.input = 2;
    memset(area.mask, 0xFF, sizeof area.mask);
    need_request(node, AD_MOTION_SET_AREA, &area);
    conformance_hooks.analog_motion(6, 25);
    HOLDS(moving_blocks(node, 6) == 0, "watching was not started, and blocks are told as moving");
    need_request(node, AD_MOTION_START, NULL);
    const uint32_t moving = moving_blocks(node, 6);
    HOLDS(moving == 25, "25 blocks move, %u are told", moving);
    HOLDS(moving_blocks(node, 5) == 0, "nothing moves at input 5, and it is told");
    conformance_hooks.analog_motion(6, 0);
    HOLDS(moving_blocks(node, 6) == 0, "nothing moves any more, and it is told");
}

const Point *const analog_points[] = {
    &point_ad_norm, &point_ad_adjust, &point_ad_settings, &point_ad_bad, &point_ad_loss, &point_ad_motion,
    NULL,
};
