/* The node of the analog decoder chips, and the layout of its records and codes. */
#include "frontend/ad_node.h"

#include "ad_driver.h"
#include "board_io.h"
#include "core/abi.h"

#include <fcntl.h>

using namespace nvrhal;

ABI_SIZE(AdChipValue, 8);
ABI_SIZE(AdWorkMode, 3);
ABI_SIZE(AdSampleRate, 12);
ABI_SIZE(AdVideoLoss, 12);
ABI_AT(AdVideoLoss, lost, 8);
ABI_SIZE(AdColorAdjust, 12);
ABI_SIZE(AdMotionArea, 642);
ABI_AT(AdMotionArea, mask, 2);
ABI_SIZE(AdMotionSensitivity, 8);
ABI_AT(AdMotionSensitivity, sensitivity, 4);
ABI_SIZE(AdMotionQuery, 8);

static_assert(AD_GET_LOSS == 0xC00C7604 && AD_SET_ADJUST == 0x400C7605 && AD_GET_ADJUST == 0xC00C7606);
static_assert(AD_SET_NORM == 0x40087607 && AD_GET_NORM == 0xC0087608 && AD_SET_WORK_MODE == 0x40037609);
static_assert(AD_SET_SAMPLE_RATE == 0x400C760A && AD_SET_AUDIO_PLAYBACK == 0x4008760B);
static_assert(AD_SET_AUDIO_VOLUME == 0x4008760D && AD_SET_AUDIO_FORMAT == 0x4008760E);
static_assert(AD_SET_AUDIO_BITWIDTH == 0x4008760F && AD_SET_MUTE == 0x40087610);
static_assert(AD_MOTION_SET_SENSITIVITY == 0x40087611 && AD_MOTION_SET_AREA == 0x42827612);
static_assert(AD_MOTION_GET_AREA == 0xC0087613 && AD_MOTION_START == 0x7614);

AdNode::AdNode() : descriptor_(board_open(AD_NODE, O_RDWR)) {}

AdNode::~AdNode()
{
    if (is_open()) board_close(descriptor_);
}

bool AdNode::request(unsigned long request, void *record) const
{
    return board_ioctl(descriptor_, request, record) >= 0;
}
