/*
 * Control of the VC0725 analog video/audio decoder chips: one function a driver command. The
 * commands and what is printed when they fail are one table; the functions build the records.
 * Thread: any, no state is kept.
 */
#include "ad_driver.h"
#include "core/device_state.h"
#include "core/log.h"
#include "frontend/ad_node.h"
#include "nvrhal.h"

using namespace nvrhal;

namespace
{

enum Command {
    kGetLoss,
    kSetAdjust,
    kGetAdjust,
    kSetNorm,
    kGetNorm,
    kSetWorkMode,
    kSetSampleRate,
    kSetAudioPlayback,
    kSetAudioVolume,
    kSetAudioFormat,
    kSetAudioWorkMode,
    kSetAudioBitwidth,
    kSetMute,
    kCommandCount,
};

struct CommandRow {
    Command command;
    unsigned long request;
    const char *failure; // takes source, line and the number that the command's failures carry
};

// A whole text stands in one place, prefix included, so that it can be searched for as it is logged.
#define FAILURE(text)      "[%s]-%d: " text
#define FAILURE_LINE(text) FAILURE(text "\n")

// The norm's text names another chip, the one this board had before; log searches know it so. The
// audio work mode is a use of the audio format's command; both texts leave the number out.
constexpr CommandRow kCommands[] = {
    {kGetLoss, AD_GET_LOSS, FAILURE("set VC0725(%d) video get loss fail\n")},
    {kSetAdjust, AD_SET_ADJUST, FAILURE("set VC0725(%d) video set adjust fail\n")},
    {kGetAdjust, AD_GET_ADJUST, FAILURE("set VC0725(%d) video get adjust fail\n")},
    {kSetNorm, AD_SET_NORM, FAILURE("set tw2865(%d) video set mode fail\n")},
    {kGetNorm, AD_GET_NORM, FAILURE("set VC0725(%d) video get mode fail\n")},
    {kSetWorkMode, AD_SET_WORK_MODE, FAILURE("set vc0725(%d) video work mode fail\n")},
    {kSetSampleRate, AD_SET_SAMPLE_RATE, FAILURE("samplerate = %d video SET_SAMPLE_RATE fail\n")},
    {kSetAudioPlayback, AD_SET_AUDIO_PLAYBACK, FAILURE("set VC0725(%d) video SET_AUDIO_PLAYBACK fail\n")},
    {kSetAudioVolume, AD_SET_AUDIO_VOLUME, FAILURE("set VC0725(%d) video SET_AUDIO_DA_VOLUME fail\n")},
    {kSetAudioFormat, AD_SET_AUDIO_FORMAT, FAILURE_LINE("audio_format =  video SET_AUDIO_FORMAT fail")},
    {kSetAudioWorkMode, AD_SET_AUDIO_FORMAT, FAILURE_LINE("ioctl VC0725_SET_AUDIO_FORMAT err !!! ")},
    {kSetAudioBitwidth, AD_SET_AUDIO_BITWIDTH, FAILURE("bitwidth = %d video SET_AUDIO_BITWIDTH fail\n")},
    {kSetMute, AD_SET_MUTE, FAILURE("set VC0725(%d) video ad_set_mute fail\n")},
};

consteval bool commands_are_complete()
{
    int expected = 0;
    for (const CommandRow &row : kCommands)
        if (row.command != expected++) return false;
    return expected == kCommandCount;
}
static_assert(commands_are_complete());

constexpr uint32_t kSampleRates[] = {8000, 16000, 32000, 44100, 48000}; // Hz; the index is the rate code

constexpr uint32_t k960hClass = 5; // StreamAttr::size_class of 960 x 576
constexpr uint8_t k960hMode = 3;
constexpr uint8_t kOtherMode = 1;
constexpr uint32_t kFirstNorm = 1; // which of the two norms is 25 frames is the driver's business
constexpr uint32_t kSecondNorm = 2;

/** Issue a command on an open node; a failure is printed with its number. 0 or -1. */
int32_t issue(const AdNode &node, Command command, void *record, uint32_t number)
{
    const CommandRow &row = kCommands[command];
    if (node.request(row.request, record)) return 0;
    log_text(row.failure, kAdSource, __LINE__, static_cast<int>(number));
    return -1;
}

/** A whole command: open, issue, close. `number` is what a failure prints. 0 or -1. */
int32_t run(Command command, void *record, uint32_t number)
{
    const AdNode node;
    if (node.is_open()) return issue(node, command, record, number);
    log_error(kAdSource, "open %s fail\n", AD_NODE);
    return -1;
}

int32_t send_chip_value(Command command, uint32_t value)
{
    AdChipValue record = {AD_CHIP_SELECTOR, value};
    return run(command, &record, record.selector);
}

/** The mode of all inputs: one 960 x 576 main stream switches them together. */
uint8_t start_mode(int32_t count)
{
    for (int32_t channel = 0; channel < NVRHAL_MAX_DECODERS && channel < count; ++channel)
        if (load_word(major_stream[channel].size_class) == k960hClass) return k960hMode;
    return kOtherMode;
}

} // namespace

