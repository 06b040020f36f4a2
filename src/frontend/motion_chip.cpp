/*
 * The analog decoder chips' own motion detection: watched areas, sensitivity, start. Two chips of
 * four inputs each, whatever the number of cameras. The start prints what failed; a single request
 * of the application's only says so by its result. Thread: any.
 */
#include "ad_driver.h"
#include "core/log.h"
#include "frontend/ad_node.h"
#include "nvrhal.h"

using namespace nvrhal;

namespace
{

constexpr uint8_t kChips = 2;
constexpr uint32_t kStartSensitivity = 6;

/** Send one record to every input of every chip, chip by chip. False, and the text, at the first failure. */
template <typename Record>
bool send_to_all(const AdNode &node, unsigned long request, Record record, const char *failure)
{
    for (uint8_t chip = 0; chip < kChips; ++chip) {
        for (uint8_t input = 0; input < AD_INPUTS_PER_CHIP; ++input) {
            record.chip = chip;
            record.input = input;
            if (node.request(request, &record)) continue;
            log_error_line(kAdSource, failure);
            return false;
        }
    }
    return true;
}

/** One request with the caller's record. 0 or -1. */
template <typename Record> int32_t send_one(unsigned long request, Record *record)
{
    if (record == nullptr) return -1;
    const AdNode node;
    return node.is_open() && node.request(request, record) ? 0 : -1;
}

} // namespace

int32_t InitMotion(void)
{
    const AdNode node;
    if (!node.is_open()) {
        log_error(kAdSource, "open VC0725 (%s) fail\n", AD_NODE);
        return -1;
    }
    if (!send_to_all(node, AD_MOTION_SET_AREA, AdMotionArea{}, "ioctl Set motion area failure")) return -1;
    AdMotionSensitivity sensitivity = {};
    sensitivity.sensitivity = kStartSensitivity;
    if (!send_to_all(node, AD_MOTION_SET_SENSITIVITY, sensitivity, "set motion sensivity fail")) return -1;
    if (node.request(AD_MOTION_START, nullptr)) return 0;
    log_error_line(kAdSource, "open motion failure");
    return -1;
}

int32_t SetMotionArea(const AdMotionArea *area)
{
    return send_one(AD_MOTION_SET_AREA, const_cast<AdMotionArea *>(area)); // it is only read
}

int32_t GetMotionArea(AdMotionQuery *query)
{
    return send_one(AD_MOTION_GET_AREA, query);
}

int32_t SetMotionSensivity(const AdMotionSensitivity *sensitivity)
{
    return send_one(AD_MOTION_SET_SENSITIVITY, const_cast<AdMotionSensitivity *>(sensitivity));
}