int32_t Init_AD(uint32_t norm_flag)
{
    const AdNode node;
    if (!node.is_open()) {
        log_error(kAdSource, "open VC0725 (%s) fail\n", AD_NODE);
        return -1;
    }
    const int32_t count = camera_count();
    const uint8_t mode = start_mode(count);
    for (int32_t channel = 0; channel < count; ++channel) {
        AdWorkMode record = {static_cast<uint8_t>(channel / AD_INPUTS_PER_CHIP), mode,
                             static_cast<uint8_t>(channel % AD_INPUTS_PER_CHIP)};
        if (issue(node, kSetWorkMode, &record, record.chip) != 0) return -1;
    }
    AdChipValue norm = {AD_CHIP_SELECTOR, norm_flag != 0 ? kFirstNorm : kSecondNorm};
    if (node.request(AD_SET_NORM, &norm)) return 0;
    log_error(kAdSource, "set VC0725(%d) video mode fail\n", count); // the count here, not the selector
    return -1;
}

int32_t ad_set_norm(uint32_t norm)
{
    return send_chip_value(kSetNorm, norm);
}

int32_t ad_get_norm(uint8_t *norm)
{
    if (norm == nullptr) return -1;
    AdChipValue record = {AD_CHIP_SELECTOR, 0};
    if (run(kGetNorm, &record, record.selector) != 0) return -1;
    *norm = static_cast<uint8_t>(record.value);
    return 0;
}

int32_t ad_work_mode(uint32_t mode)
{
    AdWorkMode record = {AD_CHIP_SELECTOR, static_cast<uint8_t>(mode), 0};
    return run(kSetWorkMode, &record, record.chip);
}

int32_t ad_get_loss(AdVideoLoss *loss)
{
    return loss == nullptr ? -1 : run(kGetLoss, loss, loss->chip);
}

int32_t ad_set_adjust(uint32_t first, uint32_t second, uint32_t third)
{
    AdColorAdjust record = {{first, second, third}};
    return run(kSetAdjust, &record, first);
}

int32_t ad_get_adjust(AdColorAdjust *adjust)
{
    return adjust == nullptr ? -1 : run(kGetAdjust, adjust, adjust->values[0]);
}

int32_t ad_set_sample_rate(uint32_t rate)
{
    uint32_t code = 0;
    for (const uint32_t known : kSampleRates) {
        if (known == rate) {
            AdSampleRate record = {AD_CHIP_SELECTOR, code, 0};
            return run(kSetSampleRate, &record, code);
        }
        ++code;
    }
    log_text("func(%s) line(%d): vc0725 not support enSample:%d\n", __func__, __LINE__,
             static_cast<int>(rate));
    return -1;
}

int32_t ad_set_audio_playback(uint32_t selection)
{
    return send_chip_value(kSetAudioPlayback, selection);
}

int32_t ad_set_audio_volume(uint32_t volume)
{
    return send_chip_value(kSetAudioVolume, volume);
}

int32_t ad_set_audio_format(uint32_t format)
{
    return send_chip_value(kSetAudioFormat, format);
}

int32_t ad_audio_work_mode(uint32_t mode)
{
    return send_chip_value(kSetAudioWorkMode, mode == 2 ? 1 : 0);
}

int32_t ad_set_audio_bitwidth(uint32_t code)
{
    if (code != 0) {
        log_text("func(%s) line(%d): vc0725 not support bitwidth %d!\n", __func__, __LINE__,
                 static_cast<int>(code));
        return -1;
    }
    AdChipValue record = {AD_CHIP_SELECTOR, code};
    return run(kSetAudioBitwidth, &record, code);
}

int32_t ad_set_mute(uint32_t mute)
{
    return send_chip_value(kSetMute, mute);
}
